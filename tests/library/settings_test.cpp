// The options key: the value forms, and the rewrite of paths after the data folder has moved.
#include <gtest/gtest.h>

#include "library/memory_registry.h"
#include "library/settings.h"

// (That only a write makes the key is a test of the real key.)
TEST(Settings, EachValueFormReadsByItsRuleAndPathsAreRewrittenByWholeFolderNames) {
    const auto Utf16 = MemoryRegistry::Utf16;
    TestRegistry() = {};
    Settings::WriteString(L"Value", L"D:\\\u20AC"); // both bytes of each character, and a zero
    EXPECT_EQ(TestRegistry().values.at(L"Value").second, Utf16(std::wstring(L"D:\\\u20AC", 5)));

    // The type, the bytes, ReadDword with the fallback 1, ReadString.
    const std::tuple<uint32_t, std::vector<uint8_t>, int32_t, std::wstring> cases[] = {
        {4, {0x01, 0x02, 0x03, 0x84}, -2080177663, L""}, // little-endian, signed
        {1, Utf16({L'0', 0}), 1, L"0"},                  // a string under a number
        {11, std::vector<uint8_t>(8), 1, L""},           // a qword doesn't fit 4 bytes
        {2, Utf16({L'x', 0}), 1, L""},                   // an expandable string isn't a string
        {1, Utf16(std::wstring(L"a\u20AC\0cd", 6)), 1, L"a\u20AC"},
    };
    for (const auto& [type, bytes, number, text] : cases) {
        TestRegistry().Put(L"Value", type, bytes);
        EXPECT_EQ(Settings::ReadDword(L"Value", 1), number) << type;
        EXPECT_EQ(Settings::ReadString(L"Value"), text) << type;
    }

    // The rewrite of paths replaces whole folder names and writes only what changed.
    TestRegistry() = {};
    const std::wstring old = L"C:\\U\\Local\\LumivaneW";
    TestRegistry().PutString(L"A", L"x:" + old + L"\nc:\\u\\LOCAL\\lumivanew|" + old + L"\\S|" +
                                       old + L"2");
    // Left alone: a name too long for the walk, which must go on past it, a type other than
    // REG_SZ, and a longer folder name.
    TestRegistry().PutString(L"B" + std::wstring(300, L'n'), old);
    TestRegistry().Put(L"C", 2, Utf16(old));
    TestRegistry().PutString(L"D", old);
    Settings::ReplacePathInValues(old, L"C:\\New");
    EXPECT_EQ(Settings::ReadString(L"A"), L"x:C:\\New\nC:\\New|C:\\New\\S|" + old + L"2");
    EXPECT_EQ(Settings::ReadString(L"D"), L"C:\\New");
    EXPECT_EQ(TestRegistry().writes, (std::vector<std::wstring>{L"A", L"D"}));
}
