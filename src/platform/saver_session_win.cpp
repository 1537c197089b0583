// The Windows half of a session's start-up: the photo list, the window class, one window per
// monitor (or the child window in the preview pane) and the choice of loop.
#include <windows.h>

#include <vector>

#include "library/companion.h"
#include "library/data_paths.h"
#include "library/options.h"
#include "library/photo_listing.h"
#include "library/random.h"
#include "library/settings.h"
#include "platform/d2d_surface_win.h"
#include "platform/process_start_win.h"
#include "platform/win_handles.h"
#include "platform/window_proc_win.h"
#include "session/saver_session.h"

namespace {

constexpr wchar_t kWindowTitle[] = L"Lumivane";
constexpr DWORD kFullscreenExStyle = WS_EX_TOPMOST | WS_EX_TOOLWINDOW;
constexpr DWORD kFullscreenStyle = WS_POPUP | WS_VISIBLE;
constexpr DWORD kPreviewStyle = WS_CHILD | WS_VISIBLE;

void RegisterSaverClass() {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = SaverWindowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = kSaverWindowClass;
    RegisterClassExW(&windowClass);
}

BOOL CALLBACK AddMonitor(HMONITOR, HDC, LPRECT rect, LPARAM list) {
    auto* rectangles = reinterpret_cast<std::vector<SaverSession::Rectangle>*>(list);
    rectangles->push_back({rect->left, rect->top, rect->right, rect->bottom});
    return TRUE;
}

// The preview pane's client area, or every monitor in virtual screen coordinates in the
// system's order.
std::vector<SaverSession::Rectangle> WindowRectangles(HWND previewParent) {
    std::vector<SaverSession::Rectangle> rectangles;
    if (previewParent) {
        RECT client{};
        GetClientRect(previewParent, &client);
        rectangles.push_back({client.left, client.top, client.right, client.bottom});
    } else {
        EnumDisplayMonitors(nullptr, nullptr, AddMonitor, reinterpret_cast<LPARAM>(&rectangles));
    }
    return rectangles;
}

bool OpenWindow(ScreenWindow& window, const SaverSession::Rectangle& rectangle, HWND parent) {
    const bool preview = parent != nullptr;
    HWND hwnd = CreateWindowExW(preview ? 0 : kFullscreenExStyle, kSaverWindowClass, kWindowTitle,
                                preview ? kPreviewStyle : kFullscreenStyle, rectangle.left,
                                rectangle.top, window.width, window.height, parent, nullptr,
                                GetModuleHandleW(nullptr), &window);
    if (!hwnd) return false;
    window.hwnd = hwnd;
    // The compose surface of the crossfade, made on every path: a window that loses its target
    // paints through it.
    WindowDc dc(hwnd);
    window.backBitmap = PlatformObject(
        CreateCompatibleBitmap(dc.Get(), window.width, window.height), DeleteGdiObject);
    return true;
}

} // namespace

int32_t SaverSession::Run(WindowHandle previewParent) {
    const DataPaths& paths = DataPaths::Get();
    photos = ChoosePhotos(ListPhotos, paths.screenSaverDir, paths.wallpaperCacheDir);
    OrderPhotos(photos, Settings::ReadDword(kOptionSaverRandom.name, kOptionSaverRandom.fallback),
                RandomU32);
    const RunOptions options = ReadOptions();
    // With no photos Direct2D isn't even tried.
    const bool direct2d = !photos.empty() && LoadDrawingFactories(factories);

    RegisterSaverClass();
    HWND parent = static_cast<HWND>(previewParent);
    // A preview lives in another program's window, whose DPI awareness may differ from ours: the
    // whole run takes on the pane's, before its size is read and our window is made in it. The
    // scale then follows from sizes and DPI in that one coordinate space.
    if (parent) TakeDpiAwarenessOf(parent);
    OpenWindows(WindowRectangles(parent), [parent](ScreenWindow& window, const Rectangle& r) {
        return OpenWindow(window, r, parent);
    });
    if (windows.empty()) return 1;
    if (direct2d && StartDirect2D(options)) return RenderLoop();
    return CrossfadeLoop();
}
