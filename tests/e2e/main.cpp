// The end-to-end driver. Without options it runs the scenarios (all GoogleTest flags apply);
//   --scr <path>            the saver to drive (else LUMIVANE_SCR, else beside the driver)
//   --capture <folder>      no tests: starts a full-screen run, saves screenshots into
//                           <folder> as shot-1.png, shot-2.png, ..., then ends the run
//   --shots <n>             how many screenshots (default 4)
//   --interval <ms>         time between them (default 2000; the first comes after one interval)
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

#include "e2e/files.h"
#include "e2e/input.h"
#include "e2e/saver_process.h"
#include "e2e/saver_windows.h"
#include "e2e/screen_capture.h"

namespace {

struct CaptureOptions {
    std::wstring folder;
    int shots = 4;
    DWORD intervalMs = 2000;
};

int Capture(const CaptureOptions& options) {
    using namespace e2e;
    MakeFolders(options.folder);
    SaverProcess saver;
    if (!saver.Start(L"/s")) {
        std::fprintf(stderr, "capture: can't start %ls\n", SaverPath().c_str());
        return 2;
    }
    const size_t monitors = MonitorRects().size();
    if (WaitForTopLevelSaverWindows(saver.Id(), monitors, 20000).empty()) {
        std::fprintf(stderr, "capture: the saver opened no window\n");
        return 3;
    }
    int saved = 0;
    for (int shot = 1; shot <= options.shots && saver.Running(); ++shot) {
        Sleep(options.intervalMs);
        const std::wstring path = options.folder + L"\\shot-" + std::to_wstring(shot) + L".png";
        if (SavePng(CaptureDesktop(), path)) {
            ++saved;
            std::printf("capture: %ls\n", path.c_str());
        }
    }
    PressKey(VK_SPACE);
    const auto code = saver.WaitForExit(5000);
    if (!code) std::fprintf(stderr, "capture: the saver didn't end on a key; ending it\n");
    std::fflush(stdout);
    return saved == options.shots ? 0 : 4;
}

std::wstring Wide(const char* text) {
    const int length = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::wstring wide(static_cast<size_t>(length > 0 ? length : 1), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), length);
    wide.resize(wide.size() - 1);
    return wide;
}

} // namespace

// Our own main instead of gtest_main's, for the options above; the linker then leaves that
// one out of the archive.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv); // takes the --gtest_ options out of argv
    CaptureOptions capture;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        const std::wstring value = Wide(argv[i + 1]);
        if (option == "--scr") e2e::SetSaverPath(value);
        else if (option == "--capture") capture.folder = value;
        else if (option == "--shots") capture.shots = _wtoi(value.c_str());
        else if (option == "--interval") capture.intervalMs = static_cast<DWORD>(_wtoi(value.c_str()));
        else {
            std::fprintf(stderr, "unknown option %s\n", argv[i]);
            return 2;
        }
    }
    if (argc % 2 == 0) {
        std::fprintf(stderr, "option %s lacks its value\n", argv[argc - 1]);
        return 2;
    }
    if (!capture.folder.empty()) return Capture(capture);
    return RUN_ALL_TESTS();
}
