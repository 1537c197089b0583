#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "photos/work_queue.h"

// A work queue system whose background thread never runs by itself: jobs wait in the queue until
// a test runs them on its own thread, with RunJobs or with the queue's own loop (`loop`), so
// photos arrive exactly when the test says. A wait for the thread ends at once.
struct ScriptedQueueSystem final : WorkQueue::System {
    struct Idle final : WorkQueue::Wake, WorkQueue::Thread {
        explicit Idle(uint32_t& waited) : waited(waited) {}
        void Set() override {}
        void Wait() override {}
        void Wait(uint32_t milliseconds) override { waited = milliseconds; }
        uint32_t& waited;
    };

    std::unique_ptr<WorkQueue::Wake> CreateWake() override {
        return std::make_unique<Idle>(waited);
    }
    std::unique_ptr<WorkQueue::Thread> StartThread(std::function<void()> main) override {
        loop = std::move(main);
        return std::make_unique<Idle>(waited);
    }
    void Notify(WindowHandle window, uint32_t message) override {
        notified.emplace_back(window, message);
    }

    std::function<void()> loop; // the thread's body; it holds the queue's shared block
    uint32_t waited = 0;        // the bound of the last wait for the thread
    std::vector<std::pair<WindowHandle, uint32_t>> notified;
};

// Runs up to `count` waiting jobs in the order posted, then every completion, as the window
// thread's message phase would. Gives the number of jobs run. No other thread touches the queue.
inline size_t RunJobs(WorkQueue& queue, size_t count = SIZE_MAX) {
    size_t ran = 0;
    for (auto& jobs = queue.shared->jobs; ran < count && !jobs.empty(); ++ran) {
        const WorkQueue::Item job = std::move(jobs.front());
        jobs.pop_front();
        job();
    }
    queue.Drain();
    return ran;
}
