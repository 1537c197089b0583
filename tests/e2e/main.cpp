// The end-to-end driver. Without options it runs the scenarios (all GoogleTest flags apply);
//   --scr <path>         the saver to drive (else LUMIVANE_SCR, else one folder above the driver)
//   --capture <folder>   no tests: starts a full-screen run, saves screenshots into <folder>
//                        as shot-1.png, shot-2.png, ..., then ends the run with a key press;
//                        exit code 3: no window, 4: a shot missing, 5: the run didn't end on
//                        the key with exit code 0 (it is terminated)
//   --shots <n>          how many screenshots (default 4)
//   --interval <ms>      time before each of them (default 2000)
//   --set <name>=<text>  writes the string option <name> of the saver first (SaverShow=slider)
//   --settings           no tests: stands in for the companion program, Lumivane.exe: writes
//                        its command line into started.txt beside itself and ends
#include <gtest/gtest.h>
#include <windows.h>
#include <shellapi.h>

#include <cstdio>
#include <string>

#include "e2e/files.h"
#include "e2e/saver_test.h"
#include "e2e/screen.h"

namespace {

int Capture(const std::wstring& folder, int shots, DWORD intervalMs) {
    using namespace e2e;
    MakeFolders(folder);
    SaverProcess saver;
    if (!saver.Start(L"/s") ||
        WaitForSaverWindows(saver.Id(), nullptr, MonitorRects().size()).empty()) {
        std::fprintf(stderr, "capture: %ls opened no window\n", SaverPath().c_str());
        return 3;
    }
    int saved = 0;
    for (int shot = 1; shot <= shots && saver.Running(); ++shot) {
        Sleep(intervalMs);
        const std::wstring path = folder + L"\\shot-" + std::to_wstring(shot) + L".png";
        if (!SavePng(CaptureScreen(DesktopRect()), path)) continue;
        ++saved;
        std::printf("capture: %ls\n", path.c_str());
    }
    PressKey(VK_SPACE);
    std::fflush(stdout);
    return saved != shots ? 4 : saver.WaitForExit(kExitMs) == 0u ? 0 : 5;
}

} // namespace

// Our own main instead of gtest_main's, for the options above.
int main() {
    int argc = 0;
    wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (argc == 2 && std::wstring(argv[1]) == L"--settings") {
        const std::wstring self = e2e::DriverPath();
        const std::wstring record = self.substr(0, self.rfind(L'\\') + 1) + L"started.txt";
        std::FILE* file = _wfopen(record.c_str(), L"w");
        if (file) std::fprintf(file, "%ls", GetCommandLineW());
        return file && std::fclose(file) == 0 ? 0 : 1;
    }
    ::testing::InitGoogleTest(&argc, argv); // takes the --gtest_ options out of argv
    std::wstring folder;
    int shots = 4;
    DWORD intervalMs = 2000;
    for (int i = 1; i < argc; i += 2) {
        const std::wstring option = argv[i], value = i + 1 < argc ? argv[i + 1] : L"";
        if (value.empty()) {
            std::fprintf(stderr, "option %ls lacks its value\n", argv[i]);
            return 2;
        }
        if (option == L"--scr") e2e::SetSaverPath(value);
        else if (option == L"--capture") folder = value;
        else if (option == L"--shots") shots = _wtoi(value.c_str());
        else if (option == L"--interval") intervalMs = static_cast<DWORD>(_wtoi(value.c_str()));
        else if (const size_t equals = value.find(L'='); option == L"--set" && equals != value.npos)
            e2e::WriteSaverString(value.substr(0, equals).c_str(), value.substr(equals + 1));
        else {
            std::fprintf(stderr, "unknown option %ls\n", argv[i]);
            return 2;
        }
    }
    return folder.empty() ? RUN_ALL_TESTS() : Capture(folder, shots, intervalMs);
}
