#include "e2e/driver_window.h"

#include <algorithm>
#include <future>

namespace e2e {

DriverWindow::DriverWindow(Options chosen) : options(std::move(chosen)) {
    std::promise<HWND> created;
    std::future<HWND> ready = created.get_future();
    thread = std::thread([this, &created] { Run(&created); });
    hwnd = ready.get();
}

DriverWindow::~DriverWindow() { Destroy(); }

void DriverWindow::Destroy() {
    if (!thread.joinable()) return;
    if (hwnd) PostMessageW(hwnd, WM_CLOSE, 0, 0);
    thread.join();
}

int DriverWindow::Count(UINT message) const {
    std::lock_guard<std::mutex> guard(lock);
    return static_cast<int>(std::count(arrived.begin(), arrived.end(), message));
}

void DriverWindow::Run(std::promise<HWND>* created) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH));
    windowClass.lpszClassName = options.className.c_str();
    RegisterClassExW(&windowClass); // a second window of the class finds it registered

    RECT frame{0, 0, options.clientWidth, options.clientHeight};
    AdjustWindowRectEx(&frame, options.style, FALSE, options.exStyle);
    HWND made = CreateWindowExW(options.exStyle, options.className.c_str(), options.title.c_str(),
                                options.style, options.x, options.y, frame.right - frame.left,
                                frame.bottom - frame.top, nullptr, nullptr,
                                GetModuleHandleW(nullptr), this);
    if (made && options.show) ShowWindow(made, SW_SHOWNOACTIVATE);
    created->set_value(made);
    if (!made) return;

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

LRESULT CALLBACK DriverWindow::Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<DriverWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (self) {
        const auto& watched = self->options.recorded;
        if (std::find(watched.begin(), watched.end(), message) != watched.end()) {
            std::lock_guard<std::mutex> guard(self->lock);
            self->arrived.push_back(message);
        }
    }
    if (message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

DriverWindow::Options PreviewHostOptions(int width, int height) {
    DriverWindow::Options options;
    options.className = L"LumivaneE2EPreviewHost";
    options.title = L"Preview host";
    options.style = WS_OVERLAPPED | WS_CAPTION | WS_CLIPCHILDREN;
    options.x = 40;
    options.y = 40;
    options.clientWidth = width;
    options.clientHeight = height;
    return options;
}

DriverWindow::Options FakeTrayOptions() {
    DriverWindow::Options options;
    options.className = L"LumivaneTray";
    options.title = L"";
    options.style = WS_OVERLAPPED;
    options.show = false;
    options.recorded = {OpenSettingsMessage()};
    return options;
}

UINT OpenSettingsMessage() { return RegisterWindowMessageW(L"Lumivane.OpenSettings"); }

} // namespace e2e
