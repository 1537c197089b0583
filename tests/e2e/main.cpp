// The end-to-end driver: runs the scenarios (all GoogleTest flags apply) against the saver that
// LUMIVANE_SCR names, else Lumivane.scr one folder above the driver. Started with --settings alone
// it runs no tests and stands in for the companion program, Lumivane.exe: it writes its command
// line into started.txt beside itself and ends.
#include "e2e/driver.h"

#include <objbase.h>
#include <shellapi.h>

#include <cstdio>

// Our own main instead of gtest_main's, for the companion's part and the COM apartment.
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
    ::testing::InitGoogleTest(&argc, argv);
    if (const wchar_t* scr = _wgetenv(L"LUMIVANE_SCR"); scr && *scr) saverPath = scr;
    return RUN_ALL_TESTS();
}
