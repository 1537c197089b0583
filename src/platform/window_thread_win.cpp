#include "platform/window_thread_win.h"

#include <windows.h>

#include "platform/d2d_surface_win.h"
#include "platform/image_decoder_win.h"
#include "platform/win_handles.h"
#include "session/frame_wait.h"

int64_t Win32WindowThread::CounterFrequency() {
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

int64_t Win32WindowThread::Counter() {
    LARGE_INTEGER count{};
    QueryPerformanceCounter(&count);
    return count.QuadPart;
}

WindowThread::Dispatched Win32WindowThread::DispatchNext() {
    MSG message{};
    if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return Dispatched::Nothing;
    if (message.message == WM_QUIT) return Dispatched::Quit;
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return Dispatched::Message;
}

void Win32WindowThread::WaitForInput(uint32_t milliseconds) {
    // Every kind of input and message, as Windows 7 knows them: the headers' QS_ALLINPUT grows
    // with _WIN32_WINNT (QS_TOUCH, QS_POINTER), and Windows 7 rejects the wait with those bits.
    constexpr DWORD kAllInputWindows7 = 0x4FF;
    FrameWait wait = PlanFrameWait(milliseconds, frameTimer.Valid());
    if (wait.onTimer) {
        LARGE_INTEGER due{};
        due.QuadPart = wait.timerDue;
        if (!SetWaitableTimer(frameTimer.Get(), &due, 0, nullptr, nullptr, FALSE))
            wait = PlanFrameWait(milliseconds, false);
    }
    HANDLE timer = frameTimer.Get();
    MsgWaitForMultipleObjects(wait.onTimer ? 1 : 0, wait.onTimer ? &timer : nullptr, FALSE,
                              wait.timeoutMs, kAllInputWindows7);
}

void Win32WindowThread::HideWindow(WindowHandle window) {
    ShowWindow(static_cast<HWND>(window), SW_HIDE);
}

void Win32WindowThread::InvalidateWindow(WindowHandle window) {
    InvalidateRect(static_cast<HWND>(window), nullptr, FALSE);
}

void Win32WindowThread::PostQuit() { PostQuitMessage(0); }

uint32_t Win32WindowThread::WindowDpi(WindowHandle window) {
    // Looked up each time: the call exists from Windows 10 on.
    using GetDpi = UINT(WINAPI*)(HWND);
    HMODULE user32 = GetModuleHandleW(L"user32.dll");
    auto getDpi = user32 ? reinterpret_cast<GetDpi>(
                               reinterpret_cast<void*>(GetProcAddress(user32, "GetDpiForWindow")))
                         : nullptr;
    const UINT dpi = getDpi ? getDpi(static_cast<HWND>(window)) : 0;
    if (dpi != 0) return dpi;
    WindowDc screen(nullptr);
    return static_cast<uint32_t>(GetDeviceCaps(screen.Get(), LOGPIXELSY));
}

int32_t Win32WindowThread::ScreenHeight() { return GetSystemMetrics(SM_CYSCREEN); }

std::unique_ptr<DrawingSurface>
Win32WindowThread::CreateWindowTarget(const DrawingFactories* factories, WindowHandle window,
                                      int32_t width, int32_t height, bool primary) {
    if (!factories) return nullptr;
    return CreateHwndSurface(*factories, static_cast<HWND>(window), width, height, primary);
}

bool Win32WindowThread::DecodeBitmap(const std::wstring& path, int32_t width, int32_t height,
                                     bool cover, PlatformObject& bitmap) {
    HBITMAP held = static_cast<HBITMAP>(bitmap.get());
    if (!LoadDib(path, width, height, cover, held)) return false;
    // LoadDib has deleted the bitmap that it replaced: the holder lets go of it unfreed and
    // takes the new one.
    bitmap.release();
    bitmap = PlatformObject(held, DeleteGdiObject);
    return true;
}
