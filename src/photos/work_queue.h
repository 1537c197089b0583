#pragma once

#include <cstdint>
#include <functional>

#include "session/saver_mode.h"

// The bridge between the window thread and the background thread of a run.
//
// Stand-in until the photo pipeline lands: it keeps the window and message of Start and never
// starts a thread; a posted job is dropped, so its completion never runs, which is what a
// stopped queue does with work in flight. The photo pipeline issue replaces the bodies.
class WorkQueue {
public:
    using Item = std::function<void()>;

    WorkQueue() = default;
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;
    ~WorkQueue();

    // Window thread, once: results are announced by posting `message` to `window`.
    void Start(WindowHandle window, uint32_t message);
    void Post(Item job);
    void PostResult(Item completion);
    // Runs the waiting completions; window thread only.
    void Drain();

    WindowHandle window = nullptr;
    uint32_t message = 0;
    bool started = false;

private:
    void Stop();
};
