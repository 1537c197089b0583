#pragma once

#include <windows.h>

#include <atomic>

#include "platform/win_handles.h"

// The tray's imports, on a thread of their own at background priority (processor and disk), so
// the user's work doesn't slow down and the window thread never waits on the disk. A run starts
// when asked (the tray's start, a changed folder list, "Import now"), when a chosen folder has
// changed and then stayed quiet for a few seconds, and once an hour in any case. The thread
// reports to a window by posted messages.
class ImportWorker {
public:
    // Messages posted to the window given to Start.
    static constexpr UINT kProgressMessage = WM_APP + 10;    // wParam photos done, lParam of total
    static constexpr UINT kDoneMessage = WM_APP + 11;        // wParam photos in, lParam bytes;
    static constexpr UINT kFirstPhotosMessage = WM_APP + 12; // the first photos are in

    ImportWorker() = default;
    ~ImportWorker() { Stop(); }
    ImportWorker(const ImportWorker&) = delete;
    ImportWorker& operator=(const ImportWorker&) = delete;

    // Starts the thread; its first run comes after `delayMs`.
    void Start(HWND window, DWORD delayMs);
    // Asks for a run as soon as the one under way, if any, is over.
    void Request();
    // Ends the thread after the photo under way, and waits for it.
    void Stop();

private:
    static DWORD WINAPI Main(void* self);
    void Loop();

    HWND window = nullptr;
    DWORD delayMs = 0;
    UniqueHandle thread;
    UniqueHandle wake; // set by Request and Stop
    std::atomic<bool> stopping{false};
};
