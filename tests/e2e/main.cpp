// The end-to-end driver. Without options it runs the scenarios (all GoogleTest flags apply);
//   --scr <path>         the saver to drive (else LUMIVANE_SCR, else one folder above the driver)
//   --capture <folder>   only the capture: starts a full-screen run, saves screenshots into
//                        <folder> as shot-1.png, shot-2.png, ..., then ends the run with a key
//                        press; exit code 0 only when the run opened its windows, every shot was
//                        saved and the run ended on the key with exit code 0
//   --shots <n>          how many screenshots (default 4)
//   --interval <ms>      time before each of them (default 2000)
//   --set <name>=<text>  sets the string option <name> of the saver first (SaverShow=slider)
//   --settings           no tests: stands in for the companion program, Lumivane.exe: writes
//                        its command line into started.txt beside itself and ends
#include "e2e/driver.h"

#include <shellapi.h>

#include <cstdio>

namespace e2e {
namespace {

// What --capture, --shots and --interval asked for.
std::wstring captureFolder;
int shots = 4;
DWORD intervalMs = 2000;

// The capture mode, run alone when --capture names a folder, with the options as they are.
class Capture : public SaverTest {
    void SetUp() override {}
};

TEST_F(Capture, Shots) {
    if (captureFolder.empty()) GTEST_SKIP() << "only with --capture";
    std::filesystem::create_directories(captureFolder);
    ASSERT_FALSE(SaverWindows(Start(L"/s"), MonitorRects().size()).empty());
    for (int shot = 1; shot <= shots; ++shot) {
        Sleep(intervalMs);
        EXPECT_TRUE(Image().SavePng(captureFolder + L"\\shot-" + std::to_wstring(shot) + L".png"));
    }
    PressKey(VK_SPACE);
    ExpectExitZero();
}

} // namespace
} // namespace e2e

// Our own main instead of gtest_main's, for the options above.
int main() {
    using namespace e2e;
    int argc = 0;
    wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (argc == 2 && std::wstring(argv[1]) == L"--settings") {
        std::FILE* file = _wfopen(BesideDriver(L"started.txt").c_str(), L"w");
        const bool written = file && std::fprintf(file, "%ls", GetCommandLineW()) >= 0;
        return written && std::fclose(file) == 0 ? 0 : 1;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); // for WIC
    ::testing::InitGoogleTest(&argc, argv);            // takes the --gtest_ options out of argv
    if (const wchar_t* scr = _wgetenv(L"LUMIVANE_SCR"); scr && *scr) saverPath = scr;
    bool understood = argc % 2 == 1; // every option has its value
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::wstring option = argv[i], value = argv[i + 1];
        const size_t equals = value.find(L'=');
        if (option == L"--scr") saverPath = value;
        else if (option == L"--capture") captureFolder = value;
        else if (option == L"--shots") shots = _wtoi(value.c_str());
        else if (option == L"--interval") intervalMs = static_cast<DWORD>(_wtoi(value.c_str()));
        else if (option == L"--set" && equals != value.npos)
            SetOption(value.substr(0, equals).c_str(), value.substr(equals + 1));
        else understood = false;
    }
    if (!understood) {
        std::fprintf(stderr, "can't use the options\n");
        return 2;
    }
    if (!captureFolder.empty()) ::testing::GTEST_FLAG(filter) = "Capture.Shots";
    return RUN_ALL_TESTS();
}
