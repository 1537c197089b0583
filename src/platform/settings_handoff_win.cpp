// The Windows half of the settings hand-over: the tray window, the shell and the message box.
#include <windows.h>

#include <shellapi.h>

#include "library/companion.h"
#include "library/data_paths.h"
#include "session/settings_handoff.h"

namespace {

bool PostToTray() {
    HWND tray = FindWindowW(kTrayWindowClass, nullptr);
    if (!tray) return false;
    DWORD processId = 0;
    GetWindowThreadProcessId(tray, &processId);
    // Only a process that may take the foreground can pass that right on to the tray, whose
    // settings window should come to the front.
    AllowSetForegroundWindow(processId);
    PostMessageW(tray, OpenSettingsMessage(), 0, 0); // not waited for, nor checked
    return true;
}

bool Start(const std::wstring& program, const std::wstring& parameters) {
    const HINSTANCE result = ShellExecuteW(nullptr, L"open", program.c_str(), parameters.c_str(),
                                           nullptr, SW_SHOWNORMAL);
    // Values of 32 and below are the shell's error codes.
    return reinterpret_cast<INT_PTR>(result) > 32;
}

void ShowMessage(const std::wstring& text, const std::wstring& title) {
    MessageBoxW(nullptr, text.c_str(), title.c_str(), MB_OK | MB_ICONINFORMATION);
}

} // namespace

uint32_t OpenSettingsMessage() {
    static const UINT message = RegisterWindowMessageW(kOpenSettingsMessage);
    return message;
}

void OpenSettings() { HandOffSettings(DataPaths::Get().exePath, {PostToTray, Start, ShowMessage}); }
