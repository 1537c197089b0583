#include "platform/companion/settings_dialog_win.h"

#include <shobjidl.h>
#include <wrl/client.h>

#include "companion/companion_texts.h"
#include "companion_ids.h"
#include "diagnostics/string_table.h"

using Microsoft::WRL::ComPtr;

namespace {

constexpr UINT_PTR kPreviewTimer = 1;
// Posted to itself after a change of DPI, once the system has laid the dialog out anew.
constexpr UINT kRestartPreviewMessage = WM_APP + 1;

// The presentations, in the order of SettingsForm::Show. The names are the presentations' own;
// only "Random" is a word.
constexpr const wchar_t* kShowNames[SettingsForm::ShowCount] = {
    L"Fader", L"Slider", L"Panner", L"Reflections", L"Faller", L"FourUp", kRandomText};
// Each language under its own name, after the system's language.
constexpr const wchar_t* kLanguageNames[kLanguageCount] = {
    L"English", L"Deutsch", L"Español", L"Français", L"Italiano", L"Nederlands", L"Português"};

// Whether a folder is known to be gone. A folder on a network share (a UNC path, or a drive letter
// mapped to one) isn't looked at: with its server out of reach the call would hold the dialog for
// as long as the network takes to give up, up to a minute.
bool FolderMissing(const std::wstring& folder) {
    if (folder.rfind(L"\\\\", 0) == 0) return false;
    if (folder.size() >= 2 && folder[1] == L':') {
        const wchar_t root[] = {folder[0], L':', L'\\', L'\0'};
        if (GetDriveTypeW(root) == DRIVE_REMOTE) return false;
    }
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    return attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

void FillCombo(HWND combo, const std::vector<std::wstring>& items, int selected) {
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    for (const std::wstring& item : items)
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
    SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

int Selection(HWND combo) { return static_cast<int>(SendMessageW(combo, CB_GETCURSEL, 0, 0)); }

// The system's folder picker, owned by `owner`; empty when the user cancels.
std::wstring PickFolder(HWND owner) {
    ComPtr<IFileOpenDialog> picker;
    if (FAILED(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER,
                                IID_PPV_ARGS(&picker))))
        return {};
    FILEOPENDIALOGOPTIONS options = 0;
    picker->GetOptions(&options);
    picker->SetOptions(options | FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST);
    picker->SetTitle(StringTable::Get(kPickFolderText).c_str());
    ComPtr<IShellItem> item;
    if (FAILED(picker->Show(owner)) || FAILED(picker->GetResult(&item))) return {};
    PWSTR path = nullptr;
    if (FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, &path))) return {};
    std::wstring folder = path;
    CoTaskMemFree(path);
    return folder;
}

} // namespace

void SettingsDialog::Show() {
    if (!hwnd) {
        hwnd = CreateDialogParamW(context.instance, MAKEINTRESOURCEW(IDD_SETTINGS), nullptr,
                                  Procedure, reinterpret_cast<LPARAM>(this));
        if (!hwnd) return;
    }
    if (IsIconic(hwnd)) ShowWindow(hwnd, SW_RESTORE);
    ShowWindow(hwnd, SW_SHOW);
    SetForegroundWindow(hwnd);
}

void SettingsDialog::SetImportStatus(const std::wstring& text) {
    importStatus = text;
    if (hwnd) SetDlgItemTextW(hwnd, IDC_IMPORT_STATUS, importStatus.c_str());
}

void SettingsDialog::Close() {
    if (hwnd) DestroyWindow(hwnd);
}

INT_PTR CALLBACK SettingsDialog::Procedure(HWND window, UINT message, WPARAM wParam,
                                           LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, GWLP_USERDATA, lParam);
        reinterpret_cast<SettingsDialog*>(lParam)->hwnd = window;
    }
    auto* dialog = reinterpret_cast<SettingsDialog*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return dialog ? dialog->Handle(message, wParam, lParam) : FALSE;
}

