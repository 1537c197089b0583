// The options key in the real registry: value forms, and the rule that only a write makes it.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "library/settings.h"

namespace {

constexpr wchar_t kKey[] = L"Software\\LumivaneW";

bool KeyExists() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

void Put(const wchar_t* name, DWORD type, const void* data, DWORD bytes) {
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name, type, data, bytes), ERROR_SUCCESS);
}

class SettingsRegistry : public ::testing::Test {
protected:
    void SetUp() override { RegDeleteTreeW(HKEY_CURRENT_USER, kKey); }
    void TearDown() override { RegDeleteTreeW(HKEY_CURRENT_USER, kKey); }
};

TEST_F(SettingsRegistry, MissingKeyGivesDefaultsAndIsNotMade) {
    EXPECT_EQ(Settings::ReadDword(L"SaverTitle", 1), 1);
    EXPECT_EQ(Settings::ReadString(L"SaverShow"), L"");
    Settings::ReplacePathInValues(L"C:\\Old", L"C:\\New");
    EXPECT_FALSE(KeyExists());
}

TEST_F(SettingsRegistry, ValueFormsReadByTheirRules) {
    const DWORD minusOne = 0xFFFFFFFF;
    const unsigned long long qword = 0;
    Put(L"Dword", REG_DWORD, &minusOne, 4);
    Put(L"Qword", REG_QWORD, &qword, 8);
    Put(L"Zero", REG_SZ, L"0", 4);
    Put(L"Cut", REG_SZ, L"ab\0cd", 12);
    Put(L"Bare", REG_SZ, L"ab", 4);
    Put(L"Expand", REG_EXPAND_SZ, L"faller", 14);
    EXPECT_EQ(Settings::ReadDword(L"Dword", 1), -1);
    EXPECT_EQ(Settings::ReadDword(L"Qword", 7), 7);
    EXPECT_EQ(Settings::ReadDword(L"Zero", 1), 1);
    EXPECT_EQ(Settings::ReadString(L"Zero"), L"0");
    EXPECT_EQ(Settings::ReadString(L"Cut"), L"ab");
    EXPECT_EQ(Settings::ReadString(L"Bare"), L"ab");
    EXPECT_EQ(Settings::ReadString(L"Expand"), L"");
}

TEST_F(SettingsRegistry, WriteStringMakesTheKeyAndKeepsOtherValues) {
    Settings::WriteString(L"ImportsDir", L"");
    DWORD type = 0, bytes = 0;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, kKey, L"ImportsDir", RRF_RT_ANY | RRF_NOEXPAND,
                           &type, nullptr, &bytes),
              ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(bytes, 2u);
    const DWORD one = 1;
    Put(L"SaverFit", REG_DWORD, &one, 4);
    Settings::WriteString(L"ImportsDir", L"D:\\Pics");
    EXPECT_EQ(Settings::ReadString(L"ImportsDir"), L"D:\\Pics");
    EXPECT_EQ(Settings::ReadDword(L"SaverFit", 0), 1);
}

} // namespace
