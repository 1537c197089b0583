// The options key: value forms, the rule that only a write makes the key, and the rewrite of
// paths after the data folder has moved.
#include <gtest/gtest.h>

#include "library/memory_registry.h"
#include "library/settings.h"

namespace {

using Bytes = std::vector<uint8_t>;
const auto Utf16 = MemoryRegistry::Utf16;

class SettingsTest : public ::testing::Test {
protected:
    void SetUp() override { TestRegistry() = {}; }
};

TEST_F(SettingsTest, ReadsNeverMakeTheKeyAndWriteStringMakesItKeepingOtherValues) {
    EXPECT_EQ(Settings::ReadDword(L"SaverTitle", 1), 1);
    EXPECT_EQ(Settings::ReadString(L"SaverShow"), L"");
    Settings::ReplacePathInValues(L"C:\\Old", L"C:\\New");
    EXPECT_FALSE(TestRegistry().keyExists);

    Settings::WriteString(L"ImportsDir", L"");
    EXPECT_EQ(TestRegistry().values.at(L"ImportsDir").bytes, (Bytes{0, 0}));
    TestRegistry().Put(L"SaverFit", 4, {1, 0, 0, 0});
    Settings::WriteString(L"ImportsDir", L"D:\\P");
    EXPECT_EQ(TestRegistry().values.at(L"ImportsDir").bytes, Utf16(std::wstring(L"D:\\P", 5)));
    EXPECT_EQ(Settings::ReadDword(L"SaverFit", 0), 1);
}

TEST_F(SettingsTest, EachValueFormReadsByItsRule) {
    struct Case {
        const char* what;
        uint32_t type;
        Bytes bytes;
        int32_t number; // ReadDword with the fallback 1
        std::wstring text;
    };
    const Case cases[] = {
        {"dword all ones is -1", 4, {0xFF, 0xFF, 0xFF, 0xFF}, -1, L""},
        {"dword little-endian", 4, {0x01, 0x02, 0x03, 0x04}, 0x04030201, L""},
        {"dword of 2 bytes", 4, {7, 0}, 7, L""},
        {"string 0 under a number", 1, Utf16({L'0', 0}), 1, L"0"},
        {"qword doesn't fit 4 bytes", 11, Bytes(8, 0), 1, L""},
        {"expand string isn't a string", 2, Utf16({L'x', 0}), 1, L""},
        {"embedded zero cuts", 1, Utf16(std::wstring(L"ab\0cd", 6)), 1, L"ab"},
        {"no terminator", 1, Utf16(L"ab"), 1, L"ab"},
        {"empty string", 1, {0, 0}, 1, L""},
    };
    for (const Case& c : cases) {
        TestRegistry().Put(L"Value", c.type, c.bytes);
        EXPECT_EQ(Settings::ReadDword(L"Value", 1), c.number) << c.what;
        EXPECT_EQ(Settings::ReadString(L"Value"), c.text) << c.what;
    }
}

TEST_F(SettingsTest, PathRewriteReplacesWholeFolderNamesAndWritesOnlyWhatChanged) {
    const std::pair<std::wstring, std::wstring> cases[] = { // after empty: left alone
        {L"C:\\U\\Local\\LumivaneW\\Slides", L"C:\\U\\Local\\Lumivane\\Slides"},
        {L"c:\\u\\LOCAL\\lumivanew|D:\\Other|C:\\U\\Local\\LumivaneW",
         L"C:\\U\\Local\\Lumivane|D:\\Other|C:\\U\\Local\\Lumivane"},
        {L"x:C:\\U\\Local\\LumivaneW\nC:\\U\\Local\\LumivaneW2",
         L"x:C:\\U\\Local\\Lumivane\nC:\\U\\Local\\LumivaneW2"},
        {L"C:\\U\\Local\\LumivaneWork", L""},
        {L"C:\\U\\Local\\Lumivane\\Slides", L""}, // a second pass finds nothing
    };
    for (size_t i = 0; i < std::size(cases); ++i)
        TestRegistry().PutString(L"V" + std::to_wstring(i), cases[i].first);
    // Left alone: a type other than REG_SZ, and a name too long for the walk (it sorts first, so
    // the walk must go on past it).
    TestRegistry().Put(L"Expand", 2, Utf16(L"C:\\U\\Local\\LumivaneW"));
    TestRegistry().PutString(L"A" + std::wstring(300, L'n'), L"C:\\U\\Local\\LumivaneW");

    Settings::ReplacePathInValues(L"C:\\U\\Local\\LumivaneW", L"C:\\U\\Local\\Lumivane");

    std::vector<std::wstring> written;
    for (size_t i = 0; i < std::size(cases); ++i) {
        const std::wstring name = L"V" + std::to_wstring(i);
        const auto& [before, after] = cases[i];
        EXPECT_EQ(Settings::ReadString(name.c_str()), after.empty() ? before : after) << i;
        if (!after.empty()) written.push_back(name);
    }
    EXPECT_EQ(TestRegistry().writes, written);
}

} // namespace
