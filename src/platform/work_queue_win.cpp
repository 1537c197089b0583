// The work queue's system services on Windows: an auto-reset event, a thread made with
// CreateThread that lives in a single-threaded COM apartment, and PostMessageW.
#include <windows.h>

#include <objbase.h>

#include <utility>

#include "photos/work_queue.h"
#include "platform/win_handles.h"

namespace {

class EventWake final : public WorkQueue::Wake {
public:
    explicit EventWake(HANDLE event) : event(event) {}
    void Set() override { SetEvent(event.Get()); }
    void Wait() override { WaitForSingleObject(event.Get(), INFINITE); }

private:
    UniqueHandle event;
};

class WinThread final : public WorkQueue::Thread {
public:
    explicit WinThread(HANDLE thread) : thread(thread) {}
    void Wait(uint32_t milliseconds) override { WaitForSingleObject(thread.Get(), milliseconds); }

private:
    UniqueHandle thread; // closing the handle leaves a late thread running
};

DWORD WINAPI ThreadMain(void* parameter) {
    // Declared first, so that what `main` owns is let go of after the apartment is left.
    std::unique_ptr<std::function<void()>> main(static_cast<std::function<void()>*>(parameter));
    ComApartment apartment; // all decoding of the effects runs in this apartment
    (*main)();
    return 0;
}

class WinSystem final : public WorkQueue::System {
public:
    std::unique_ptr<WorkQueue::Wake> CreateWake() override {
        HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        if (!event) return nullptr;
        return std::make_unique<EventWake>(event);
    }

    std::unique_ptr<WorkQueue::Thread> StartThread(std::function<void()> main) override {
        auto owned = std::make_unique<std::function<void()>>(std::move(main));
        HANDLE thread = CreateThread(nullptr, 0, ThreadMain, owned.get(), 0, nullptr);
        if (!thread) return nullptr;
        owned.release(); // the thread owns it now
        return std::make_unique<WinThread>(thread);
    }

    void Notify(WindowHandle window, uint32_t message) override {
        PostMessageW(static_cast<HWND>(window), message, 0, 0);
    }
};

} // namespace

WorkQueue::System& WorkQueue::DefaultSystem() {
    // Never destroyed: a thread that outlives its queue may still post through it at exit.
    static WinSystem* system = new WinSystem;
    return *system;
}
