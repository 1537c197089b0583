// The real work queue: a CreateThread thread in a COM apartment, woken by an event, answering
// through the window message on the thread that owns the window.
#include <windows.h>

#include <objbase.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "photos/photo_source.h"
#include "photos/work_queue.h"
#include "platform/win_handles.h"
#include "win/image_test_files.h"

namespace {

constexpr UINT kWorkDone = 0x8001;

// A hidden window whose procedure drains the queue on the private message, as the saver's does.
class DrainWindow {
public:
    explicit DrainWindow(WorkQueue& queue) {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = Procedure;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = L"LumivaneQueueTest";
        RegisterClassW(&windowClass); // a second registration fails harmlessly
        hwnd = CreateWindowExW(0, windowClass.lpszClassName, L"", WS_POPUP, 0, 0, 1, 1, nullptr,
                               nullptr, windowClass.hInstance, nullptr);
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&queue));
    }
    ~DrainWindow() { DestroyWindow(hwnd); }
    DrainWindow(const DrainWindow&) = delete;
    DrainWindow& operator=(const DrainWindow&) = delete;

    // Dispatches messages until `done` holds, at most 10 s.
    template <typename Predicate>
    bool PumpUntil(Predicate done) {
        const DWORD start = GetTickCount();
        while (!done()) {
            if (GetTickCount() - start > 10000) return false;
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        }
        return true;
    }

    HWND hwnd = nullptr;
    static DWORD drainThread; // the thread that last drained

private:
    static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == kWorkDone) {
            drainThread = GetCurrentThreadId();
            reinterpret_cast<WorkQueue*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA))->Drain();
            return 0;
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }
};

DWORD DrainWindow::drainThread = 0;

TEST(WorkQueueWin, JobsRunInAnApartmentAndAnswersComeBackThroughTheWindowMessage) {
    ComApartment apartment;
    const std::wstring folder = image_test::TestFolder(L"lumivane-queue-test");
    const std::wstring good = folder + L"Harbour at dusk-a1234567.jpg";
    ASSERT_TRUE(image_test::WriteImage(good, GUID_ContainerFormatJpeg, 400, 300,
                                       image_test::Bands));
    const std::vector<std::wstring> photos{folder + L"missing-a1234567.jpg", good};
    const DWORD windowThread = GetCurrentThreadId();
    std::vector<std::string> answers;
    PhotoSource::Photo delivered;
    DWORD stopStart = 0;
    {
        WorkQueue queue;
        DrainWindow window(queue);
        queue.Start(window.hwnd, kWorkDone);
        queue.Post([&] {
            // Entering the apartment again answers S_FALSE only in a single-threaded one.
            const HRESULT again = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
            if (SUCCEEDED(again)) CoUninitialize();
            const bool background = GetCurrentThreadId() != windowThread && again == S_FALSE;
            queue.PostResult([&, background] {
                answers.push_back(background ? "job" : "job on the wrong thread");
            });
        });
        PhotoSource source(&queue, &photos, 0, {true, true});
        source.Next(160, 90, PhotoSource::Shape::Cover, [&](PhotoSource::Photo& photo) {
            delivered = std::move(photo);
            answers.push_back("photo");
        });
        ASSERT_TRUE(window.PumpUntil([&] { return answers.size() == 2; }));
        stopStart = GetTickCount();
    }
    EXPECT_LT(GetTickCount() - stopStart, 1000u); // the idle thread saw the stop at once
    EXPECT_EQ(answers, (std::vector<std::string>{"job", "photo"}));
    EXPECT_EQ(DrainWindow::drainThread, windowThread);
    EXPECT_EQ(delivered.width, 160);
    EXPECT_EQ(delivered.pixels.size(), 160u * 90u);
    EXPECT_EQ(delivered.title, L"Harbour at dusk");
}

} // namespace
