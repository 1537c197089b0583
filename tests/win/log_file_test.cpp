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

void WriteAll(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

class LogFile : public testing::Test {
protected:
    void SetUp() override {
        wchar_t temp[MAX_PATH];
        GetTempPathW(MAX_PATH, temp);
        folder = fs::path(temp) / (L"lumivane-log-" + std::to_wstring(GetCurrentProcessId()));
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    fs::path folder;
};

TEST_F(LogFile, LinesAreUtf8WithTimeAndProcess) {
    AppendLogLine(folder.wstring(), L"saver: caf\u00e9 \u65e5\u672c");
    AppendLogLine(folder.wstring(), L"");
    const std::string prefix = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} \\[" +
                               std::to_string(GetCurrentProcessId()) + "\\] ";
    const std::regex expected(prefix + "saver: caf\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac\r\n" + prefix +
                              "\r\n");
    const std::string text = ReadAll(folder / L"log.txt");
    EXPECT_TRUE(std::regex_match(text, expected)) << text;
}

TEST_F(LogFile, LogAboveTheLimitMovesToTheOldGeneration) {
    struct Case {
        size_t size;
        bool rotated;
    };
    for (const Case c : {Case{1048576, false}, Case{1048577, true}}) {
        const std::string full(c.size, 'x');
        WriteAll(folder / L"log.txt", full);
        WriteAll(folder / L"log.old.txt", "older generation\r\n");
        AppendLogLine(folder.wstring(), L"next");
        const std::string log = ReadAll(folder / L"log.txt");
        const std::string old = ReadAll(folder / L"log.old.txt");
        if (c.rotated) {
            EXPECT_EQ(old, full);
            EXPECT_LT(log.size(), 64u);
        } else {
            EXPECT_EQ(old, "older generation\r\n");
            EXPECT_EQ(log.substr(0, full.size()), full);
        }
        EXPECT_EQ(log.substr(log.size() - 6), "next\r\n") << c.size;
    }
}

} // namespace
