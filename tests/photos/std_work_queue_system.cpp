#include "photos/std_work_queue_system.h"

#include <chrono>
#include <thread>

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

} // namespace

// One started thread and whether its main has returned.
struct StdWorkQueueSystem::Run {
    std::thread thread;
    std::mutex lock;
    std::condition_variable ended;
    bool done = false;
};

namespace {

class StdThread final : public WorkQueue::Thread {
public:
    explicit StdThread(std::function<void(uint32_t)> wait) : wait(std::move(wait)) {}
    void Wait(uint32_t milliseconds) override { wait(milliseconds); }

private:
    std::function<void(uint32_t)> wait;
};

} // namespace

StdWorkQueueSystem::~StdWorkQueueSystem() {
    for (const auto& run : runs) run->thread.join();
}

std::unique_ptr<WorkQueue::Wake> StdWorkQueueSystem::CreateWake() {
    return std::make_unique<CvWake>();
}

std::unique_ptr<WorkQueue::Thread> StdWorkQueueSystem::StartThread(std::function<void()> main) {
    if (failThreads) return nullptr;
    auto run = std::make_shared<Run>();
    run->thread = std::thread([run = run.get(), main = std::move(main)]() mutable {
        main();
        main = nullptr; // what the thread owns goes before it counts as ended
        std::lock_guard<std::mutex> hold(run->lock);
        run->done = true;
        run->ended.notify_all();
    });
    runs.push_back(run);
    return std::make_unique<StdThread>([this, run = run.get()](uint32_t milliseconds) {
        if (beforeWait) beforeWait();
        waits.push_back(milliseconds);
        if (overrun) return;
        std::unique_lock<std::mutex> hold(run->lock);
        run->ended.wait_for(hold, std::chrono::milliseconds(milliseconds),
                            [run] { return run->done; });
    });
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

WorkQueue::System& WorkQueue::DefaultSystem() {
    static StdWorkQueueSystem system;
    return system;
}
