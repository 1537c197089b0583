// How a run starts and ends: input of a user, the preview inside a host window, command lines
// that open no saver window (the settings handoff among them), and the first start of a user.
#include "e2e/driver.h"

#include <shlobj.h>

#include <fstream>

namespace e2e {
namespace {

namespace fs = std::filesystem;

// A key, a click, a move of 8 pixels that stays and one of 9 that dismisses (the mouse rule's
// table is a host test).
struct Input {
    const char* name;
    WORD key;         // pressed when not 0
    DWORD buttonDown; // clicked in the middle of the last monitor when not 0
    int move;         // the cursor moves this far right of kRestingCursor when not 0
    bool dismisses;
};

const Input kInputs[] = {
    {"SpaceKey", VK_SPACE, 0, 0, true},
    {"MiddleClickOnLastMonitor", 0, MOUSEEVENTF_MIDDLEDOWN, 0, true},
    {"MoveOfEightStays", 0, 0, 8, false},
    {"MoveOfNineDismisses", 0, 0, 9, true},
};

class InputTest : public SaverTest, public ::testing::WithParamInterface<Input> {};

TEST_P(InputTest, OnlyRealInputHidesEveryWindowAtOnceAndEndsWithZero) {
    const Input& input = GetParam();
    const std::vector<HWND> windows = StartFullScreen();
    const RECT last = MonitorRects().back();
    if (input.key) PressKey(input.key);
    if (input.buttonDown)
        Click(input.buttonDown, (last.left + last.right) / 2, (last.top + last.bottom) / 2);
    if (input.move) ASSERT_TRUE(MoveMouseTo(kRestingCursor.x + input.move, kRestingCursor.y));
    const auto hidden = [&] {
        return std::none_of(windows.begin(), windows.end(), IsWindowVisible);
    };
    EXPECT_EQ(WaitUntil(hidden, input.dismisses ? 1000 : kSettleMs, 1), input.dismisses)
        << "every window hidden within a second of the input";
    if (input.dismisses) ExpectExitZero();
    else EXPECT_FALSE(ExitCode(saver, 0)) << "ended by a small move";
}

INSTANTIATE_TEST_SUITE_P(Input, InputTest, ::testing::ValuesIn(kInputs),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(SaverTest, PreviewFillsItsHostIgnoresInputAndEndsWithTheHost) {
    DriverWindow host(L"LumivaneE2EPreviewHost", WS_OVERLAPPED | WS_CAPTION | WS_CLIPCHILDREN,
                      320, 240);
    const DWORD id = Start(L"/p " + std::to_wstring(reinterpret_cast<UINT_PTR>(host.hwnd)));
    const std::vector<HWND> children = WaitForSaverWindows(0, host.hwnd, 1);
    ASSERT_EQ(children.size(), 1u) << "one child window in the host";
    RECT area{}, client{};
    GetWindowRect(children[0], &area);
    GetClientRect(host.hwnd, &client);
    MapWindowPoints(host.hwnd, nullptr, reinterpret_cast<POINT*>(&client), 2);
    EXPECT_TRUE(EqualRect(&area, &client)) << "the child from " << area.left << "," << area.top
                                           << " to " << area.right << "," << area.bottom;
    EXPECT_TRUE(SaverWindows(id).empty()) << "no full-screen window";

    Click(MOUSEEVENTF_LEFTDOWN, area.left + 100, area.top + 100); // a move into it first
    PostMessageW(children[0], WM_KEYDOWN, VK_SPACE, 0); // the host has no focus to give it keys
    EXPECT_FALSE(ExitCode(saver, kSettleMs)) << "input ended the preview";
    EXPECT_TRUE(IsWindowVisible(children[0]));
    host.Destroy();
    ExpectExitZero();
}

// Command lines that open no saver window and end with 0 by themselves: an unknown switch, a
// preview of a window that doesn't exist (the parsing rules are a host test), and /c, which
// hands the user over to the tray window, else to Lumivane.exe beside the saver, else to a
// message box in the user's language, which the driver closes.
struct QuietRun {
    const char* name;
    const wchar_t* arguments;
    bool tray, companion; // a tray window runs; Lumivane.exe lies beside the saver
};

const QuietRun kQuietRuns[] = {
    {"UnknownSwitch", L"/x", false, false},
    {"PreviewOfNoWindow", L"/p 123456", false, false},
    {"SettingsToTheTray", L"/c", true, true},
    {"SettingsToTheCompanion", L"/c", false, true},
    {"SettingsInABox", L"/c", false, false},
};

class QuietRunTest : public SaverTest, public ::testing::WithParamInterface<QuietRun> {};

TEST_P(QuietRunTest, EndsWithZeroAndNoSaverWindowHandingOverTheSettingsOnce) {
    const QuietRun& run = GetParam();
    const bool settings = std::wstring(run.arguments) == L"/c";
    // The saver as a user installed it, alone or with the companion program: the driver, which
    // then only writes down how it was started. A folder per case: a companion that is still
    // ending keeps its file from being deleted.
    const std::wstring folder = FreshFolder(run.name), installed = folder + L"\\Lumivane.scr";
    ASSERT_TRUE(CopyFileW(SaverPath().c_str(), installed.c_str(), FALSE));
    if (run.companion)
        ASSERT_TRUE(CopyFileW(BesideDriver(L"lumivane_e2e.exe").c_str(),
                              (folder + L"\\Lumivane.exe").c_str(), FALSE));
    SetOption(L"Language", L"de");
    std::optional<DriverWindow> tray;
    if (run.tray) tray.emplace(L"LumivaneTray", WS_OVERLAPPED);
    const int requests = settingsRequests;

    const DWORD id = Start(run.arguments, installed);
    HWND box = nullptr;
    bool sawWindow = false;
    WaitUntil(
        [&] {
            sawWindow = sawWindow || !SaverWindows(id).empty();
            return (box = FindWindowW(L"#32770", L"Lumivane")) || ExitCode(saver, 0);
        },
        kWindowsMs);
    ASSERT_EQ(box != nullptr, settings && !run.tray && !run.companion) << "a message box";
    if (box) {
        const wchar_t* text =
            L"Öffnen Sie Lumivane, um die Einstellungen des Bildschirmschoners zu ändern.";
        EXPECT_TRUE(WaitUntil([&] { return FindWindowExW(box, nullptr, L"Static", text); },
                              kSettleMs))
            << "the box says how to change the settings, in German";
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    }
    ExpectExitZero();
    EXPECT_FALSE(sawWindow);
    const bool companion = settings && !run.tray && run.companion;
    const auto record = [&] {
        std::ifstream file(fs::path(folder) / L"started.txt");
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    EXPECT_EQ(WaitUntil([&] { return record().find(" --settings") != std::string::npos; },
                        companion ? kWindowsMs : kSettleMs),
              companion)
        << "the companion's command line: " << record();
    EXPECT_EQ(settingsRequests - requests, settings && run.tray ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Switches, QuietRunTest, ::testing::ValuesIn(kQuietRuns),
                         [](const auto& info) { return std::string(info.param.name); });

// A user's first start makes the folders and stores the photo directory (that a later start
// changes nothing is a host test).
TEST_F(SaverTest, FirstStartOfAUserMakesItsFoldersAndStoresThePhotoDirectory) {
    wchar_t local[MAX_PATH] = {}, documents[MAX_PATH] = {};
    ASSERT_EQ(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, local), S_OK);
    ASSERT_EQ(SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, 0, documents), S_OK);
    const std::wstring dataDir = local + std::wstring(L"\\Lumivane");
    const std::wstring photoTree = documents + std::wstring(L"\\Lumivane");
    // A user who never ran the saver: no data folder, no photo tree, no key (cleared by SetUp).
    for (const std::wstring& folder : {dataDir, dataDir + L"W", photoTree})
        fs::remove_all(folder);
    DriverWindow tray(L"LumivaneTray", WS_OVERLAPPED); // takes the settings, so no box waits

    Start(L"/c");
    ExpectExitZero();
    wchar_t imports[MAX_PATH] = {};
    DWORD bytes = sizeof imports;
    RegGetValueW(HKEY_CURRENT_USER, kSaverKey, L"ImportsDir", RRF_RT_REG_SZ, 0, imports, &bytes);
    EXPECT_EQ(std::wstring(imports), documents);
    for (const std::wstring& folder :
         {dataDir + L"\\Slides", dataDir + L"\\Updates", photoTree + L"\\Lumivane Wallpaper",
          photoTree + L"\\Lumivane ScreenSaver", photoTree + L"\\Wallpaper Cache"})
        EXPECT_TRUE(fs::is_directory(folder)) << fs::path(folder).string();
    EXPECT_FALSE(fs::exists(photoTree + L"\\..\\.lumivane-write-test"));
}

} // namespace
} // namespace e2e
