#include "platform/companion/tray_win.h"

#include <commctrl.h>
#include <windowsx.h>

#include "companion/companion_texts.h"
#include "companion_ids.h"
#include "diagnostics/string_table.h"
#include "library/companion.h"
#include "library/data_paths.h"

namespace {

constexpr UINT kIconId = 1;
constexpr UINT kIconMessage = WM_APP + 1;
constexpr wchar_t kTooltip[] = L"Lumivane";
// The first import of a new user shouldn't wait, but the tray's start should come first.
constexpr DWORD kFirstImportDelayMs = 3000;

// A number as the user's locale writes it, with digit grouping: "3,400", "3.400".
std::wstring Number(double value, int decimals) {
    const std::wstring plain = std::to_wstring(value);
    NUMBERFMTW format{};
    wchar_t decimal[8] = L".", thousand[8] = L",";
    GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL, decimal, 8);
    GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_STHOUSAND, thousand, 8);
    format.NumDigits = static_cast<UINT>(decimals);
    format.LeadingZero = 1;
    format.Grouping = 3;
    format.lpDecimalSep = decimal;
    format.lpThousandSep = thousand;
    wchar_t text[64] = {};
    // GetNumberFormatEx wants the number with "." and no grouping, as to_wstring gives it.
    if (!GetNumberFormatEx(LOCALE_NAME_USER_DEFAULT, 0, plain.c_str(), &format, text, 64))
        return plain;
    return text;
}

// A size as Explorer writes one: three significant digits at most, in KB, MB or GB.
std::wstring Size(uint64_t bytes) {
    double value = static_cast<double>(bytes) / 1024.0;
    const wchar_t* unit = L" KB";
    for (const wchar_t* larger : {L" MB", L" GB"}) {
        if (value < 1000.0) break;
        value /= 1024.0;
        unit = larger;
    }
    return Number(value, value < 10.0 ? 1 : 0) + unit;
}

enum MenuItem : UINT { kMenuSettings = 1, kMenuStartSaver, kMenuOpenFolder, kMenuExit };

// Starts the saver full screen, as the system would when the computer is idle.
void StartSaver(HWND window, const std::wstring& saverPath) {
    std::wstring commandLine = L"\"" + saverPath + L"\" /s";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (CreateProcessW(saverPath.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                       nullptr, &startup, &started)) {
        CloseHandle(started.hThread);
        CloseHandle(started.hProcess);
        return;
    }
    // Without our saver beside the program, the user's chosen screen saver.
    DefWindowProcW(window, WM_SYSCOMMAND, SC_SCREENSAVE, 0);
}

} // namespace

TrayApp::TrayApp(SettingsDialog::Context context)
    : tip(kTooltip), dialog([&] {
          context.importNow = [this] { importer.Request(); };
          return std::move(context);
      }()) {}

int TrayApp::Run(HINSTANCE module, bool openSettings) {
    instance = module;
    openSettingsMessage = RegisterWindowMessageW(kOpenSettingsMessage);
    // Explorer sends this to every top-level window when it starts again: the icon must be added
    // anew. Let it through the message filter even if the process runs elevated.
    taskbarCreatedMessage = RegisterWindowMessageW(L"TaskbarCreated");

    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = kTrayWindowClass;
    if (!RegisterClassExW(&windowClass)) return 1;
    // A top-level window, never shown: FindWindowW finds it, and it gets the broadcast above (a
    // message-only window would get neither).
    hwnd = CreateWindowExW(0, kTrayWindowClass, L"Lumivane", WS_OVERLAPPED, 0, 0, 0, 0, nullptr,
                           nullptr, instance, this);
    if (!hwnd) return 1;
    ChangeWindowMessageFilterEx(hwnd, taskbarCreatedMessage, MSGFLT_ALLOW, nullptr);
    ChangeWindowMessageFilterEx(hwnd, openSettingsMessage, MSGFLT_ALLOW, nullptr);
    if (FAILED(LoadIconMetric(instance, MAKEINTRESOURCEW(IDI_LUMIVANE), LIM_SMALL, &icon)))
        icon = LoadIconW(instance, MAKEINTRESOURCEW(IDI_LUMIVANE));
    AddIcon();
    if (openSettings) dialog.Show();
    importer.Start(hwnd, kFirstImportDelayMs);

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (dialog.Window() && IsDialogMessageW(dialog.Window(), &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    if (icon) DestroyIcon(icon);
    return 0;
}

LRESULT CALLBACK TrayApp::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* app = reinterpret_cast<TrayApp*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!app) return DefWindowProcW(window, message, wParam, lParam);
    app->hwnd = window;
    return app->Handle(message, wParam, lParam);
}

