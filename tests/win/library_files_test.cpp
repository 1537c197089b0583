// The library's adapters on the real registry key and file system: value forms, the merge of an
// old data folder, the write test, the photo listing and the folders of a fresh user.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "library/data_paths.h"
#include "library/migration.h"
#include "library/photo_listing.h"
#include "library/settings.h"
#include "platform/file_tree_win.h"

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

std::string Text(const fs::path& path) {
    std::string text;
    std::getline(std::ifstream(path, std::ios::binary), text);
    return text;
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

TEST_F(LibraryFiles, ReadsNeverMakeTheKeyAndWriteStringMakesItKeepingOtherValues) {
    EXPECT_EQ(Settings::ReadDword(L"SaverTitle", 1), 1);
    EXPECT_EQ(Settings::ReadString(L"SaverShow"), L"");
    Settings::ReplacePathInValues(L"C:\\Old", L"C:\\New");
    EXPECT_FALSE(KeyExists());

    Settings::WriteString(L"ImportsDir", L"");
    DWORD type = 0, bytes = 0;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, kKey, L"ImportsDir", RRF_RT_ANY, &type, nullptr,
                           &bytes),
              ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(bytes, 2u);
    const DWORD one = 1;
    Put(L"SaverFit", REG_DWORD, &one, 4);
    Settings::WriteString(L"ImportsDir", L"D:\\Pics");
    EXPECT_EQ(Settings::ReadString(L"ImportsDir"), L"D:\\Pics");
    EXPECT_EQ(Settings::ReadDword(L"SaverFit", 0), 1);
}

TEST_F(LibraryFiles, ValueFormsReadByTheirRules) {
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

TEST_F(LibraryFiles, OldDataFolderIsMovedOrMergedAndTheOptionsFollowIt) {
    const std::wstring oldDir = root + L"\\LumivaneW", newDir = root + L"\\Lumivane";
    WriteText(oldDir + L"\\a.txt", "a");
    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), newDir); // a rename
    EXPECT_EQ(Text(newDir + L"\\a.txt"), "a");
    EXPECT_FALSE(fs::exists(oldDir));

    WriteText(oldDir + L"\\sub\\b.txt", "b");
    WriteText(oldDir + L"\\a.txt", "old");
    WriteText(oldDir + L"\\deep\\x\\c.txt", "old c");
    WriteText(newDir + L"\\deep\\x\\c.txt", "new c");
    Settings::WriteString(L"Dir", oldDir + L"\\Slides");
    Settings::WriteString(L"Other", root + L"\\LumivaneWork");
    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), newDir); // a merge
    EXPECT_EQ(Text(newDir + L"\\sub\\b.txt"), "b");
    EXPECT_FALSE(fs::exists(oldDir + L"\\sub"));
    EXPECT_EQ(Text(oldDir + L"\\a.txt"), "old");
    EXPECT_EQ(Text(newDir + L"\\a.txt"), "a");
    EXPECT_EQ(Text(oldDir + L"\\deep\\x\\c.txt"), "old c");
    EXPECT_EQ(Text(newDir + L"\\deep\\x\\c.txt"), "new c");
    EXPECT_EQ(Settings::ReadString(L"Dir"), newDir + L"\\Slides");
    EXPECT_EQ(Settings::ReadString(L"Other"), root + L"\\LumivaneWork");

    // Once the conflicts are cleared, the next start finishes the move.
    fs::remove(oldDir + L"\\a.txt");
    fs::remove(oldDir + L"\\deep\\x\\c.txt");
    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), newDir);
    EXPECT_FALSE(fs::exists(oldDir));
}

TEST_F(LibraryFiles, WriteTestMakesTheFolderAndLeavesNoFile) {
    const std::wstring folder = root + L"\\new\\deeper";
    const std::wstring probe = folder + L"\\.lumivane-write-test";
    EXPECT_TRUE(CanWriteTo(folder));
    EXPECT_TRUE(fs::is_directory(folder));
    EXPECT_FALSE(fs::exists(probe));
    WriteText(probe, "left by something else");
    EXPECT_TRUE(CanWriteTo(folder));
    EXPECT_FALSE(fs::exists(probe));
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

// The real file calls, with the user's known folders moved under the test's own folder.
class RedirectedTree : public FileTree {
public:
    explicit RedirectedTree(const std::wstring& root) : base(root) {}
    std::wstring ModulePath() override { return system.ModulePath(); }
    std::optional<std::wstring> LocalAppData() override {
        system.CreateFolderTree(base + L"\\Local");
        return base + L"\\Local";
    }
    std::wstring TempPath() override { return system.TempPath(); }
    std::wstring RoamingAppData() override { return base + L"\\Roaming"; }
    std::wstring Documents() override { return base + L"\\Documents"; }
    uint32_t Attributes(const std::wstring& path) override { return system.Attributes(path); }
    bool Move(const std::wstring& from, const std::wstring& to) override {
        return system.Move(from, to);
    }
    uint32_t LastError() override { return system.LastError(); }
    bool CreateFolder(const std::wstring& path) override { return system.CreateFolder(path); }
    void CreateFolderTree(const std::wstring& path) override { system.CreateFolderTree(path); }
    bool RemoveFolder(const std::wstring& path) override { return system.RemoveFolder(path); }
    bool List(const std::wstring& pattern, std::vector<FolderEntry>& entries) override {
        return system.List(pattern, entries);
    }
    bool CanWriteTo(const std::wstring& folder) override { return system.CanWriteTo(folder); }
    std::optional<std::string> ReadFile(const std::wstring& path) override {
        return system.ReadFile(path);
    }

private:
    std::wstring base;
    FileTree& system = SystemFileTree();
};

TEST_F(LibraryFiles, FreshUserGetsTheWholeTreeAndAStoredPhotoDirectory) {
    RedirectedTree tree(root);
    const DataPaths paths = BuildDataPaths(tree);
    EXPECT_EQ(paths.dataDir, root + L"\\Local\\Lumivane");
    EXPECT_EQ(Settings::ReadString(L"ImportsDir"), root + L"\\Documents");
    for (const std::wstring* folder : {&paths.slidesDir, &paths.updatesDir, &paths.wallpaperDir,
                                       &paths.screenSaverDir, &paths.wallpaperCacheDir})
        EXPECT_TRUE(fs::is_directory(*folder)) << fs::path(*folder).string();
    EXPECT_FALSE(fs::exists(root + L"\\Documents\\.lumivane-write-test"));
}

} // namespace
