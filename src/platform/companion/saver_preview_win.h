#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "platform/win_handles.h"

// The saver's own preview inside the settings dialog: Lumivane.scr from the program's folder,
// started with /p and the handle of a window of ours, as the system's screen saver settings start
// it in their pane. The saver takes its options from the store alone, so to preview a presentation
// that isn't stored yet, its SaverShow is stored for as long as the starting saver needs to read
// it, and the earlier value, byte for byte, is put back as soon as its window appears.
class SaverPreview {
public:
    SaverPreview() = default;
    ~SaverPreview() { Stop(); }
    SaverPreview(const SaverPreview&) = delete;
    SaverPreview& operator=(const SaverPreview&) = delete;

    // Ends the running preview and starts the saver on `show` (a SaverShow text) in a new window
    // that fills `frame`. Without the saver's file the frame stays empty, and nothing is said.
    // The owner calls Poll on timer `timerId` of `owner` until the saver has taken its options.
    void Start(HWND owner, UINT_PTR timerId, HWND frame, const std::wstring& saverPath,
               const std::wstring& show);
    // Puts SaverShow back once the saver's window is there, or the saver has ended, or it had
    // its time; then stops the timer.
    void Poll();
    // The store is about to be written with the user's choices, which replace what was lent:
    // nothing is put back.
    void Keep();
    // Ends the preview and returns once the saver has ended (within a few seconds: one that
    // doesn't is ended by force), so that its file is free. SaverShow is put back.
    void Stop();

private:
    // A registry value as it was: its type and bytes, or nothing.
    struct StoredValue {
        bool present = false;
        DWORD type = 0;
        std::vector<BYTE> data;
    };

    void PutShowBack();

    HWND owner = nullptr;
    UINT_PTR timerId = 0;
    HWND host = nullptr; // our window that the saver draws into
    UniqueHandle process;
    ULONGLONG startedAt = 0;
    bool showLent = false; // SaverShow holds `lentShow` until PutShowBack
    std::wstring lentShow;
    StoredValue storedShow;
};
