// The real work queue: a CreateThread thread in a single-threaded COM apartment, woken by an event,
// answering through the window message on the thread that owns the window.
#include <windows.h>

#include <objbase.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "photos/work_queue.h"
#include "platform/win_handles.h"

namespace {

constexpr UINT kWorkDone = 0x8001;
WorkQueue* drained = nullptr; // the queue of the test window
DWORD drainThread = 0;        // the thread that last drained it

// Drains the queue on the private message, as the saver's windows do.
LRESULT CALLBACK DrainProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kWorkDone) return DefWindowProcW(hwnd, message, wParam, lParam);
    drainThread = GetCurrentThreadId();
    drained->Drain();
    return 0;
}

TEST(WorkQueueWin, JobsRunInAnApartmentAndAnswersComeBackThroughTheWindowMessage) {
    ComApartment apartment;
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DrainProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"LumivaneQueueTest";
    RegisterClassW(&windowClass);
    const DWORD windowThread = GetCurrentThreadId();
    std::vector<std::string> answers;
    DWORD stopStart = 0;
    {
        WorkQueue queue;
        drained = &queue;
        const HWND window = CreateWindowExW(0, windowClass.lpszClassName, L"", WS_POPUP, 0, 0, 1,
                                            1, nullptr, nullptr, windowClass.hInstance, nullptr);
        queue.Start(window, kWorkDone);
        for (const char* name : {"first", "second"}) {
            queue.Post([&, name] {
                // Entering the apartment again answers S_FALSE only in a single-threaded one.
                const HRESULT again = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
                if (SUCCEEDED(again)) CoUninitialize();
                const bool background = GetCurrentThreadId() != windowThread && again == S_FALSE;
                queue.PostResult([&, name, background] {
                    answers.push_back(background ? name : "on the wrong thread");
                });
            });
        }
        for (const DWORD start = GetTickCount(); answers.size() < 2;) {
            ASSERT_LT(GetTickCount() - start, 10000u) << "no answer through the message";
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        }
        DestroyWindow(window);
        stopStart = GetTickCount();
    }
    EXPECT_LT(GetTickCount() - stopStart, 1000u); // the idle thread saw the stop at once
    EXPECT_EQ(answers, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(drainThread, windowThread);
}

} // namespace
