#pragma once

#include "platform/win_handles.h"
#include "session/window_thread.h"

// The window thread's services on Windows: the performance counter, the thread's message queue,
// MsgWaitForMultipleObjects (with a high-resolution timer where the system has one), ShowWindow,
// Direct2D window targets and the crossfade's bitmaps.
class Win32WindowThread : public WindowThread {
public:
    int64_t CounterFrequency() override;
    int64_t Counter() override;
    Dispatched DispatchNext() override;
    void WaitForInput(uint32_t milliseconds) override;
    void HideWindow(WindowHandle window) override;
    void InvalidateWindow(WindowHandle window) override;
    void PostQuit() override;
    uint32_t WindowDpi(WindowHandle window) override;
    int32_t ScreenHeight() override;
    std::unique_ptr<DrawingSurface> CreateWindowTarget(const DrawingFactories* factories,
                                                       WindowHandle window, int32_t width,
                                                       int32_t height, bool primary) override;
    // LoadDib, with the window's bitmap holder in place of a bare HBITMAP.
    bool DecodeBitmap(const std::wstring& path, int32_t width, int32_t height, bool cover,
                      PlatformObject& bitmap) override;

private:
    // The frame wait's timer; invalid where the system has no high-resolution timer (before
    // Windows 10 1803, which rejects the flag), and the plain wait serves.
    UniqueHandle frameTimer{CreateWaitableTimerExW(nullptr, nullptr,
                                                   0x2, // CREATE_WAITABLE_TIMER_HIGH_RESOLUTION
                                                   TIMER_ALL_ACCESS)};
};
