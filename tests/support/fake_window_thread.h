#pragma once

#include <deque>
#include <functional>
#include <set>
#include <tuple>
#include <vector>

#include "session/window_thread.h"

// A scripted window thread: a counter at one count per microsecond that tests and waits move, a
// message queue of callables (a null one is the quit message), and records of what the logic
// asked of the window system.
struct FakeWindowThread final : WindowThread {
    int64_t CounterFrequency() override { return 1'000'000; }
    int64_t Counter() override {
        if (onCounter) onCounter();
        return counter;
    }
    Dispatched DispatchNext() override {
        if (messages.empty()) return Dispatched::Nothing;
        auto message = std::move(messages.front());
        messages.pop_front();
        if (!message) return Dispatched::Quit;
        message();
        return Dispatched::Message;
    }
    // The wait sleeps its whole time: nothing arrives early in a scripted queue.
    void WaitForInput(uint32_t milliseconds) override {
        waits.push_back(milliseconds);
        Advance(milliseconds);
    }
    void HideWindow(WindowHandle window) override { hidden.push_back(window); }
    void InvalidateWindow(WindowHandle window) override { invalidated.push_back(window); }
    void PostQuit() override { messages.push_back(nullptr); }
    uint32_t WindowDpi(WindowHandle) override { return dpi; }
    int32_t ScreenHeight() override { return 1080; }
    std::unique_ptr<DrawingSurface> CreateWindowTarget(const DrawingFactories*, WindowHandle window,
                                                       int32_t width, int32_t height,
                                                       bool primary) override {
        targetRequests.push_back({window, width, height, primary});
        return makeTarget(window);
    }
    // A loaded "bitmap" is a heap copy of its path, so a leak or a double free shows under ASan.
    bool DecodeBitmap(const std::wstring& path, int32_t, int32_t, bool,
                      PlatformObject& bitmap) override {
        loads.push_back(path);
        if (unreadable.count(path)) return false;
        bitmap = PlatformObject(new std::wstring(path),
                                [](void* held) { delete static_cast<std::wstring*>(held); });
        return true;
    }

    void Advance(double milliseconds) { counter += static_cast<int64_t>(milliseconds * 1000); }

    int64_t counter = 5'000'000;
    std::function<void()> onCounter;
    std::deque<std::function<void()>> messages;
    std::vector<uint32_t> waits;
    std::vector<WindowHandle> hidden;
    std::vector<WindowHandle> invalidated;
    uint32_t dpi = 96;
    // Window, width, height and whether it presents with the display's refresh.
    std::vector<std::tuple<WindowHandle, int32_t, int32_t, bool>> targetRequests;
    std::function<std::unique_ptr<DrawingSurface>(WindowHandle)> makeTarget;
    std::set<std::wstring> unreadable; // paths whose load fails
    std::vector<std::wstring> loads;   // every path asked for, in order
};
