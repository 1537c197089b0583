// The real crash reporter in a process that crashes: lumivane_crash_helper.exe, built beside this
// test program, arms it with a fresh data folder and crashes in the way that each case names. Every
// crash must leave exactly one report in Crashes, whose head names the crash and whose frames name
// the helper's own module with its build stamp. The report's format is a host test.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <utility>

namespace {

namespace fs = std::filesystem;

// The way to crash, and the report's lines 2 to 4: thread, code and detail. One case per way into
// the reporter: the exception filter (an access fault, the overflow's path without a backtrace, a
// thrown object's type read under the fault guard), the hooks of abort, purecall and terminate (a
// GCC throw nobody catches), and two threads crashing at once. The hooks report codes of their own,
// e00000xx, and end the process with exit code 3.
const std::pair<const wchar_t*, const char*> kCases[] = {
    {L"WriteTo0x10", "thread=ui\ncode=c0000005\ndetail=writing 0x0000000000000010"},
    {L"StackOverflowRaised", "thread=ui\ncode=c00000fd\ndetail="},
    {L"Abort", "thread=ui\ncode=e0000004\ndetail="},
    {L"PureCall", "thread=ui\ncode=e0000001\ndetail="},
    {L"MsvcThrow", "thread=ui\ncode=e06d7363\ndetail=.?AVHelperError@@"},
    {L"MsvcThrowUnreadable", "thread=ui\ncode=e06d7363\ndetail="},
    {L"WorkerThrow", "thread=worker\ncode=e0000003\ndetail="},
    {L"TwoThreads", "thread=worker\ncode=c0000005\ndetail=writing 0x0000000000000010"},
};

TEST(CrashHelper, EveryCrashLeavesOneReportNamingItWithFramesInTheHelper) {
    // Wine's own setting: after an unhandled exception its debugger prints a backtrace and ends the
    // process, rather than waiting for a click in a dialog that nobody sees.
    const DWORD off = 0;
    RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Wine\\WineDbg", L"ShowCrashDialog", REG_DWORD,
                    &off, sizeof off);
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const fs::path helper = fs::path(self).parent_path() / L"lumivane_crash_helper.exe";
    // The TimeDateStamp in the helper file's header, which its frames must carry.
    std::ifstream image(helper, std::ios::binary);
    uint32_t headerAt = 0, stamp = 0;
    image.seekg(0x3c).read(reinterpret_cast<char*>(&headerAt), 4);
    image.seekg(headerAt + 8).read(reinterpret_cast<char*>(&stamp), 4);
    char frame[80];
    snprintf(frame, sizeof frame, "\nframe=lumivane_crash_helper\\.exe\\|[0-9a-f]{16}\\|%08x(?=\n)",
             stamp);
    const fs::path dataDir = fs::temp_directory_path() / "lumivane-crash";
    for (const auto& [how, head] : kCases) {
        SCOPED_TRACE(fs::path(how).string());
        fs::remove_all(dataDir);
        fs::create_directories(dataDir);
        const intptr_t exitCode =
            _wspawnl(_P_WAIT, helper.c_str(), L"helper", dataDir.c_str(), how, nullptr);
        if (strstr(head, "code=e00000")) EXPECT_EQ(exitCode, 3);
        const std::vector<fs::directory_entry> reports(fs::directory_iterator(dataDir / "Crashes"),
                                                       {});
        EXPECT_EQ(reports.size(), 1u);
        if (reports.empty()) continue;
        std::ifstream file(reports[0].path(), std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(file), {});
        const std::string start =
            std::string("app=saver-win\n") + head + "\nversion=6.2.4\nstage=preview\n";
        EXPECT_EQ(text.substr(0, start.size()), start);
        std::smatch ids; // two identifiers from the system's random numbers
        EXPECT_TRUE(std::regex_search(text, ids, std::regex("\nsession=(.+)\nevent=(.+)\n")) &&
                    ids[1] != ids[2]);
        // At least the crashing function and the one that called it.
        const std::regex helperFrame(frame);
        std::sregex_iterator frames(text.begin(), text.end(), helperFrame), end;
        EXPECT_GE(std::distance(frames, end), 2) << text;
    }
}

} // namespace
