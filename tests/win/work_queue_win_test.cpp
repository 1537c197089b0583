// The real work queue: a CreateThread thread in a single-threaded COM apartment, woken by an event,
// answering through the window message on the thread that owns the window.
#include <windows.h>

#include <objbase.h>

#include <gtest/gtest.h>

#include <string>

#include "photos/work_queue.h"

namespace {

constexpr UINT kWorkDone = 0x8001;

TEST(WorkQueueWin, AJobRunsInAnApartmentAndItsAnswerComesBackThroughTheWindowMessage) {
    const DWORD windowThread = GetCurrentThreadId();
    // A message-only window of this thread; its queue's message is drained here, as the saver's
    // window procedure does.
    const HWND window = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                        nullptr, nullptr);
    std::string answer;
    DWORD stopStart = 0;
    {
        WorkQueue queue;
        queue.Start(window, kWorkDone);
        queue.Post([&] {
            // Entering the apartment again answers S_FALSE only in a single-threaded one.
            const HRESULT again = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
            if (SUCCEEDED(again)) CoUninitialize();
            const bool background = GetCurrentThreadId() != windowThread && again == S_FALSE;
            queue.PostResult([&, background] { answer = background ? "done" : "wrong thread"; });
        });
        for (const DWORD start = GetTickCount(); answer.empty();) {
            ASSERT_LT(GetTickCount() - start, 10000u) << "no answer through the message";
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
            MSG message;
            while (PeekMessageW(&message, window, 0, 0, PM_REMOVE))
                if (message.message == kWorkDone) queue.Drain();
        }
        stopStart = GetTickCount();
    }
    EXPECT_LT(GetTickCount() - stopStart, 1000u); // the idle thread saw the stop at once
    EXPECT_EQ(answer, "done");
    DestroyWindow(window);
}

} // namespace
