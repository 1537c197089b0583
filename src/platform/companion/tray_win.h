#pragma once

#include <windows.h>

#include <shellapi.h>

#include "platform/companion/import_worker_win.h"
#include "platform/companion/settings_dialog_win.h"

// The running instance of the tray application: a hidden top-level window of the class
// "LumivaneTray", which the saver and later starts find and send the settings request to, the
// icon in the notification area with its menu, and the settings dialog.
class TrayApp {
public:
    explicit TrayApp(SettingsDialog::Context context);
    TrayApp(const TrayApp&) = delete;
    TrayApp& operator=(const TrayApp&) = delete;

    // Makes the window and the icon, opens the settings when asked, and runs the message loop
    // until Exit. Gives the exit code.
    int Run(HINSTANCE instance, bool openSettings);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void AddIcon();
    // Shows `text` as the icon's tooltip; with `balloon`, also as a notification.
    void SetTip(const std::wstring& text, const std::wstring& balloon = {});
    void ImportMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void ShowMenu(POINT at);
    void MenuCommand(UINT id);

    HINSTANCE instance = nullptr;
    HWND hwnd = nullptr;
    UINT openSettingsMessage = 0;
    UINT taskbarCreatedMessage = 0;
    HICON icon = nullptr;
    std::wstring tip;
    SettingsDialog dialog;
    ImportWorker importer;
};
