// The log's files for real: UTF-8 lines with their prefix, and the rotation.
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

// One line into a log just above the limit: the log moves over the old generation, and the line
// starts a new log; the next line is appended. The limit itself is a host test.
TEST(LogFile, LinesAreUtf8WithTimeAndProcessAndAFullLogRotates) {
    const fs::path folder = fs::temp_directory_path() / "lumivane-log";
    fs::create_directories(folder);
    const std::string full(1048577, 'x');
    std::ofstream(folder / "log.txt", std::ios::binary) << full;
    std::ofstream(folder / "log.old.txt", std::ios::binary) << "older\r\n";
    AppendLogLine(folder.wstring(), L"saver: caf\u00e9 \u65e5\u672c");
    AppendLogLine(folder.wstring(), L"");
    EXPECT_EQ(ReadAll(folder / "log.old.txt"), full);
    const std::string prefix = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} \\[" +
                               std::to_string(GetCurrentProcessId()) + "\\] ";
    const std::string text = ReadAll(folder / "log.txt");
    const std::string utf8 = "saver: caf\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac\r\n";
    EXPECT_TRUE(std::regex_match(text, std::regex(prefix + utf8 + prefix + "\r\n"))) << text;
    fs::remove_all(folder);
}

} // namespace
