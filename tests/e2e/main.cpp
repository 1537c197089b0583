// The end-to-end driver. Without options it runs the scenarios (all GoogleTest flags apply);
//   --scr <path>   the saver to drive (else LUMIVANE_SCR, else one folder above the driver)
//   --settings     no tests: stands in for the companion program, Lumivane.exe: writes its
//                  command line into started.txt beside itself and ends
#include "e2e/driver.h"

#include <objbase.h>
#include <shellapi.h>

#include <cstdio>

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
    if (argc == 3 && std::wstring(argv[1]) == L"--scr") {
        saverPath = argv[2];
    } else if (argc != 1) {
        std::fprintf(stderr, "can't use the options\n");
        return 2;
    }
    return RUN_ALL_TESTS();
}
