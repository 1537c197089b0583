// The tray application, Lumivane.exe, as a user meets it: one instance whatever starts it, the
// saver's hand-over of its settings, and the settings dialog driven control by control.
#include "e2e/driver.h"

#include <tlhelp32.h>

#include <map>

#include "companion_ids.h"

namespace e2e {
namespace {

const std::wstring companionPath = BesideDriver(L"..\\Lumivane.exe");

// The running processes of the image `name`.
int ProcessCount(const wchar_t* name) {
    int count = 0;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{sizeof entry};
    for (BOOL more = Process32FirstW(snapshot, &entry); more;
         more = Process32NextW(snapshot, &entry))
        count += _wcsicmp(entry.szExeFile, name) == 0;
    CloseHandle(snapshot);
    return count;
}

// Every value of the options key: name, type and bytes.
std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>> Options() {
    std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>> values;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kSaverKey, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return values;
    for (DWORD index = 0;; ++index) {
        wchar_t name[256];
        DWORD length = 256, type = 0, size = 4096;
        std::vector<BYTE> data(size);
        if (RegEnumValueW(key, index, name, &length, nullptr, &type, data.data(), &size) != 0)
            break;
        data.resize(size);
        values[name] = {type, data};
    }
    RegCloseKey(key);
    return values;
}

std::vector<BYTE> Text(const std::wstring& text) {
    const auto* bytes = reinterpret_cast<const BYTE*>(text.c_str());
    return {bytes, bytes + (text.size() + 1) * 2};
}

std::vector<BYTE> Number(DWORD value) {
    const auto* bytes = reinterpret_cast<const BYTE*>(&value);
    return {bytes, bytes + 4};
}

// A control's text, read across the process boundary.
std::wstring TextOf(HWND window) {
    wchar_t text[256] = {};
    SendMessageTimeoutW(window, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text), SMTO_NORMAL, 5000,
                        nullptr);
    return text;
}

class CompanionTest : public SaverTest {
protected:
    void TearDown() override {
        // Ends the tray as the installer does: a close request to its window.
        if (HWND tray = FindWindowW(L"LumivaneTray", nullptr)) {
            DWORD id = 0;
            GetWindowThreadProcessId(tray, &id);
            const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, id);
            PostMessageW(tray, WM_CLOSE, 0, 0);
            EXPECT_EQ(WaitForSingleObject(process, kExitMs), WAIT_OBJECT_0) << "the tray ends";
            CloseHandle(process);
        }
        SaverTest::TearDown();
    }

    // Starts `program` with `arguments` and expects it to end with 0: a start that hands over.
    void StartAndExpectExit(const std::wstring& arguments, const std::wstring& program) {
        Start(arguments, program);
        ExpectExitZero();
        TerminateProcess(saver.hProcess, 0);
        CloseHandle(saver.hProcess);
        CloseHandle(saver.hThread);
        saver = {};
    }

    // The shown settings dialog of the tray's process, within kWindowsMs; null when none shows.
    static HWND Dialog(DWORD timeoutMs = kWindowsMs) {
        HWND found = nullptr;
        WaitUntil(
            [&] {
                found = nullptr;
                DWORD trayId = 0;
                GetWindowThreadProcessId(FindWindowW(L"LumivaneTray", nullptr), &trayId);
                for (HWND hwnd = nullptr;
                     (hwnd = FindWindowExW(nullptr, hwnd, L"#32770", nullptr));) {
                    DWORD owner = 0;
                    GetWindowThreadProcessId(hwnd, &owner);
                    if (owner == trayId && IsWindowVisible(hwnd) && GetDlgItem(hwnd, IDC_SHOW))
                        found = hwnd;
                }
                return found != nullptr;
            },
            timeoutMs, 20);
        return found;
    }

    // Chooses item `index` of a list of the dialog, as a click on it would.
    static void Choose(HWND dialog, int id, int index) {
        const HWND combo = GetDlgItem(dialog, id);
        SendMessageW(combo, CB_SETCURSEL, index, 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), LPARAM(combo));
    }

    // The saver's window in the dialog's preview frame, within `timeoutMs`.
    static HWND PreviewWindow(HWND dialog, DWORD timeoutMs = kWindowsMs) {
        HWND found = nullptr;
        WaitUntil(
            [&] {
                const HWND host = GetWindow(GetDlgItem(dialog, IDC_PREVIEW), GW_CHILD);
                return (found = host ? FindWindowExW(host, nullptr, L"LumivaneSaver", nullptr)
                                     : nullptr) != nullptr;
            },
            timeoutMs, 20);
        return found;
    }

    // Presses a key on the dialog's focused control, as the keyboard would.
    static void Press(HWND dialog, WPARAM key) {
        const HWND focus = GetDlgItem(dialog, IDC_SHOW);
        PostMessageW(focus, WM_KEYDOWN, key, 1);
        PostMessageW(focus, WM_KEYUP, key, 0xC0000001);
        EXPECT_TRUE(WaitUntil([&] { return !IsWindow(dialog); }, kExitMs)) << "the dialog closes";
    }
};

