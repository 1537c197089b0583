// The plain GDI view: its loop with the one period timer, the ticks of a fade, and the painting
// of each window through its compose bitmap, so that a window never shows a half-made frame.
#include <windows.h>

#include <string>

#include "library/companion.h"
#include "library/settings.h"
#include "platform/win_handles.h"
#include "session/crossfade.h"
#include "session/window_messages.h"

namespace {

constexpr wchar_t kCaptionFace[] = L"Segoe UI";
constexpr int kCaptionWeight = 600;
// One line at the bottom, cut with an ellipsis; an ampersand is shown as it is.
constexpr UINT kCaptionFormat = DT_BOTTOM | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS;

RECT ToRect(const SaverSession::Rectangle& r) { return {r.left, r.top, r.right, r.bottom}; }

// The current photo, and during a fade the next one laid over it with the step's constant alpha
// (the photos' own alpha bytes don't count).
void DrawPhotos(const ScreenWindow& window, HDC compose, HDC like) {
    MemoryDc source(CreateCompatibleDC(like));
    if (!source.Get()) return;
    if (window.currentBitmap) {
        SelectedObject current(source.Get(), window.currentBitmap.get());
        BitBlt(compose, 0, 0, window.width, window.height, source.Get(), 0, 0, SRCCOPY);
    }
    if (window.fadeStep > 0 && window.nextBitmap) {
        SelectedObject next(source.Get(), window.nextBitmap.get());
        const BLENDFUNCTION blend{AC_SRC_OVER, 0, FadeAlpha(window.fadeStep), 0};
        // gdi32's own entry: AlphaBlend of msimg32.dll only forwards to it.
        GdiAlphaBlend(compose, 0, 0, window.width, window.height, source.Get(), 0, 0, window.width,
                      window.height, blend);
    }
}

// White text over a black shadow, at the bottom left.
void DrawCaption(const ScreenWindow& window, HDC compose) {
    const std::wstring caption = window.CrossfadeCaption();
    if (caption.empty()) return;
    const CaptionLayout layout = LayOutCaption(window.session->mode, window.width, window.height);
    // A negative height asks for the character height, not the cell height.
    GdiObject font(CreateFontW(-layout.fontHeight, 0, 0, 0, kCaptionWeight, FALSE, FALSE, FALSE,
                               DEFAULT_CHARSET, 0, 0, CLEARTYPE_QUALITY, 0, kCaptionFace));
    SelectedObject selected(compose, font.Get());
    SetBkMode(compose, TRANSPARENT);
    RECT shadow = ToRect(layout.shadow), text = ToRect(layout.text);
    SetTextColor(compose, RGB(0, 0, 0));
    DrawTextW(compose, caption.c_str(), -1, &shadow, kCaptionFormat);
    SetTextColor(compose, RGB(255, 255, 255));
    DrawTextW(compose, caption.c_str(), -1, &text, kCaptionFormat);
}

} // namespace

int32_t SaverSession::CrossfadeLoop() {
    for (const auto& window : windows) {
        window->LoadNext(window->currentBitmap, window->currentCaption); // black if none loads
        InvalidateRect(static_cast<HWND>(window->hwnd), nullptr, FALSE);
    }
    const uint32_t periodMs = CrossfadePeriodMs(PauseIndex(Settings::ReadString(kValueSaverPause)));
    const UINT_PTR period = SetTimer(nullptr, 0, periodMs, nullptr);
    MSG message{};
    // Ends on the quit message and on an error alike.
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (message.message == WM_TIMER && !message.hwnd && period && message.wParam == period) {
            for (const auto& window : windows)
                if (window->StartFade())
                    SetTimer(static_cast<HWND>(window->hwnd), kFadeTimerId, kFadeTickMs, nullptr);
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0; // the period timer goes with the process, which ends moments later
}

void ScreenWindow::FadeStep() {
    const HWND window = static_cast<HWND>(hwnd);
    if (AdvanceFade()) KillTimer(window, kFadeTimerId);
    WindowDc dc(window);
    if (dc.Get()) PaintCrossfade(dc.Get());
}

void ScreenWindow::PaintCrossfade(void* target) {
    const HDC dc = static_cast<HDC>(target);
    const RECT area{0, 0, width, height};
    const HBRUSH black = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    MemoryDc compose(CreateCompatibleDC(dc));
    SelectedObject back(compose.Get(), backBitmap.get());
    if (!compose.Get() || !back.Selected()) {
        FillRect(dc, &area, black); // no compose surface: black rather than what was there
        return;
    }
    FillRect(compose.Get(), &area, black);
    DrawPhotos(*this, compose.Get(), dc);
    DrawCaption(*this, compose.Get());
    BitBlt(dc, 0, 0, width, height, compose.Get(), 0, 0, SRCCOPY);
}
