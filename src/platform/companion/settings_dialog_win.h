#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "companion/settings_form.h"
#include "platform/companion/saver_preview_win.h"

// The settings dialog of the tray application: modeless, one at a time, made from the resource
// IDD_SETTINGS. It reads the store when it opens, shows the saver's preview of the chosen
// presentation, and writes the store on OK and Apply only.
class SettingsDialog {
public:
    // What the dialog needs of the program around it.
    struct Context {
        HINSTANCE instance = nullptr;
        std::wstring saverPath;     // Lumivane.scr beside the program
        std::wstring defaultFolder; // the first photo folder of a new user: their Pictures
        // Brings the photos of the stored folders in now: "Import now", and a save that changed
        // the folders or the disk they may take.
        std::function<void()> importNow;
    };

    explicit SettingsDialog(Context context) : context(std::move(context)) {}
    SettingsDialog(const SettingsDialog&) = delete;
    SettingsDialog& operator=(const SettingsDialog&) = delete;

    // Opens the dialog, or brings the open one to the front.
    void Show();
    // Closes the dialog without writing anything.
    void Close();
    // The open dialog's window, for the message loop's IsDialogMessage; null when closed.
    HWND Window() const { return hwnd; }
    // Shows the import's state ("Importing 12 of 40 photos", "40 photos, 61 MB") now and
    // whenever the dialog opens.
    void SetImportStatus(const std::wstring& text);
    // Lumivane.scr beside the program.
    const std::wstring& SaverPath() const { return context.saverPath; }

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void Command(int id, int notification);

    void Translate();
    void FillChoices();
    void ShowForm(const SettingsForm& shown);
    SettingsForm FormOfControls() const;
    void ShowFolders(int selected);
    void UpdateButtons();
    void AddFolder();
    void RemoveFolder();
    void Save();
    void RestartPreview();

    Context context;
    HWND hwnd = nullptr;
    SettingsForm stored;                             // what the store held, or what was last saved
    std::vector<std::wstring> folders;               // the folders as the list shows them
    std::vector<std::pair<HWND, std::wstring>> keys; // each text's English key
    SaverPreview preview;
    std::wstring importStatus;
};
