// /c hands the user over: to the tray window, else to Lumivane.exe beside the saver, else to a
// message box in the user's language.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "e2e/driver_window.h"
#include "e2e/files.h"
#include "e2e/saver_test.h"
#include "e2e/screen.h"

namespace e2e {
namespace {

// A tray window runs; Lumivane.exe lies beside the saver.
struct Handoff {
    const char* name;
    bool tray, companion;
};
class HandoffTest : public SaverTest, public ::testing::WithParamInterface<Handoff> {};

TEST_P(HandoffTest, GoesToTheTrayElseStartsTheCompanionElseShowsTheBox) {
    const auto [name, tray, companion] = GetParam(); // the name is gtest's
    // The saver as a user installed it, alone or with the companion program: the driver, which
    // then only writes down how it was started. A folder per case: a companion that is still
    // ending keeps its file from being deleted.
    const std::wstring folder = FreshFolder(L"handoff-" + std::to_wstring(tray * 2 + companion));
    const std::wstring saver = folder + L"\\Lumivane.scr", record = folder + L"\\started.txt";
    ASSERT_TRUE(CopyFileW(SaverPath().c_str(), saver.c_str(), FALSE) && !ReadFileBytes(record));
    if (companion)
        ASSERT_TRUE(CopyFileW(DriverPath().c_str(), (folder + L"\\Lumivane.exe").c_str(), FALSE));
    WriteSaverString(L"Language", L"de");
    std::optional<DriverWindow> trayWindow;
    if (tray) trayWindow.emplace(FakeTrayOptions());
    const int requests = SettingsRequests();

    Start(L"/c", saver);
    HWND box = nullptr;
    WaitUntil([&] { return (box = FindWindowW(L"#32770", L"Lumivane")) || !Saver().Running(); },
              kWindowsMs);
    ASSERT_EQ(box != nullptr, !tray && !companion) << "a message box";
    if (box) {
        Sleep(kSettleMs);
        CaptureDesktopAs(L"settings-box");
        std::wstring texts = L"|"; // of the box's children, each followed by "|"
        const WNDENUMPROC collect = [](HWND child, LPARAM all) {
            wchar_t text[512] = {};
            const int length = GetWindowTextW(child, text, 512);
            reinterpret_cast<std::wstring*>(all)->append(text, length).append(L"|");
            return TRUE;
        };
        EnumChildWindows(box, collect, reinterpret_cast<LPARAM>(&texts));
        const std::wstring expected =
            L"|Öffnen Sie Lumivane, um die Einstellungen des Bildschirmschoners zu ändern.|";
        EXPECT_NE(texts.find(expected), std::wstring::npos) << testing::PrintToString(texts);
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    }
    ExpectExitZero();
    const bool started = !tray && companion;
    WaitUntil([&] { return ReadFileBytes(record).has_value(); }, started ? kWindowsMs : kSettleMs);
    EXPECT_NE(ReadFileBytes(record).value_or("none").find(started ? " --settings" : "none"),
              std::string::npos);
    EXPECT_EQ(SettingsRequests() - requests, tray ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Settings, HandoffTest,
                         ::testing::Values(Handoff{"TrayAndCompanion", true, true},
                                           Handoff{"CompanionOnly", false, true},
                                           Handoff{"Neither", false, false}),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace e2e
