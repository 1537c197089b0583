#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "library/window_handle.h"

// The only bridge between the window thread and the one background thread of a run. Jobs go
// down through `jobs` and run on the background thread, one at a time, in the order posted;
// their completions come back through `results` and run on the window thread in `Drain`, each
// announced by one window message. An item is any callable; the queue knows nothing of photos.
//
// The lock, both queues, the wake event and the stop flag live in a block that the background
// thread holds a reference to. A job that outlasts the bounded wait of Stop (a huge file on a
// slow disk) therefore finds all of them still valid after the WorkQueue itself is gone: its
// late completion lands in a queue that nobody drains and is freed with the block when the
// thread ends, or with the process.
class WorkQueue {
public:
    using Item = std::function<void()>;

    // How long Stop waits for the background thread before it goes on without it.
    static constexpr uint32_t kStopWaitMilliseconds = 5000;

    // The auto-reset event that wakes the background thread.
    class Wake {
    public:
        virtual ~Wake() = default;
        virtual void Set() = 0;
        // Blocks until the event is set, and resets it.
        virtual void Wait() = 0;
    };

    // A started background thread. Destroying it lets go of the thread without waiting.
    class Thread {
    public:
        virtual ~Thread() = default;
        // Waits at most `milliseconds` for the thread to end; the outcome isn't needed.
        virtual void Wait(uint32_t milliseconds) = 0;
    };

    // The thread, event and message services of the system. The program's own lives as long as
    // the process, so that a late thread can still announce its completion.
    class System {
    public:
        virtual ~System() = default;
        // A new unsignalled auto-reset event, or null.
        virtual std::unique_ptr<Wake> CreateWake() = 0;
        // Runs `main` on a new thread that is a single-threaded COM apartment; null when no
        // thread can be made.
        virtual std::unique_ptr<Thread> StartThread(std::function<void()> main) = 0;
        // Posts `message` to `window` with no arguments; any thread, the result isn't looked at.
        virtual void Notify(WindowHandle window, uint32_t message) = 0;
    };

    // What the queue shares with its background thread (see above).
    struct Shared {
        // Appends a completion to `results` and posts one message to `window`; with no window
        // the completion is dropped unrun. Safe on any thread.
        void PostResult(Item completion);
        // The background thread's loop: waits for `wake` and runs jobs until `stopping`.
        void RunJobs();

        System* system = nullptr;
        std::mutex lock; // guards jobs, results, window and message
        std::deque<Item> jobs;
        std::deque<Item> results;
        WindowHandle window = nullptr;
        uint32_t message = 0;
        std::unique_ptr<Wake> wake;
        std::atomic<bool> stopping{false}; // set before `wake`, read between jobs
    };

    explicit WorkQueue(System& system = DefaultSystem());
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;
    // Stops the thread, then drops the items left unrun: completions first, then jobs.
    ~WorkQueue();

    // Window thread, once: starts the background thread; each completion posts `message` to
    // `window`. Without an event or a thread, jobs stay queued until the destructor drops them.
    void Start(WindowHandle window, uint32_t message);
    // Queues a job for the background thread and wakes it. Never blocks beyond the lock.
    void Post(Item job);
    // Queues a completion for the window thread; see Shared::PostResult.
    void PostResult(Item completion);
    // Window thread: runs every waiting completion in order, also those that arrive meanwhile.
    void Drain();
    // Window thread, from the destructor: tells the thread to end, waits for it at most
    // kStopWaitMilliseconds, and drops every queued job and completion unrun. Does nothing on a
    // queue without a thread.
    void Stop();

    // The program's services: Windows events, threads and messages (src/platform/).
    static System& DefaultSystem();

    WindowHandle window = nullptr; // set by Start, never cleared
    uint32_t message = 0;
    std::unique_ptr<Thread> thread; // null before Start and after Stop
    std::shared_ptr<Shared> shared; // jobs keep a plain pointer: the thread holds it alive
};
