// The log's files for real: UTF-8 lines with their prefix, and the rotation at its limit.
#include "platform/log_file_win.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>

namespace {

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

class LogFile : public testing::Test {
protected:
    void SetUp() override { fs::create_directories(folder); }
    void TearDown() override { fs::remove_all(folder); }
    const fs::path folder = fs::temp_directory_path() / "lumivane-log";
};

TEST_F(LogFile, LinesAreUtf8WithTimeAndProcess) {
    AppendLogLine(folder.wstring(), L"saver: caf\u00e9 \u65e5\u672c");
    AppendLogLine(folder.wstring(), L"");
    const std::string prefix = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} \\[" +
                               std::to_string(GetCurrentProcessId()) + "\\] ";
    const std::string text = ReadAll(folder / "log.txt");
    const std::string utf8 = "saver: caf\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac\r\n";
    EXPECT_TRUE(std::regex_match(text, std::regex(prefix + utf8 + prefix + "\r\n"))) << text;
}

TEST_F(LogFile, LogAboveTheLimitMovesToTheOldGeneration) {
    for (const size_t size : {1048576, 1048577}) {
        const std::string full(size, 'x');
        std::ofstream(folder / "log.txt", std::ios::binary) << full;
        std::ofstream(folder / "log.old.txt", std::ios::binary) << "older\r\n";
        AppendLogLine(folder.wstring(), L"next");
        const bool rotated = size > 1048576;
        EXPECT_EQ(ReadAll(folder / "log.old.txt"), rotated ? full : "older\r\n") << size;
        const std::string log = ReadAll(folder / "log.txt");
        const size_t line = 29 + std::to_string(GetCurrentProcessId()).size(); // "next" and CR LF
        EXPECT_EQ(log.size(), (rotated ? 0 : size) + line) << size;
        EXPECT_EQ(log.substr(log.size() - 6), "next\r\n") << size;
    }
}

} // namespace