// A first start makes the tray window and shows no dialog; every later start of the program, with
// or without --settings, and the saver's /c, open the dialog in that one instance. Alone in its
// folder, without the saver, the dialog has no preview and says nothing about it.
TEST_F(CompanionTest, OneInstanceTakesEveryLaterStartAndTheSaversHandOver) {
    const std::wstring alone = FreshFolder(L"companion-alone") + L"\\Lumivane.exe";
    ASSERT_TRUE(CopyFileW(companionPath.c_str(), alone.c_str(), FALSE));
    Start(L"", alone);
    ASSERT_TRUE(WaitUntil([] { return FindWindowW(L"LumivaneTray", nullptr); }, kWindowsMs));
    EXPECT_EQ(Dialog(kSettleMs), nullptr) << "a plain first start opens nothing";

    const struct {
        const wchar_t* arguments;
        const std::wstring& program;
    } starts[] = {{L"", alone}, {L"--settings", alone}, {L"/c", saverPath}};
    for (const auto& start : starts) {
        StartAndExpectExit(start.arguments, start.program);
        const HWND dialog = Dialog();
        ASSERT_NE(dialog, nullptr) << testing::PrintToString(start.arguments);
        EXPECT_EQ(ProcessCount(L"Lumivane.exe"), 1);
        EXPECT_EQ(PreviewWindow(dialog, kSettleMs), nullptr) << "no saver, no preview";
        EXPECT_EQ(FindWindowW(L"#32770", L"Lumivane"), nullptr) << "no message";
        Press(dialog, VK_ESCAPE);
    }
}

// The dialog shows the stored options (an unknown SaverPause as the saver's 10 seconds) and the
// saver's preview of the presentation chosen, restarted on a new choice. Cancel leaves every value
// as it was; OK writes each choice in its form, and the dialog then speaks the chosen language.
TEST_F(CompanionTest, DialogWritesItsChoicesOnOkOnlyAndSpeaksTheChosenLanguage) {
    SetOption(L"SaverShow", L"kber");
    SetOption(L"SaverPause", L"9");
    Start(L"--settings", companionPath);
    HWND dialog = Dialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(SendDlgItemMessageW(dialog, IDC_SHOW, CB_GETCURSEL, 0, 0), 2) << "the Panner";
    EXPECT_EQ(SendDlgItemMessageW(dialog, IDC_PAUSE, CB_GETCURSEL, 0, 0), 2) << "10 seconds";
    const HWND firstPreview = PreviewWindow(dialog);
    EXPECT_NE(firstPreview, nullptr) << "the saver's preview";
    const auto before = Options();

    Choose(dialog, IDC_SHOW, 5);
    Choose(dialog, IDC_PAUSE, 0);
    SendDlgItemMessageW(dialog, IDC_FIT, BM_CLICK, 0, 0);
    const HWND secondPreview = PreviewWindow(dialog);
    EXPECT_TRUE(secondPreview && secondPreview != firstPreview) << "a new preview";
    EXPECT_TRUE(WaitUntil([&] { return Options() == before; }, kWindowsMs))
        << "the preview gives the stored presentation back";
    Press(dialog, VK_ESCAPE);
    EXPECT_TRUE(Options() == before) << "Cancel writes nothing";

    StartAndExpectExit(L"--settings", companionPath);
    dialog = Dialog();
    ASSERT_NE(dialog, nullptr);
    Choose(dialog, IDC_SHOW, 3);
    Choose(dialog, IDC_PAUSE, 4);
    Choose(dialog, IDC_LANGUAGE, 2);
    SendDlgItemMessageW(dialog, IDC_FIT, BM_CLICK, 0, 0);
    SendDlgItemMessageW(dialog, IDC_TITLES, BM_CLICK, 0, 0);
    Press(dialog, VK_RETURN);
    auto expected = before;
    expected[L"SaverShow"] = {REG_SZ, Text(L"reflections")};
    expected[L"SaverPause"] = {REG_SZ, Text(L"4")};
    expected[L"SaverFit"] = {REG_DWORD, Number(1)};
    expected[L"SaverRandom"] = {REG_DWORD, Number(0)};
    expected[L"SaverTitle"] = {REG_DWORD, Number(0)};
    expected[L"SaverImportedTitle"] = {REG_DWORD, Number(1)};
    expected[L"Language"] = {REG_SZ, Text(L"de")};
    const std::wstring pictures = std::wstring(_wgetenv(L"USERPROFILE")) + L"\\Pictures";
    auto folders = Text(pictures);
    folders.insert(folders.end(), {0, 0});
    expected[L"ImportFolders"] = {REG_MULTI_SZ, folders};
    expected[L"ImportBudget"] = {REG_DWORD, Number(2048)};
    const auto after = Options();
    EXPECT_TRUE(after == expected);
    for (const auto& [name, value] : expected)
        EXPECT_TRUE(after.count(name) && after.at(name) == value) << testing::PrintToString(name);

    StartAndExpectExit(L"", companionPath);
    dialog = Dialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(TextOf(dialog), L"Lumivane-Einstellungen");
    EXPECT_EQ(TextOf(GetDlgItem(dialog, IDC_SHOW_LABEL)), L"&Präsentation:");
    EXPECT_EQ(TextOf(GetDlgItem(dialog, IDCANCEL)), L"Abbrechen");
}

} // namespace
} // namespace e2e
