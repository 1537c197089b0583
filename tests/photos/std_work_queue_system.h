#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "photos/work_queue.h"

// The work queue's system services on the host: standard threads, an event made of a mutex and a
// condition variable, and a notify call that the test watches. It is also the default system of
// the host build, so sessions in host tests start real threads.
class StdWorkQueueSystem final : public WorkQueue::System {
public:
    std::unique_ptr<WorkQueue::Wake> CreateWake() override;
    std::unique_ptr<WorkQueue::Thread> StartThread(std::function<void()> main) override;
    void Notify(WindowHandle window, uint32_t message) override;

    // Waits up to 5 s until `count` notifications have arrived in all; false if they didn't.
    bool WaitForNotifies(size_t count);
    std::vector<std::pair<WindowHandle, uint32_t>> Notifies(); // as (window, message)

    bool failThreads = false; // StartThread gives null
    bool overrun = false;     // a wait for a thread gives up at once, as after its bound

private:
    std::mutex lock;
    std::condition_variable changed;
    std::vector<std::pair<WindowHandle, uint32_t>> notifies;
    // Every thread started. Last, so that it goes first: dropping the last copy of a thread's
    // future joins it while a late Notify still finds the members above.
    std::vector<std::shared_future<void>> runs;
};
