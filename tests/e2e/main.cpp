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
#include "e2e/driver.h"

#include <shellapi.h>

#include <cstdio>

namespace {

int Capture(const std::wstring& folder, int shots, DWORD intervalMs) {
    using namespace e2e;
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const PROCESS_INFORMATION saver = Launch(L"/s");
    int result = 3;
    const size_t monitors = MonitorRects().size();
    if (saver.hProcess && !WaitForSaverWindows(saver.dwProcessId, nullptr, monitors).empty()) {
        int saved = 0;
        for (int shot = 1; shot <= shots && !ExitCode(saver, 0); ++shot) {
            Sleep(intervalMs);
            const std::wstring path = folder + L"\\shot-" + std::to_wstring(shot) + L".png";
            if (!SavePng(CaptureScreen(), path)) continue;
            ++saved;
            std::printf("capture: %ls\n", path.c_str());
        }
        PressKey(VK_SPACE);
        result = saved != shots ? 4 : ExitCode(saver, kExitMs) == 0u ? 0 : 5;
    } else {
        std::fprintf(stderr, "capture: %ls opened no window\n", SaverPath().c_str());
    }
    std::fflush(stdout);
    EndSaver(saver); // a run that is still there
    return result;
}

} // namespace

// Our own main instead of gtest_main's, for the options above.
int main() {
    int argc = 0;
    wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (argc == 2 && std::wstring(argv[1]) == L"--settings") {
        std::FILE* file = _wfopen(e2e::BesideDriver(L"started.txt").c_str(), L"w");
        if (file) std::fprintf(file, "%ls", GetCommandLineW());
        return file && std::fclose(file) == 0 ? 0 : 1;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); // for WIC
    ::testing::InitGoogleTest(&argc, argv); // takes the --gtest_ options out of argv
    std::wstring folder;
    int shots = 4;
    DWORD intervalMs = 2000;
    for (int i = 1; i < argc; i += 2) {
        std::wstring option = argv[i];
        const std::wstring value = i + 1 < argc ? argv[i + 1] : L"";
        const size_t equals = value.find(L'=');
        if (value.empty()) option.clear(); // an option without its value
        if (option == L"--scr") e2e::scrOption = value;
        else if (option == L"--capture") folder = value;
        else if (option == L"--shots") shots = _wtoi(value.c_str());
        else if (option == L"--interval") intervalMs = static_cast<DWORD>(_wtoi(value.c_str()));
        else if (option == L"--set" && equals != value.npos)
            e2e::SetOption(value.substr(0, equals).c_str(), value.substr(equals + 1));
        else {
            std::fprintf(stderr, "can't use option %ls %ls\n", argv[i], value.c_str());
            return 2;
        }
    }
    return folder.empty() ? RUN_ALL_TESTS() : Capture(folder, shots, intervalMs);
}
