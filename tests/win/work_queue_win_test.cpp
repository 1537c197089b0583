// The real work queue: a CreateThread thread in a single-threaded COM apartment, woken by an event,
// answering through the window message on the thread that owns the window.
#include <windows.h>

#include <objbase.h>

#include <gtest/gtest.h>

#include <string>

#include "photos/work_queue.h"
#include "win/win_test_support.h"

namespace {

constexpr UINT kWorkDone = 0x8001;
WorkQueue* drained = nullptr; // the queue of the test window

// Drains the queue on the private message, as the saver's windows do.
LRESULT CALLBACK DrainProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kWorkDone) return DefWindowProcW(hwnd, message, wParam, lParam);
    drained->Drain();
    return 0;
}

TEST(WorkQueueWin, AJobRunsInAnApartmentAndItsAnswerComesBackThroughTheWindowMessage) {
    const DWORD windowThread = GetCurrentThreadId();
    std::string answer;
    DWORD stopStart = 0;
    {
        WorkQueue queue;
        drained = &queue;
        const HWND window =
            MakeTestWindow(L"LumivaneQueueTest", DrainProcedure, 0, WS_POPUP, {0, 0, 1, 1});
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
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        }
        DestroyWindow(window);
        stopStart = GetTickCount();
    }
    EXPECT_LT(GetTickCount() - stopStart, 1000u); // the idle thread saw the stop at once
    EXPECT_EQ(answer, "done");
}

} // namespace