INT_PTR SettingsDialog::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG: {
        for (const int size : {ICON_SMALL, ICON_BIG}) {
            const auto icon =
                LoadImageW(context.instance, MAKEINTRESOURCEW(IDI_LUMIVANE), IMAGE_ICON,
                           GetSystemMetrics(size == ICON_SMALL ? SM_CXSMICON : SM_CXICON),
                           GetSystemMetrics(size == ICON_SMALL ? SM_CYSMICON : SM_CYICON), 0);
            SendMessageW(hwnd, WM_SETICON, static_cast<WPARAM>(size),
                         reinterpret_cast<LPARAM>(icon));
        }
        // Every text of the resource is the English key of its translation.
        keys.clear();
        wchar_t text[512];
        GetWindowTextW(hwnd, text, ARRAYSIZE(text));
        keys.emplace_back(hwnd, text);
        for (HWND child = GetWindow(hwnd, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
            if (GetWindowTextW(child, text, ARRAYSIZE(text)) > 0) keys.emplace_back(child, text);
        stored = ReadSettingsForm(context.defaultFolder);
        Translate();
        SetDlgItemTextW(hwnd, IDC_IMPORT_STATUS, importStatus.c_str());
        ShowForm(stored);
        RestartPreview();
        return TRUE;
    }
    case WM_COMMAND: Command(LOWORD(wParam), HIWORD(wParam)); return TRUE;
    case WM_TIMER:
        if (wParam == kPreviewTimer) preview.Poll();
        return TRUE;
    case WM_DPICHANGED: PostMessageW(hwnd, kRestartPreviewMessage, 0, 0); return FALSE;
    case kRestartPreviewMessage: RestartPreview(); return TRUE;
    case WM_CLOSE: DestroyWindow(hwnd); return TRUE;
    case WM_DESTROY: preview.Stop(); return FALSE;
    case WM_NCDESTROY: hwnd = nullptr; return FALSE;
    default: (void)lParam; return FALSE;
    }
}

void SettingsDialog::Command(int id, int notification) {
    switch (id) {
    case IDOK:
        Save();
        DestroyWindow(hwnd);
        return;
    case IDCANCEL: DestroyWindow(hwnd); return;
    case IDC_APPLY: Save(); return;
    case IDC_ADD: AddFolder(); return;
    case IDC_REMOVE: RemoveFolder(); return;
    case IDC_IMPORT:
        // The folders as the list shows them: what is on screen is what the user means.
        Save();
        context.importNow();
        return;
    case IDC_SHOW:
        if (notification == CBN_SELCHANGE) RestartPreview();
        break;
    }
    if (notification == CBN_SELCHANGE || notification == BN_CLICKED ||
        notification == LBN_SELCHANGE)
        UpdateButtons();
}

void SettingsDialog::Translate() {
    for (const auto& [window, key] : keys) SetWindowTextW(window, StringTable::Get(key).c_str());
    FillChoices();
}

void SettingsDialog::FillChoices() {
    const SettingsForm shown = hwnd && SendDlgItemMessageW(hwnd, IDC_SHOW, CB_GETCOUNT, 0, 0) > 0
                                   ? FormOfControls()
                                   : stored;
    std::vector<std::wstring> shows(std::begin(kShowNames), std::end(kShowNames));
    shows.back() = StringTable::Get(shows.back());
    FillCombo(GetDlgItem(hwnd, IDC_SHOW), shows, shown.show);
    std::vector<std::wstring> pauses;
    for (const int seconds : kPauseSeconds)
        pauses.push_back(FillIn(StringTable::Get(kSecondsText), std::to_wstring(seconds)));
    FillCombo(GetDlgItem(hwnd, IDC_PAUSE), pauses, shown.pauseIndex);
    std::vector<std::wstring> languages{StringTable::Get(kSystemLanguageText)};
    languages.insert(languages.end(), std::begin(kLanguageNames), std::end(kLanguageNames));
    FillCombo(GetDlgItem(hwnd, IDC_LANGUAGE), languages, shown.language);
    std::vector<std::wstring> budgets;
    for (const int megabytes : kBudgetMegabytes)
        budgets.push_back(megabytes < 1024 ? std::to_wstring(megabytes) + L" MB"
                                           : std::to_wstring(megabytes / 1024) + L" GB");
    FillCombo(GetDlgItem(hwnd, IDC_BUDGET), budgets, shown.budgetIndex);
    ShowFolders(static_cast<int>(SendDlgItemMessageW(hwnd, IDC_FOLDERS, LB_GETCURSEL, 0, 0)));
}

