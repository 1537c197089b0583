#include "session/saver_session.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "diagnostics/log.h"
#include "library/companion.h"
#include "library/options.h"
#include "library/settings.h"
#include "photos/photo_titles.h"
#include "session/window_messages.h"

const char* StageWord(SaverMode mode) {
    switch (mode) {
    case SaverMode::Fullscreen: return "fullscreen";
    case SaverMode::Preview: return "preview";
    case SaverMode::Settings: return "settings";
    }
    return "start";
}

ScreenWindow::ScreenWindow(SaverSession* owner, uint64_t startCursor, int32_t pixelWidth,
                           int32_t pixelHeight)
    : session(owner), width(pixelWidth), height(pixelHeight), cursor(startCursor) {}

SaverSession::SaverSession(SaverMode runMode, WindowThread* windowThread)
    : mode(runMode), thread(windowThread) {}

void SaverSession::Dismiss() {
    if (dismissed) return;
    dismissed = true;
    // Hide first: the picture goes at once, before the loop has seen the quit message and before
    // anything is released.
    for (const auto& window : windows) thread->HideWindow(window->hwnd);
    thread->PostQuit();
}

void SaverSession::MouseMoved(int32_t x, int32_t y) {
    if (!mouseSeen) {
        // The first move of a run only records where the cursor is.
        mouseX = x;
        mouseY = y;
        mouseSeen = true;
        return;
    }
    // The recorded position stays put, so slow drifting adds up to a dismissal.
    const int64_t dx = std::llabs(int64_t{x} - mouseX);
    const int64_t dy = std::llabs(int64_t{y} - mouseY);
    if (dx > 8 || dy > 8) Dismiss();
}

SaverSession::RunOptions SaverSession::ReadOptions() {
    fit = Settings::ReadDword(kOptionSaverFit.name, kOptionSaverFit.fallback) != 0;
    title = Settings::ReadDword(kOptionSaverTitle.name, kOptionSaverTitle.fallback) != 0;
    importedTitle = Settings::ReadDword(kOptionSaverImportedTitle.name,
                                        kOptionSaverImportedTitle.fallback) != 0;
    RunOptions options;
    // Parsed once, so that every monitor shows the same kind, "random" included.
    options.kind = ParseEffectKind(Settings::ReadString(kValueSaverShow));
    options.effectOptions.pauseIndex = PauseIndex(Settings::ReadString(kValueSaverPause));
    options.effectOptions.fit = fit;
    return options;
}

std::vector<std::wstring> ChoosePhotos(const PhotoLister& list, const std::wstring& first,
                                       const std::wstring& second) {
    auto photos = list(first);
    if (photos.empty()) photos = list(second);
    return photos;
}

void OrderPhotos(std::vector<std::wstring>& photos, int32_t randomFlag,
                 const std::function<uint32_t()>& random) {
    if (randomFlag == 0) {
        std::stable_sort(
            photos.begin(), photos.end(),
            [](const std::wstring& a, const std::wstring& b) { return ComparePhotoNames(a, b); });
        return;
    }
    for (size_t n = photos.size(); n > 1; --n) {
        const size_t j = random() % n;
        if (j != n - 1) std::swap(photos[n - 1], photos[j]);
    }
}

uint64_t PhotoShare(size_t photoCount, size_t rectangleCount) {
    return std::max<uint64_t>(1, photoCount / std::max<size_t>(1, rectangleCount));
}

float WindowScale(SaverMode mode, uint32_t dpi, int32_t height, int32_t screenHeight) {
    float scale = static_cast<float>(dpi) / 96.0f;
    if (mode == SaverMode::Preview) {
        // The design of a whole screen shrinks with the pane.
        const float shrink =
            static_cast<float>(height) / static_cast<float>(std::max(screenHeight, 1));
        scale = shrink * scale;
    }
    return scale;
}

void SaverSession::OpenWindows(const std::vector<Rectangle>& rectangles, const WindowOpener& open) {
    const uint64_t share = PhotoShare(photos.size(), rectangles.size());
    for (size_t i = 0; i < rectangles.size(); ++i) {
        const Rectangle& r = rectangles[i];
        auto window =
            std::make_unique<ScreenWindow>(this, i * share, r.right - r.left, r.bottom - r.top);
        if (open(*window, r)) windows.push_back(std::move(window));
    }
}

bool SaverSession::StartDirect2D(const RunOptions& options) {
    // Every result reaches the user interface through the first window.
    queue.Start(windows.front()->hwnd, WindowMessage::WorkDone);
    bool ready = true;
    for (size_t i = 0; i < windows.size(); ++i) {
        ScreenWindow& window = *windows[i];
        window.factories = factories.get();
        window.primary = i == 0;
        window.scale = WindowScale(mode, thread->WindowDpi(window.hwnd), window.height,
                                   thread->ScreenHeight());
        if (!window.CreateTarget()) {
            ready = false;
            break;
        }
        window.source = std::make_unique<PhotoSource>(&queue, &photos, window.cursor,
                                                      TitleFlags{title, importedTitle});
        window.effect = MakeEffect(options.kind, options.effectOptions, *window.source);
    }
    if (ready) return true;
    Log::Write(L"saver: Direct2D isn't working here; showing the crossfade instead");
    for (const auto& window : windows) {
        window->effect.reset();
        window->source.reset();
        window->layer.reset();
        window->target.reset();
        thread->InvalidateWindow(window->hwnd);
    }
    // The work queue, already started, stays idle until the session ends.
    return false;
}
