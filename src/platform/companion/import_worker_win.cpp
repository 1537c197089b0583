#include "platform/companion/import_worker_win.h"

#include <string>
#include <vector>

#include "platform/companion/import_run_win.h"

namespace {

// A folder that changed is imported once it has been quiet for this long: a camera's card being
// copied in changes it many times a second.
constexpr DWORD kQuietMs = 5000;
// A look now and then in any case: change notifications don't come from every network share.
constexpr DWORD kLookMs = 60 * 60 * 1000;
// The system waits on at most 64 handles at once; one is the wake event.
constexpr size_t kMaxWatched = MAXIMUM_WAIT_OBJECTS - 1;

// Change notifications for the chosen folders with their sub-folders: files added, removed,
// renamed or written.
class FolderWatch {
public:
    FolderWatch() {
        for (const std::wstring& folder : ImportFolders()) {
            if (handles.size() == kMaxWatched) break;
            const HANDLE change = FindFirstChangeNotificationW(
                folder.c_str(), TRUE,
                FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME |
                    FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE);
            if (change != INVALID_HANDLE_VALUE) handles.push_back(change);
        }
    }
    ~FolderWatch() {
        for (const HANDLE change : handles) FindCloseChangeNotification(change);
    }
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    std::vector<HANDLE> handles;
};

} // namespace

void ImportWorker::Start(HWND notify, DWORD delay) {
    window = notify;
    delayMs = delay;
    wake.Reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    if (!wake.Valid()) return;
    thread.Reset(CreateThread(nullptr, 0, Main, this, 0, nullptr));
}

void ImportWorker::Request() {
    if (wake.Valid()) SetEvent(wake.Get());
}

void ImportWorker::Stop() {
    if (!thread.Valid()) return;
    stopping = true;
    SetEvent(wake.Get());
    WaitForSingleObject(thread.Get(), INFINITE);
    thread.Reset();
}

DWORD WINAPI ImportWorker::Main(void* self) {
    // Background mode lowers the thread's processor, disk and memory priority alike.
    SetThreadPriority(GetCurrentThread(), THREAD_MODE_BACKGROUND_BEGIN);
    ComApartment apartment;
    static_cast<ImportWorker*>(self)->Loop();
    return 0;
}

void ImportWorker::Loop() {
    DWORD timeout = delayMs;
    while (!stopping) {
        FolderWatch watch;
        std::vector<HANDLE> waits{wake.Get()};
        waits.insert(waits.end(), watch.handles.begin(), watch.handles.end());
        const DWORD woken =
            WaitForMultipleObjects(static_cast<DWORD>(waits.size()), waits.data(), FALSE, timeout);
        if (stopping) return;
        if (woken > WAIT_OBJECT_0 && woken < WAIT_OBJECT_0 + waits.size()) {
            // A folder changed: wait until changes stop coming, or a request comes.
            for (HANDLE changed = waits[woken - WAIT_OBJECT_0];;) {
                FindNextChangeNotification(changed);
                const DWORD again = WaitForMultipleObjects(static_cast<DWORD>(waits.size()),
                                                           waits.data(), FALSE, kQuietMs);
                if (stopping) return;
                if (again == WAIT_TIMEOUT || again == WAIT_OBJECT_0 ||
                    again >= WAIT_OBJECT_0 + waits.size())
                    break;
                changed = waits[again - WAIT_OBJECT_0];
            }
        }
        const ImportOutcome outcome = RunImport(
            [this](size_t done, size_t total) {
                PostMessageW(window, kProgressMessage, done, static_cast<LPARAM>(total));
            },
            stopping);
        if (outcome.ran)
            PostMessageW(window, kDoneMessage, outcome.photos, static_cast<LPARAM>(outcome.bytes));
        if (outcome.firstPhotos) PostMessageW(window, kFirstPhotosMessage, 0, 0);
        timeout = kLookMs;
    }
}