void SettingsDialog::ShowForm(const SettingsForm& shown) {
    SendDlgItemMessageW(hwnd, IDC_SHOW, CB_SETCURSEL, static_cast<WPARAM>(shown.show), 0);
    SendDlgItemMessageW(hwnd, IDC_PAUSE, CB_SETCURSEL, static_cast<WPARAM>(shown.pauseIndex), 0);
    SendDlgItemMessageW(hwnd, IDC_LANGUAGE, CB_SETCURSEL, static_cast<WPARAM>(shown.language), 0);
    SendDlgItemMessageW(hwnd, IDC_BUDGET, CB_SETCURSEL, static_cast<WPARAM>(shown.budgetIndex), 0);
    CheckDlgButton(hwnd, IDC_FIT, shown.fit ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(hwnd, IDC_SHUFFLE, shown.shuffle ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(hwnd, IDC_TITLES, shown.titles ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(hwnd, IDC_IMPORTED_TITLES, shown.importedTitles ? BST_CHECKED : BST_UNCHECKED);
    folders = shown.folders;
    ShowFolders(-1);
    UpdateButtons();
}

SettingsForm SettingsDialog::FormOfControls() const {
    SettingsForm form;
    form.show = static_cast<SettingsForm::Show>(Selection(GetDlgItem(hwnd, IDC_SHOW)));
    form.pauseIndex = Selection(GetDlgItem(hwnd, IDC_PAUSE));
    form.language = Selection(GetDlgItem(hwnd, IDC_LANGUAGE));
    form.budgetIndex = Selection(GetDlgItem(hwnd, IDC_BUDGET));
    form.fit = IsDlgButtonChecked(hwnd, IDC_FIT) == BST_CHECKED;
    form.shuffle = IsDlgButtonChecked(hwnd, IDC_SHUFFLE) == BST_CHECKED;
    form.titles = IsDlgButtonChecked(hwnd, IDC_TITLES) == BST_CHECKED;
    form.importedTitles = IsDlgButtonChecked(hwnd, IDC_IMPORTED_TITLES) == BST_CHECKED;
    form.folders = folders;
    return form;
}

void SettingsDialog::ShowFolders(int selected) {
    const HWND list = GetDlgItem(hwnd, IDC_FOLDERS);
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    // A folder that is gone (a drive unplugged, a folder renamed) stays until the user removes it.
    const std::wstring& notFound = StringTable::Get(kNotFoundText);
    LRESULT widest = 0;
    const HDC dc = GetDC(list);
    const HGDIOBJ font =
        SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(list, WM_GETFONT, 0, 0)));
    for (const std::wstring& folder : folders) {
        const std::wstring line = FolderMissing(folder) ? folder + L"  " + notFound : folder;
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
        SIZE size{};
        GetTextExtentPoint32W(dc, line.c_str(), static_cast<int>(line.size()), &size);
        widest = std::max<LRESULT>(widest, size.cx + 8);
    }
    SelectObject(dc, font);
    ReleaseDC(list, dc);
    SendMessageW(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest), 0);
    if (selected >= static_cast<int>(folders.size()))
        selected = static_cast<int>(folders.size()) - 1;
    SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

void SettingsDialog::UpdateButtons() {
    const bool selected = SendDlgItemMessageW(hwnd, IDC_FOLDERS, LB_GETCURSEL, 0, 0) != LB_ERR;
    const HWND remove = GetDlgItem(hwnd, IDC_REMOVE);
    // Focus on a button that goes grey would leave the keyboard nowhere.
    if (!selected && GetFocus() == remove) SendMessageW(hwnd, WM_NEXTDLGCTL, 0, FALSE);
    EnableWindow(remove, selected);
    EnableWindow(GetDlgItem(hwnd, IDC_APPLY), FormOfControls() != stored);
}

void SettingsDialog::AddFolder() {
    const std::wstring folder = PickFolder(hwnd);
    if (folder.empty()) return;
    const size_t at = ::AddFolder(folders, folder);
    ShowFolders(static_cast<int>(at));
    UpdateButtons();
}

void SettingsDialog::RemoveFolder() {
    const auto selected = SendDlgItemMessageW(hwnd, IDC_FOLDERS, LB_GETCURSEL, 0, 0);
    if (selected == LB_ERR || static_cast<size_t>(selected) >= folders.size()) return;
    folders.erase(folders.begin() + selected);
    ShowFolders(static_cast<int>(selected));
    UpdateButtons();
}

void SettingsDialog::Save() {
    const SettingsForm form = FormOfControls();
    preview.Keep();
    WriteSettingsForm(form);
    const bool languageChanged = form.language != stored.language;
    const bool importChanged =
        form.folders != stored.folders || form.budgetIndex != stored.budgetIndex;
    stored = form;
    if (importChanged) context.importNow();
    if (languageChanged) {
        // The texts follow the new language at once; the saver takes it at its next start.
        StringTable::Init();
        Translate();
    }
    UpdateButtons();
}

void SettingsDialog::RestartPreview() {
    const std::wstring show = ShowValue(FormOfControls().show);
    preview.Start(hwnd, kPreviewTimer, GetDlgItem(hwnd, IDC_PREVIEW), context.saverPath, show);
}
