#include "photos/work_queue.h"

#include <utility>

namespace {

// Takes both queues out under the lock and destroys their items unrun outside it, so that
// whatever they own can't run into the lock; `resultsFirst` chooses which queue goes first.
void DropItems(WorkQueue::Shared& shared, bool resultsFirst) {
    std::deque<WorkQueue::Item> jobs;
    std::deque<WorkQueue::Item> results;
    {
        std::lock_guard<std::mutex> hold(shared.lock);
        jobs.swap(shared.jobs);
        results.swap(shared.results);
    }
    if (resultsFirst) results.clear();
    jobs.clear();
    results.clear();
}

} // namespace

WorkQueue::WorkQueue(System& system) : shared(std::make_shared<Shared>()) {
    shared->system = &system;
}

WorkQueue::~WorkQueue() {
    Stop();
    // A queue that never had a thread still holds its items; a late thread may still add one.
    DropItems(*shared, true);
}

void WorkQueue::Start(WindowHandle targetWindow, uint32_t privateMessage) {
    window = targetWindow;
    message = privateMessage;
    {
        std::lock_guard<std::mutex> hold(shared->lock);
        shared->window = targetWindow;
        shared->message = privateMessage;
    }
    shared->stopping = false;
    shared->wake = shared->system->CreateWake();
    if (!shared->wake) return;
    // The thread's own reference keeps the lock and the queues alive for as long as it runs.
    thread = shared->system->StartThread([block = shared] { block->RunJobs(); });
}

void WorkQueue::Post(Item job) {
    {
        std::lock_guard<std::mutex> hold(shared->lock);
        shared->jobs.push_back(std::move(job));
    }
    // Signalled after the append, and the emptiness test is under the lock: no wake is lost.
    if (shared->wake) shared->wake->Set();
}

void WorkQueue::PostResult(Item completion) { shared->PostResult(std::move(completion)); }

void WorkQueue::Shared::PostResult(Item completion) {
    WindowHandle target = nullptr;
    uint32_t number = 0;
    {
        std::lock_guard<std::mutex> hold(lock);
        if (!window) return; // the completion goes with this frame, unrun
        results.push_back(std::move(completion));
        target = window;
        number = message;
    }
    system->Notify(target, number);
}

void WorkQueue::Shared::RunJobs() {
    while (!stopping) {
        wake->Wait();
        if (stopping) return;
        for (;;) {
            Item job;
            {
                std::lock_guard<std::mutex> hold(lock);
                if (jobs.empty()) break;
                job = std::move(jobs.front());
                jobs.pop_front();
            }
            job();
            job = nullptr;
            if (stopping) return;
        }
    }
}

void WorkQueue::Drain() {
    for (;;) {
        Item completion;
        {
            std::lock_guard<std::mutex> hold(shared->lock);
            if (shared->results.empty()) return;
            completion = std::move(shared->results.front());
            shared->results.pop_front();
        }
        completion();
    }
}

void WorkQueue::Stop() {
    if (!thread) return;
    shared->stopping = true;
    shared->wake->Set();
    thread->Wait(kStopWaitMilliseconds);
    thread.reset();
    DropItems(*shared, false);
}