LRESULT TrayApp::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == openSettingsMessage) {
        dialog.Show();
        return 0;
    }
    if (message >= ImportWorker::kProgressMessage && message <= ImportWorker::kFirstPhotosMessage) {
        ImportMessage(message, wParam, lParam);
        return 0;
    }
    if (message == taskbarCreatedMessage) {
        AddIcon();
        return 0;
    }
    switch (message) {
    case kIconMessage:
        // With version 4 of the icon, the event is in the low word and the anchor in wParam.
        switch (LOWORD(lParam)) {
        case WM_CONTEXTMENU: ShowMenu({GET_X_LPARAM(wParam), GET_Y_LPARAM(wParam)}); break;
        case WM_LBUTTONDBLCLK:
        case NIN_KEYSELECT: dialog.Show(); break;
        }
        return 0;
    case WM_COMMAND: MenuCommand(LOWORD(wParam)); return 0;
    case WM_CLOSE: DestroyWindow(hwnd); return 0;
    case WM_DESTROY: {
        dialog.Close();
        importer.Stop();
        NOTIFYICONDATAW data{};
        data.cbSize = sizeof data;
        data.hWnd = hwnd;
        data.uID = kIconId;
        Shell_NotifyIconW(NIM_DELETE, &data);
        PostQuitMessage(0);
        return 0;
    }
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

void TrayApp::AddIcon() {
    NOTIFYICONDATAW data{};
    data.cbSize = sizeof data;
    data.hWnd = hwnd;
    data.uID = kIconId;
    data.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP | NIF_SHOWTIP;
    data.uCallbackMessage = kIconMessage;
    data.hIcon = icon;
    lstrcpynW(data.szTip, tip.c_str(), ARRAYSIZE(data.szTip));
    // After an Explorer restart the old icon is gone; after a lost race it may still be there.
    if (!Shell_NotifyIconW(NIM_ADD, &data)) Shell_NotifyIconW(NIM_MODIFY, &data);
    data.uVersion = NOTIFYICON_VERSION_4;
    Shell_NotifyIconW(NIM_SETVERSION, &data);
}

void TrayApp::SetTip(const std::wstring& text, const std::wstring& balloon) {
    tip = text;
    NOTIFYICONDATAW data{};
    data.cbSize = sizeof data;
    data.hWnd = hwnd;
    data.uID = kIconId;
    data.uFlags = NIF_TIP | NIF_SHOWTIP;
    lstrcpynW(data.szTip, tip.c_str(), ARRAYSIZE(data.szTip));
    if (!balloon.empty()) {
        data.uFlags |= NIF_INFO;
        data.dwInfoFlags = NIIF_USER | NIIF_LARGE_ICON;
        data.hBalloonIcon = icon;
        lstrcpynW(data.szInfoTitle, kTooltip, ARRAYSIZE(data.szInfoTitle));
        lstrcpynW(data.szInfo, balloon.c_str(), ARRAYSIZE(data.szInfo));
    }
    Shell_NotifyIconW(NIM_MODIFY, &data);
}

void TrayApp::ImportMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case ImportWorker::kProgressMessage: {
        const std::wstring text = FillIn(StringTable::Get(kImportingText),
                                         Number(double(wParam), 0), Number(double(lParam), 0));
        SetTip(std::wstring(kTooltip) + L"\n" + text);
        dialog.SetImportStatus(text);
        break;
    }
    case ImportWorker::kDoneMessage:
        SetTip(kTooltip);
        dialog.SetImportStatus(FillIn(StringTable::Get(kPhotosInText), Number(double(wParam), 0),
                                      Size(static_cast<uint64_t>(lParam))));
        break;
    case ImportWorker::kFirstPhotosMessage:
        SetTip(kTooltip, StringTable::Get(kFirstPhotosText));
        break;
    }
}

void TrayApp::ShowMenu(POINT at) {
    const HMENU menu = CreatePopupMenu();
    if (!menu) return;
    AppendMenuW(menu, MF_STRING, kMenuSettings, StringTable::Get(kSettingsMenuText).c_str());
    AppendMenuW(menu, MF_STRING, kMenuStartSaver, StringTable::Get(kStartSaverMenuText).c_str());
    AppendMenuW(menu, MF_STRING, kMenuOpenFolder, StringTable::Get(kOpenFolderMenuText).c_str());
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_STRING, kMenuExit, StringTable::Get(kExitMenuText).c_str());
    SetMenuDefaultItem(menu, kMenuSettings, FALSE);
    // Without the foreground the menu wouldn't close when the user clicks elsewhere.
    SetForegroundWindow(hwnd);
    const UINT flags =
        TPM_RIGHTBUTTON | (GetSystemMetrics(SM_MENUDROPALIGNMENT) ? TPM_RIGHTALIGN : TPM_LEFTALIGN);
    TrackPopupMenuEx(menu, flags, at.x, at.y, hwnd, nullptr);
    PostMessageW(hwnd, WM_NULL, 0, 0);
    DestroyMenu(menu);
}

void TrayApp::MenuCommand(UINT id) {
    switch (id) {
    case kMenuSettings: dialog.Show(); break;
    case kMenuStartSaver: StartSaver(hwnd, dialog.SaverPath()); break;
    case kMenuOpenFolder:
        ShellExecuteW(hwnd, L"open", DataPaths::Get().screenSaverDir.c_str(), nullptr, nullptr,
                      SW_SHOWNORMAL);
        break;
    case kMenuExit: DestroyWindow(hwnd); break;
    }
}
