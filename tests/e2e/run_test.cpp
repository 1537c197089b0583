// Command lines that open no saver window (the show's runs are in show_test.cpp). The preview
// pane's picture can't be seen under Wine: see docs/testing.md.
#include "e2e/driver.h"

#include <aclapi.h>
#include <sddl.h>

#include <fstream>
#include <set>

namespace e2e {
namespace {

namespace fs = std::filesystem;

// Command lines that open no saver window and end with 0 by themselves: an unknown switch, a
// preview of a window that doesn't exist (the parsing rules are a host test), and /c, which hands
// the user over to the tray window, else to Lumivane.exe beside the saver, else to a message box in
// the user's language, which the driver closes. Each is a user's first start: it makes the folders
// and stores the photo directory, and it moves an older data folder into the new one (a file that
// both hold stays behind) and rewrites the paths in the options.
struct QuietRun {
    const char* name;
    const wchar_t* arguments;
    bool tray, companion; // a tray window runs; Lumivane.exe lies beside the saver
    char takes;           // who takes the settings: 't'ray, 'c'ompanion, message 'b'ox, or 0
};

class QuietRunTest : public SaverTest, public ::testing::WithParamInterface<QuietRun> {};

TEST_P(QuietRunTest, EndsWithZeroAndNoSaverWindowHandingOverTheSettingsOnce) {
    const QuietRun& run = GetParam();
    // The saver as a user installed it, alone or with the companion program: the driver, which then
    // only writes down how it was started. A folder per case: a companion that is still ending
    // keeps its file from being deleted.
    const std::wstring folder = FreshFolder(run.name), installed = folder + L"\\Lumivane.scr";
    ASSERT_TRUE(CopyFileW(saverPath.c_str(), installed.c_str(), FALSE));
    if (run.companion)
        ASSERT_TRUE(CopyFileW(BesideDriver(L"lumivane_e2e.exe").c_str(),
                              (folder + L"\\Lumivane.exe").c_str(), FALSE));
    // The user's folders, found here without the shell calls that the saver makes.
    const fs::path local = _wgetenv(L"LOCALAPPDATA"), data = local / L"Lumivane";
    const fs::path old = local / L"LumivaneW",
                   documents = fs::path(_wgetenv(L"USERPROFILE")) / L"Documents";
    const fs::path tree = documents / L"Lumivane";
    for (const fs::path& path : {data, old, tree}) fs::remove_all(path);
    fs::create_directories(old / L"Slides");
    fs::create_directories(data);
    std::ofstream(old / L"notes.txt") << "old";
    std::ofstream(data / L"notes.txt") << "new";
    SetOption(L"Dir", (old / L"Slides").wstring());
    // The tray: a hidden window of this thread, whose queue keeps what the saver posts to it.
    WNDCLASSW trayClass{0, DefWindowProcW};
    trayClass.lpszClassName = L"LumivaneTray";
    RegisterClassW(&trayClass); // a second time it is registered already
    const HWND tray = run.tray ? CreateWindowW(L"LumivaneTray", L"", WS_OVERLAPPED, 0, 0, 0, 0,
                                               nullptr, nullptr, nullptr, nullptr)
                               : nullptr;

    Start(run.arguments, installed);
    HWND box = nullptr;
    WaitUntil([&] { return (box = FindWindowW(L"#32770", L"Lumivane")) || ExitCode(saver, 0); },
              kWindowsMs);
    ASSERT_EQ(box != nullptr, run.takes == 'b') << "a message box";
    if (box) PostMessageW(box, WM_COMMAND, IDOK, 0);
    ExpectExitZero(); // a run that opened a saver window would wait for input
    const auto read = [](const fs::path& file) {
        return std::string(std::istreambuf_iterator<char>(std::ifstream(file).rdbuf()), {});
    };
    const fs::path started = folder + L"\\started.txt";
    const auto handedOver = [&] { return read(started).find(" --settings") != std::string::npos; };
    EXPECT_EQ(WaitUntil(handedOver, run.takes == 'c' ? kWindowsMs : kSettleMs), run.takes == 'c')
        << read(started);
    const UINT open = RegisterWindowMessageW(L"Lumivane.OpenSettings");
    MSG message;
    int requests = 0;
    while (PeekMessageW(&message, tray, open, open, PM_REMOVE)) ++requests;
    EXPECT_EQ(requests, run.takes == 't') << "requests to the tray";
    if (tray) DestroyWindow(tray);
    const auto option = [](const wchar_t* name) {
        wchar_t text[MAX_PATH] = {};
        DWORD bytes = sizeof text;
        RegGetValueW(HKEY_CURRENT_USER, kSaverKey, name, RRF_RT_REG_SZ, 0, text, &bytes);
        return std::wstring(text);
    };
    EXPECT_EQ(option(L"ImportsDir"), documents.wstring());
    EXPECT_EQ(option(L"Dir"), (data / L"Slides").wstring());
    EXPECT_TRUE(read(old / L"notes.txt") == "old" && read(data / L"notes.txt") == "new");
    EXPECT_FALSE(fs::exists(old / L"Slides"));
    for (const fs::path& made : {data / L"Updates", tree / L"Lumivane ScreenSaver"})
        EXPECT_TRUE(fs::is_directory(made)) << made.string();
}

INSTANTIATE_TEST_SUITE_P(
    Switches, QuietRunTest,
    ::testing::Values(QuietRun{"UnknownSwitch", L"/x", false, false, 0},
                      QuietRun{"PreviewOfNoWindow", L"/p 123456", false, false, 0},
                      QuietRun{"SettingsToTheTray", L"/c", true, true, 't'},
                      QuietRun{"SettingsToTheCompanion", L"/c", false, true, 'c'},
                      QuietRun{"SettingsInABox", L"/c", false, false, 'b'}),
    [](const auto& info) { return std::string(info.param.name); });

// A user whose documents lie in a cloud folder gets the fixed folder at the root of drive C, and it
// is theirs alone: its access list names this user and the system and takes nothing from C:\, so
// no other account of the PC may see, change or share the photos in it.
TEST_F(SaverTest, TheFixedPhotoFolderIsTheUsersOwn) {
    constexpr wchar_t kShellFolders[] =
        L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
    const auto documents =
        std::filesystem::path(_wgetenv(L"USERPROFILE")) / L"OneDrive" / L"Documents";
    std::filesystem::create_directories(documents);
    wchar_t before[MAX_PATH] = {};
    DWORD size = sizeof before;
    RegGetValueW(HKEY_CURRENT_USER, kShellFolders, L"Personal", RRF_RT_ANY | RRF_NOEXPAND, nullptr,
                 before, &size);
    const std::wstring cloud = documents.wstring();
    RegSetKeyValueW(HKEY_CURRENT_USER, kShellFolders, L"Personal", REG_EXPAND_SZ, cloud.c_str(),
                    static_cast<DWORD>((cloud.size() + 1) * sizeof(wchar_t)));
    std::filesystem::remove_all(L"C:\\LumivaneItems");
    Start(L"/x");
    ExpectExitZero();
    RegSetKeyValueW(HKEY_CURRENT_USER, kShellFolders, L"Personal", REG_EXPAND_SZ, before,
                    static_cast<DWORD>((wcslen(before) + 1) * sizeof(wchar_t)));

    PACL acl = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_EQ(GetNamedSecurityInfoW(L"C:\\LumivaneItems", SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                    nullptr, nullptr, &acl, nullptr, &descriptor),
              ERROR_SUCCESS);
    std::set<std::wstring> named; // the SIDs of the access list, as text
    for (DWORD i = 0; acl && i < acl->AceCount; ++i) {
        ACCESS_ALLOWED_ACE* ace = nullptr;
        LPWSTR text = nullptr;
        if (GetAce(acl, i, reinterpret_cast<void**>(&ace)) &&
            ConvertSidToStringSidW(&ace->SidStart, &text)) {
            named.insert(text);
            LocalFree(text);
        }
    }
    LocalFree(descriptor);
    // Everyone, Authenticated Users, Users; and this user must be there (an absent list would
    // let everyone in).
    for (const wchar_t* other : {L"S-1-1-0", L"S-1-5-11", L"S-1-5-32-545"})
        EXPECT_EQ(named.count(other), 0u) << testing::PrintToString(std::wstring(other));
    EXPECT_EQ(named.count(L"S-1-5-18"), 1u) << "the system";
    EXPECT_EQ(named.size(), 2u);
}

} // namespace
} // namespace e2e
