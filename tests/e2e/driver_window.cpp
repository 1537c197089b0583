#include "e2e/driver_window.h"

#include <atomic>
#include <future>

namespace e2e {

namespace {

std::atomic<int> settingsRequests{0};

LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DESTROY) PostQuitMessage(0);
    if (message == RegisterWindowMessageW(L"Lumivane.OpenSettings")) ++settingsRequests;
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

HWND Create(const DriverWindow::Options& options) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH));
    windowClass.lpszClassName = options.className.c_str();
    RegisterClassW(&windowClass); // a second window of the class finds it registered
    RECT frame{0, 0, options.clientWidth, options.clientHeight};
    AdjustWindowRect(&frame, options.style, FALSE);
    HWND hwnd = CreateWindowExW(0, windowClass.lpszClassName, L"", options.style, 40, 40,
                                frame.right - frame.left, frame.bottom - frame.top, nullptr,
                                nullptr, windowClass.hInstance, nullptr);
    if (hwnd && options.show) ShowWindow(hwnd, SW_SHOWNOACTIVATE);
    return hwnd;
}

} // namespace

DriverWindow::DriverWindow(Options options) {
    std::promise<HWND> created;
    std::future<HWND> ready = created.get_future();
    thread = std::thread([&options, &created] {
        HWND made = Create(options);
        created.set_value(made);
        MSG message;
        while (made && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    });
    hwnd = ready.get();
}

void DriverWindow::Destroy() {
    if (!thread.joinable()) return;
    if (hwnd) PostMessageW(hwnd, WM_CLOSE, 0, 0);
    thread.join();
}

DriverWindow::Options PreviewHostOptions(int width, int height) {
    return {L"LumivaneE2EPreviewHost", WS_OVERLAPPED | WS_CAPTION | WS_CLIPCHILDREN, width, height};
}

DriverWindow::Options FakeTrayOptions() { return {L"LumivaneTray", WS_OVERLAPPED, 0, 0, false}; }

int SettingsRequests() { return settingsRequests; }

} // namespace e2e
