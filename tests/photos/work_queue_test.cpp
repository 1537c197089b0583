// The work queue's logic on real standard threads, with the notify call watched by the test.
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "photos/std_work_queue_system.h"
#include "photos/work_queue.h"

namespace {

WindowHandle const kWindow = reinterpret_cast<WindowHandle>(0x10);
constexpr uint32_t kMessage = 0x8001;

TEST(WorkQueue, JobsRunInOrderAndOneDrainRunsEveryCompletion) {
    StdWorkQueueSystem system;
    WorkQueue queue(system);
    queue.Start(kWindow, kMessage);
    std::promise<void> release;
    std::shared_future<void> released = release.get_future().share();
    std::vector<std::string> ran; // jobs, then completions: ordered by the queue's lock
    for (int i = 0; i < 3; ++i) {
        queue.Post([&, i] {
            if (i == 0) released.wait(); // the others are posted while this one runs
            ran.push_back("job " + std::to_string(i));
            queue.PostResult([&, i] { ran.push_back("done " + std::to_string(i)); });
        });
    }
    release.set_value();
    ASSERT_TRUE(system.WaitForNotifies(3));
    queue.Drain();
    queue.Drain(); // nothing runs twice
    EXPECT_EQ(ran, (std::vector<std::string>{"job 0", "job 1", "job 2", "done 0", "done 1",
                                             "done 2"}));
    EXPECT_EQ(system.Notifies(),
              (std::vector<std::pair<WindowHandle, uint32_t>>(3, {kWindow, kMessage})));
    // Stop wakes the idle thread and waits for its end, when it lets go of the shared block.
    queue.Stop();
    EXPECT_EQ(queue.shared.use_count(), 1);
}

TEST(WorkQueue, StopLetsTheRunningJobEndAndDropsEverythingElseUnrun) {
    StdWorkQueueSystem system;
    auto queue = std::make_unique<WorkQueue>(system);
    queue->Start(kWindow, kMessage);
    std::promise<void> started;
    auto token = std::make_shared<int>(); // held by every item; alive while any item is
    bool firstEnded = false;
    int unrunCalls = 0;
    queue->Post([&, token] {
        started.set_value();
        // Runs on until Stop has set the flag, and a while longer than Stop would not wait.
        while (!queue->shared->stopping) std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        firstEnded = true;
        queue->PostResult([&, token] { ++unrunCalls; });
    });
    started.get_future().wait();
    queue->Post([&, token] { ++unrunCalls; });
    queue->Stop();
    EXPECT_TRUE(firstEnded);
    EXPECT_EQ(token.use_count(), 1);
    queue->Drain();
    EXPECT_EQ(unrunCalls, 0);
}

// Items that no thread takes wait for the destructor, which drops completions before jobs.
TEST(WorkQueue, WithoutAThreadItemsWaitForTheDestructorCompletionsFirst) {
    for (const bool started : {false, true}) {
        StdWorkQueueSystem system;
        system.failThreads = started; // started, but no thread can be made
        std::vector<std::string> dropped;
        const auto mark = [&dropped](const char* name) {
            return std::shared_ptr<void>(nullptr, [&dropped, name](void*) {
                dropped.push_back(name);
            });
        };
        {
            WorkQueue queue(system);
            queue.PostResult([m = mark("early")] { ADD_FAILURE(); }); // no window: dropped at once
            EXPECT_EQ(dropped, std::vector<std::string>{"early"});
            if (started) queue.Start(kWindow, kMessage);
            queue.Post([m = mark("job")] { ADD_FAILURE(); });
            if (started) queue.PostResult([m = mark("done")] { ADD_FAILURE(); });
            queue.Stop();
            EXPECT_EQ(dropped.size(), 1u) << started;
        }
        using Names = std::vector<std::string>;
        EXPECT_EQ(dropped, (started ? Names{"early", "done", "job"} : Names{"early", "job"}));
        EXPECT_EQ(system.Notifies().size(), started ? 1u : 0u);
    }
}

// A job that outlasts Stop's bound still finds the lock and the queues after the queue is gone
// (AddressSanitizer watches); its completion is never run, and is freed when the thread ends.
TEST(WorkQueue, AThreadThatOutlivesItsQueuePostsSafely) {
    StdWorkQueueSystem system;
    system.overrun = true;
    std::promise<void> started, release;
    auto token = std::make_shared<int>();
    const std::weak_ptr<int> completion = token;
    {
        WorkQueue queue(system);
        queue.Start(kWindow, kMessage);
        WorkQueue::Shared* results = queue.shared.get();
        queue.Post([&started, &release, results, token = std::move(token)]() mutable {
            started.set_value();
            release.get_future().wait();
            results->PostResult([token = std::move(token)] { ADD_FAILURE() << "ran"; });
        });
        started.get_future().wait();
    }
    release.set_value();
    EXPECT_TRUE(system.WaitForNotifies(1));
    for (int i = 0; i < 500 && !completion.expired(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(completion.expired());
}

} // namespace
