// The library's adapters on the real registry key and the real file system, one smoke test each;
// their rules are host tests against the in-memory key and tree, and the write test runs at
// every start of the saver end to end.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "library/migration.h"
#include "library/photo_listing.h"
#include "library/settings.h"

namespace {

namespace fs = std::filesystem;
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

// Writes `text` to a new file, dated `ageSeconds` back from now.
void WriteText(const fs::path& path, const char* text, int ageSeconds = 0) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::seconds(ageSeconds));
}

// A folder of its own under the temporary folder, and no options key, before and after.
class LibraryFiles : public ::testing::Test {
protected:
    void SetUp() override {
        fs::remove_all(root);
        fs::create_directories(root);
        RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(root, ignored);
        RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    }
    const std::wstring root = (fs::temp_directory_path() / "lumivane-library").wstring();
};

TEST_F(LibraryFiles, OnlyAWriteMakesTheKeyAndValuesReadAndRewriteBack) {
    EXPECT_EQ(Settings::ReadDword(L"SaverTitle", 1), 1);
    Settings::ReplacePathInValues(L"C:\\Old", L"C:\\New");
    EXPECT_FALSE(KeyExists());

    Settings::WriteString(L"ImportsDir", L"D:\\Pics\\x");
    const DWORD minusOne = 0xFFFFFFFF;
    Put(L"SaverFit", REG_DWORD, &minusOne, 4);
    Put(L"Cut", REG_SZ, L"ab\0cd", 12);
    EXPECT_EQ(Settings::ReadDword(L"SaverFit", 0), -1);
    EXPECT_EQ(Settings::ReadString(L"Cut"), L"ab");
    Settings::ReplacePathInValues(L"d:\\pics", L"E:\\P");
    EXPECT_EQ(Settings::ReadString(L"ImportsDir"), L"E:\\P\\x");
}

TEST_F(LibraryFiles, OldDataFolderIsMovedOrMergedAndTheOptionsFollowIt) {
    const std::wstring oldDir = root + L"\\LumivaneW", newDir = root + L"\\Lumivane";
    WriteText(oldDir + L"\\a.txt", "a");
    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), newDir); // a rename
    EXPECT_EQ(SystemFileTree().ReadFile(newDir + L"\\a.txt"), "a");
    EXPECT_FALSE(fs::exists(oldDir));

    WriteText(oldDir + L"\\sub\\b.txt", "b");
    WriteText(oldDir + L"\\a.txt", "old");
    WriteText(oldDir + L"\\deep\\x\\c.txt", "old c");
    WriteText(newDir + L"\\deep\\x\\c.txt", "new c");
    Settings::WriteString(L"Dir", oldDir + L"\\Slides");
    Settings::WriteString(L"Other", root + L"\\LumivaneWork");
    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), newDir); // a merge
    EXPECT_EQ(SystemFileTree().ReadFile(newDir + L"\\sub\\b.txt"), "b");
    EXPECT_FALSE(fs::exists(oldDir + L"\\sub"));
    EXPECT_EQ(SystemFileTree().ReadFile(oldDir + L"\\a.txt"), "old");
    EXPECT_EQ(SystemFileTree().ReadFile(newDir + L"\\a.txt"), "a");
    EXPECT_EQ(SystemFileTree().ReadFile(oldDir + L"\\deep\\x\\c.txt"), "old c");
    EXPECT_EQ(SystemFileTree().ReadFile(newDir + L"\\deep\\x\\c.txt"), "new c");
    EXPECT_EQ(Settings::ReadString(L"Dir"), newDir + L"\\Slides");
    EXPECT_EQ(Settings::ReadString(L"Other"), root + L"\\LumivaneWork");

    // Once the conflicts are cleared, the next start finishes the move.
    fs::remove(oldDir + L"\\a.txt");
    fs::remove(oldDir + L"\\deep\\x\\c.txt");
    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), newDir);
    EXPECT_FALSE(fs::exists(oldDir));
}

TEST_F(LibraryFiles, PhotosAreListedNewestFirst) {
    WriteText(root + L"\\b.jpg", "", 3600);
    WriteText(root + L"\\a.jpg", "", 60);
    WriteText(root + L"\\x.jpg", "", 7200);
    SetFileAttributesW((root + L"\\x.jpg").c_str(), FILE_ATTRIBUTE_HIDDEN);
    WriteText(root + L"\\photo.png", "");
    WriteText(root + L"\\album.jpg\\inner.jpg", "");
    EXPECT_EQ(ListPhotos(root), (std::vector<std::wstring>{root + L"\\a.jpg", root + L"\\b.jpg",
                                                           root + L"\\x.jpg"}));
    EXPECT_TRUE(ListPhotos(root + L"\\missing").empty());
}

} // namespace
