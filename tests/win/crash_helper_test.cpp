// The real crash reporter in a process that crashes: lumivane_crash_helper.exe, built beside this
// test program, arms it with a fresh data folder and crashes in the way that each case names.
// Every crash must leave exactly one report in Crashes, whose head names the crash and whose
// frames name the helper's own module. The report's format is a host test. Last, the guard of the
// stack walk, in this process.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "platform/fault_guard_win.h"
#include "platform/stack_walk_win.h"

namespace {

namespace fs = std::filesystem;

struct CrashCase {
    const char* how;
    const char* head; // the report's lines 2 to 4: thread, code and detail
    bool hook;        // ends through a runtime hook, with exit code 3
};

// One case per way into the reporter: the exception filter (an access fault, the overflow's path
// without a backtrace, a thrown object's type read under the fault guard), the hooks of abort,
// purecall and terminate (a GCC throw nobody catches), and two threads crashing at once.
const CrashCase kCases[] = {
    {"WriteTo0x10", "thread=ui\ncode=c0000005\ndetail=writing 0x0000000000000010", false},
    {"StackOverflowRaised", "thread=ui\ncode=c00000fd\ndetail=", false},
    {"Abort", "thread=ui\ncode=e0000004\ndetail=", true},
    {"PureCall", "thread=ui\ncode=e0000001\ndetail=", true},
    {"MsvcThrow", "thread=ui\ncode=e06d7363\ndetail=.?AVHelperError@@", false},
    {"MsvcThrowUnreadable", "thread=ui\ncode=e06d7363\ndetail=", false},
    {"WorkerThrow", "thread=worker\ncode=e0000003\ndetail=", true},
    {"TwoThreads", "thread=worker\ncode=c0000005\ndetail=writing 0x0000000000000010", false},
};

fs::path HelperPath() {
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    return fs::path(self).parent_path() / L"lumivane_crash_helper.exe";
}

// The TimeDateStamp in the helper file's header, which its frames must carry.
std::string FileTimeStamp(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    uint32_t headerAt = 0, stamp = 0;
    in.seekg(0x3c).read(reinterpret_cast<char*>(&headerAt), 4);
    in.seekg(headerAt + 8).read(reinterpret_cast<char*>(&stamp), 4);
    char text[9];
    snprintf(text, sizeof text, "%08x", stamp);
    return text;
}

class CrashHelper : public testing::TestWithParam<CrashCase> {};

TEST_P(CrashHelper, LeavesOneReportNamingTheCrashWithFramesInTheHelper) {
    const CrashCase& c = GetParam();
    // Wine's own setting: after an unhandled exception its debugger prints a backtrace and ends
    // the process, rather than waiting for a click in a dialog that nobody sees.
    const DWORD off = 0;
    RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Wine\\WineDbg", L"ShowCrashDialog", REG_DWORD,
                    &off, sizeof off);
    const fs::path dataDir = fs::temp_directory_path() / "lumivane-crash";
    fs::remove_all(dataDir);
    fs::create_directories(dataDir);
    std::wstring commandLine = L"\"" + HelperPath().wstring() + L"\" \"" + dataDir.wstring() +
                               L"\" " + std::wstring(c.how, c.how + strlen(c.how));
    // Its console output, and that of the debugger that Wine starts after an unhandled
    // exception, go nowhere.
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE nul = CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_WRITE, &inherit, OPEN_EXISTING, 0,
                             nullptr);
    STARTUPINFOW startup{sizeof startup};
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = startup.hStdOutput = startup.hStdError = nul;
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessW(nullptr, &commandLine[0], nullptr, nullptr, TRUE, CREATE_NO_WINDOW,
                               nullptr, nullptr, &startup, &process));
    CloseHandle(nul);
    const bool ended = WaitForSingleObject(process.hProcess, 30000) == WAIT_OBJECT_0;
    if (!ended) TerminateProcess(process.hProcess, 1);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    EXPECT_TRUE(ended);
    if (c.hook) EXPECT_EQ(exitCode, 3u);

    const std::vector<fs::directory_entry> reports(fs::directory_iterator(dataDir / "Crashes"), {});
    ASSERT_EQ(reports.size(), 1u);
    std::ifstream in(reports[0].path(), std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_EQ(text.rfind(std::string("app=saver-win\n") + c.head + "\nversion=6.2.4\n" +
                             "stage=preview\n", 0), 0u) << text;
    EXPECT_NE(text.find("\npid=" + std::to_string(process.dwProcessId) + "\n"), text.npos);
    std::smatch ids; // two identifiers from the system's random numbers
    EXPECT_TRUE(std::regex_search(text, ids, std::regex("\nsession=(.+)\nevent=(.+)\n")) &&
                ids[1] != ids[2]);
    EXPECT_EQ(text.back(), '\n');

    // Frames in the helper: its file name and its build stamp, at least the crashing function
    // and the one that called it.
    const std::regex helperFrame("\nframe=lumivane_crash_helper\\.exe\\|[0-9a-f]{16}\\|" +
                                 FileTimeStamp(HelperPath()) + "(?=\n)");
    const auto frames = std::sregex_iterator(text.begin(), text.end(), helperFrame);
    EXPECT_GE(std::distance(frames, std::sregex_iterator()), 2) << text;
    in.close();
    fs::remove_all(dataDir);
}

INSTANTIATE_TEST_SUITE_P(Crashes, CrashHelper, testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.how); });

// The stack walk's guard, which no crash here reaches: a fault inside the walk ends it, and the
// process goes on.
TEST(CrashStackWalk, FaultInsideTheWalkEndsIt) {
    ASSERT_TRUE(InstallFaultGuard());
    // A "stack" of reserved, unreadable pages, and a pc without unwind data: the leaf rule reads
    // the return address there and faults.
    const size_t size = 0x10000;
    void* reserved = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
    ASSERT_NE(reserved, nullptr);
    const auto low = reinterpret_cast<uint64_t>(reserved);
    CONTEXT context = {};
    context.Rip = 0x1000;
    context.Rsp = low + 0x100;
    for (int round = 0; round < 2; ++round) { // the guard is ready again after a fault
        uint64_t frames[48] = {};
        EXPECT_EQ(WalkStack(context, low, low + size, frames, 48), 1);
        EXPECT_EQ(frames[0], 0x1000u);
    }
    VirtualFree(reserved, 0, MEM_RELEASE);
}

} // namespace
