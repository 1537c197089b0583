// The real crash reporter in a process that crashes: lumivane_crash_helper.exe, built beside this
// test program, arms it with a fresh data folder and crashes in the way that each case names.
// Every crash must leave exactly one report in Crashes, in the report's format, with frames in
// the helper's own module.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct CrashCase {
    const char* how;
    const char* thread;
    const char* code;
    const char* detail;
    bool hook; // ends through a runtime hook, with exit code 3
};

const char kWrite0x10[] = "writing 0x0000000000000010";
const CrashCase kCases[] = {
    {"WriteTo0x10", "ui", "c0000005", kWrite0x10, false},
    {"StackOverflowRaised", "ui", "c00000fd", "", false},
    {"Abort", "ui", "e0000004", "", true},
    {"Terminate", "ui", "e0000003", "", true},
    {"PureCall", "ui", "e0000001", "", true},
    {"MsvcThrow", "ui", "e06d7363", ".?AVHelperError@@", false},
    {"MsvcThrowUnreadable", "ui", "e06d7363", "", false},
    {"Worker", "worker", "c0000005", kWrite0x10, false},
    {"WorkerThrow", "worker", "e0000003", "", true},
    {"TwoThreads", "worker", "c0000005", kWrite0x10, false},
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

struct HelperRun {
    DWORD processId = 0;
    DWORD exitCode = 0;
    bool ended = false;
};

HelperRun RunHelper(const fs::path& dataDir, const char* how) {
    std::wstring commandLine = L"\"" + HelperPath().wstring() + L"\" \"" + dataDir.wstring() +
                               L"\" " + std::wstring(how, how + strlen(how));
    // Its console output, and that of the debugger that Wine starts after an unhandled
    // exception, go nowhere.
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE nul = CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_WRITE, &inherit, OPEN_EXISTING, 0,
                             nullptr);
    STARTUPINFOW startup{sizeof startup};
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = startup.hStdOutput = startup.hStdError = nul;
    PROCESS_INFORMATION process{};
    HelperRun run;
    if (CreateProcessW(nullptr, &commandLine[0], nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                       nullptr, &startup, &process)) {
        run.processId = process.dwProcessId;
        run.ended = WaitForSingleObject(process.hProcess, 30000) == WAIT_OBJECT_0;
        if (!run.ended) TerminateProcess(process.hProcess, 1);
        GetExitCodeProcess(process.hProcess, &run.exitCode);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    CloseHandle(nul);
    return run;
}

class CrashHelper : public testing::TestWithParam<CrashCase> {
protected:
    static void SetUpTestSuite() {
        // Wine's own setting: after an unhandled exception its debugger prints a backtrace and
        // ends the process, rather than waiting for a click in a dialog that nobody sees.
        const DWORD off = 0;
        RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Wine\\WineDbg", L"ShowCrashDialog",
                        REG_DWORD, &off, sizeof off);
    }
    void SetUp() override {
        fs::remove_all(dataDir);
        fs::create_directories(dataDir);
    }
    void TearDown() override { fs::remove_all(dataDir); }

    const fs::path dataDir = fs::temp_directory_path() / "lumivane-crash";
};

TEST_P(CrashHelper, LeavesOneReportWithKeysInOrderAndFramesInTheHelper) {
    const CrashCase& c = GetParam();
    const HelperRun run = RunHelper(dataDir, c.how);
    ASSERT_NE(run.processId, 0u) << "the helper did not start";
    EXPECT_TRUE(run.ended);
    if (c.hook) EXPECT_EQ(run.exitCode, 3u);

    std::vector<fs::path> reports;
    for (const auto& entry : fs::directory_iterator(dataDir / L"Crashes"))
        reports.push_back(entry.path());
    ASSERT_EQ(reports.size(), 1u);
    const std::string name = reports[0].filename().string();
    const std::string pid = std::to_string(run.processId);
    EXPECT_TRUE(std::regex_match(name, std::regex("[0-9a-f]{16}-" + pid + "\\.crash"))) << name;

    std::ifstream in(reports[0], std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.back(), '\n');
    EXPECT_EQ(text.find_first_of(std::string("\r\0", 2)), std::string::npos);
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    ASSERT_GE(lines.size(), 12u);

    // Lines 1 to 11: fixed values, or a pattern for what differs from run to run.
    const std::string uuid = "[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}";
    const std::string head[] = {
        "app=saver-win", std::string("thread=") + c.thread, std::string("code=") + c.code,
        std::string("detail=") + c.detail, "version=6.2.4", "stage=preview",
        "session=" + uuid, "event=" + uuid, "osv=[0-9]+\\.[0-9]+\\.[0-9]+", "pid=" + pid,
        "time=20[0-9]{2}-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9]{3}Z"};
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ(lines[i], head[i]);
    for (size_t i = 6; i < 11; ++i)
        EXPECT_TRUE(std::regex_match(lines[i], std::regex(head[i]))) << lines[i];
    EXPECT_NE(lines[6].substr(8), lines[7].substr(6)); // session and event differ

    const std::regex moduleFrame("frame=([^|?][^|]*)\\|[0-9a-f]{16}\\|([0-9a-f]{8})");
    const std::regex unknownFrame("frame=\\?\\|[0-9a-f]{16}\\|00000000");
    const std::string stamp = FileTimeStamp(HelperPath());
    int helperFrames = 0;
    for (size_t i = 11; i < lines.size(); ++i) {
        std::smatch match;
        if (std::regex_match(lines[i], match, moduleFrame))
            helperFrames += match[1] == "lumivane_crash_helper.exe" && match[2] == stamp;
        else
            EXPECT_TRUE(std::regex_match(lines[i], unknownFrame)) << lines[i];
    }
    EXPECT_LE(lines.size() - 11, 48u);
    EXPECT_GE(helperFrames, 2);
}

INSTANTIATE_TEST_SUITE_P(Crashes, CrashHelper, testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.how); });

} // namespace
