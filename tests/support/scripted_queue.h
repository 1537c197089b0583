#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "photos/work_queue.h"

// A work queue system whose background thread never runs: jobs wait in the queue until a test
// runs them on its own thread with RunJobs, so photos arrive exactly when the test says.
class ScriptedQueueSystem final : public WorkQueue::System {
    struct Idle final : WorkQueue::Wake, WorkQueue::Thread {
        void Set() override {}
        void Wait() override {}
        void Wait(uint32_t) override {}
    };

public:
    std::unique_ptr<WorkQueue::Wake> CreateWake() override { return std::make_unique<Idle>(); }
    std::unique_ptr<WorkQueue::Thread> StartThread(std::function<void()>) override {
        return std::make_unique<Idle>();
    }
    void Notify(WindowHandle, uint32_t) override {}
};

// Runs up to `count` waiting jobs in the order posted, then every completion, as the window
// thread's message phase would. Gives the number of jobs run.
inline size_t RunJobs(WorkQueue& queue, size_t count = SIZE_MAX) {
    size_t ran = 0;
    for (; ran < count; ++ran) {
        WorkQueue::Item job;
        {
            std::lock_guard<std::mutex> guard(queue.shared->lock);
            if (queue.shared->jobs.empty()) break;
            job = std::move(queue.shared->jobs.front());
            queue.shared->jobs.pop_front();
        }
        job();
    }
    queue.Drain();
    return ran;
}
