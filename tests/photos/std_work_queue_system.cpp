#include "photos/std_work_queue_system.h"

#include <chrono>

namespace {

class CvWake final : public WorkQueue::Wake {
public:
    void Set() override {
        std::lock_guard<std::mutex> hold(lock);
        set = true;
        changed.notify_one();
    }
    void Wait() override {
        std::unique_lock<std::mutex> hold(lock);
        changed.wait(hold, [this] { return set; });
        set = false;
    }

private:
    std::mutex lock;
    std::condition_variable changed;
    bool set = false;
};

class StdThread final : public WorkQueue::Thread {
public:
    StdThread(bool overrun, std::shared_future<void> ended)
        : overrun(overrun), ended(std::move(ended)) {}
    void Wait(uint32_t milliseconds) override {
        if (!overrun) ended.wait_for(std::chrono::milliseconds(milliseconds));
    }

private:
    bool overrun;
    std::shared_future<void> ended;
};

} // namespace

std::unique_ptr<WorkQueue::Wake> StdWorkQueueSystem::CreateWake() {
    return std::make_unique<CvWake>();
}

std::unique_ptr<WorkQueue::Thread> StdWorkQueueSystem::StartThread(std::function<void()> main) {
    if (failThreads) return nullptr;
    runs.push_back(std::async(std::launch::async, [main = std::move(main)]() mutable {
                       main();
                       main = nullptr; // what the thread owns goes before it counts as ended
                   }).share());
    return std::make_unique<StdThread>(overrun, runs.back());
}

void StdWorkQueueSystem::Notify(WindowHandle window, uint32_t message) {
    std::lock_guard<std::mutex> hold(lock);
    notifies.emplace_back(window, message);
    changed.notify_all();
}

bool StdWorkQueueSystem::WaitForNotifies(size_t count) {
    std::unique_lock<std::mutex> hold(lock);
    return changed.wait_for(hold, std::chrono::seconds(5),
                            [&] { return notifies.size() >= count; });
}

std::vector<std::pair<WindowHandle, uint32_t>> StdWorkQueueSystem::Notifies() {
    std::lock_guard<std::mutex> hold(lock);
    return notifies;
}
