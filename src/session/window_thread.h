#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "effects/drawing_surface.h"
#include "session/saver_mode.h"

// A platform object that the logic holds but never opens (a GDI bitmap); its deleter frees it.
using PlatformObject = std::unique_ptr<void, void (*)(void*)>;

// The services of the window thread that the session's logic calls back into: the performance
// counter, the message queue, the wait for input, hiding windows and making window targets.
// src/platform/ implements it with the Windows calls; tests script it.
class WindowThread {
public:
    enum class Dispatched { Nothing, Message, Quit };

    virtual ~WindowThread() = default;

    // The performance counter and its frequency (counts per second).
    virtual int64_t CounterFrequency() = 0;
    virtual int64_t Counter() = 0;
    // Removes the next waiting message of the thread: Quit for the quit message, Message after it
    // has translated and dispatched any other, Nothing when the queue is empty.
    virtual Dispatched DispatchNext() = 0;
    // Sleeps up to `milliseconds`, or until any input or posted message arrives.
    virtual void WaitForInput(uint32_t milliseconds) = 0;
    virtual void HideWindow(WindowHandle window) = 0;
    // Marks the whole window for painting, without erasing.
    virtual void InvalidateWindow(WindowHandle window) = 0;
    virtual void PostQuit() = 0;
    // The DPI of the window, or the system's when the window's can't be had.
    virtual uint32_t WindowDpi(WindowHandle window) = 0;
    // The height of the primary screen in pixels.
    virtual int32_t ScreenHeight() = 0;
    // A Direct2D target for the window, `width` x `height` pixels at 96 DPI, that presents with
    // the display's refresh when `primary` and immediately otherwise; null on failure.
    virtual std::unique_ptr<DrawingSurface> CreateWindowTarget(const DrawingFactories* factories,
                                                               WindowHandle window, int32_t width,
                                                               int32_t height, bool primary) = 0;
    // Decodes the photo at `path` into a new bitmap of exactly `width` x `height` for the
    // crossfade, the photo whole (or covering it when `cover`) on black, and on success puts it
    // into `bitmap` in place of the old one. False leaves `bitmap` alone.
    virtual bool DecodeBitmap(const std::wstring& path, int32_t width, int32_t height, bool cover,
                              PlatformObject& bitmap) = 0;
};
