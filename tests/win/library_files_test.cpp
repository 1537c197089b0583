// The folder adapters on the real file system: the merge of an old data folder, the write test,
// the photo listing and the folders of a fresh user.
#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <string>

#include "library/data_paths.h"
#include "library/migration.h"
#include "library/photo_listing.h"
#include "library/settings.h"
#include "platform/file_tree_win.h"

namespace {

constexpr wchar_t kKey[] = L"Software\\LumivaneW";

bool IsThere(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void WriteText(const std::wstring& path, const char* text, LONGLONG ageSeconds = 0) {
    SHCreateDirectoryExW(nullptr, path.substr(0, path.rfind(L'\\')).c_str(), nullptr);
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    WriteFile(file, text, static_cast<DWORD>(strlen(text)), &written, nullptr);
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    ULARGE_INTEGER time{{now.dwLowDateTime, now.dwHighDateTime}};
    time.QuadPart -= static_cast<ULONGLONG>(ageSeconds) * 10'000'000;
    const FILETIME stamp{time.LowPart, time.HighPart};
    SetFileTime(file, nullptr, nullptr, &stamp);
    CloseHandle(file);
}

std::string Text(const std::wstring& path) {
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              0, nullptr);
    char buffer[64] = {};
    DWORD read = 0;
    ReadFile(file, buffer, sizeof buffer - 1, &read, nullptr);
    CloseHandle(file);
    return buffer;
}

// A folder of its own under the temporary folder, removed with everything in it at the end.
class LibraryFiles : public ::testing::Test {
protected:
    void SetUp() override {
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        root = std::wstring(temp) + L"lumivane-library-" + std::to_wstring(GetCurrentProcessId());
        Remove(root);
        SHCreateDirectoryExW(nullptr, root.c_str(), nullptr);
        RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    }
    void TearDown() override {
        Remove(root);
        RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    }
    static void Remove(const std::wstring& path) {
        std::wstring list = path + L'\0';
        SHFILEOPSTRUCTW operation{};
        operation.wFunc = FO_DELETE;
        operation.pFrom = list.c_str();
        operation.fFlags = FOF_NO_UI;
        SHFileOperationW(&operation);
    }
    std::wstring root;
};

TEST_F(LibraryFiles, OldDataFolderIsMergedAndTheOptionsFollowIt) {
    const std::wstring oldDir = root + L"\\LumivaneW", newDir = root + L"\\Lumivane";
    WriteText(oldDir + L"\\a.txt", "a");
    WriteText(oldDir + L"\\sub\\b.txt", "b");
    WriteText(oldDir + L"\\both.txt", "old");
    WriteText(oldDir + L"\\deep\\x\\c.txt", "old c");
    WriteText(newDir + L"\\both.txt", "new");
    WriteText(newDir + L"\\deep\\x\\c.txt", "new c");
    Settings::WriteString(L"Dir", oldDir + L"\\Slides");
    Settings::WriteString(L"Other", root + L"\\LumivaneWork");

    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), newDir);
    EXPECT_EQ(Text(newDir + L"\\a.txt"), "a");
    EXPECT_EQ(Text(newDir + L"\\sub\\b.txt"), "b");
    EXPECT_FALSE(IsThere(oldDir + L"\\sub"));
    EXPECT_EQ(Text(oldDir + L"\\both.txt"), "old");
    EXPECT_EQ(Text(newDir + L"\\both.txt"), "new");
    EXPECT_EQ(Text(oldDir + L"\\deep\\x\\c.txt"), "old c");
    EXPECT_EQ(Settings::ReadString(L"Dir"), newDir + L"\\Slides");
    EXPECT_EQ(Settings::ReadString(L"Other"), root + L"\\LumivaneWork");

    // Once the conflicts are cleared, the next start finishes the move.
    DeleteFileW((oldDir + L"\\both.txt").c_str());
    DeleteFileW((oldDir + L"\\deep\\x\\c.txt").c_str());
    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), newDir);
    EXPECT_FALSE(IsThere(oldDir));
}

TEST_F(LibraryFiles, OldDataFolderAloneIsRenamed) {
    WriteText(root + L"\\LumivaneW\\a.txt", "a");
    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), root + L"\\Lumivane");
    EXPECT_EQ(Text(root + L"\\Lumivane\\a.txt"), "a");
    EXPECT_FALSE(IsThere(root + L"\\LumivaneW"));
}

TEST_F(LibraryFiles, WriteTestMakesTheFolderAndLeavesNoFile) {
    const std::wstring folder = root + L"\\new\\deeper";
    const std::wstring probe = folder + L"\\.lumivane-write-test";
    EXPECT_TRUE(CanWriteTo(folder));
    EXPECT_TRUE(IsThere(folder));
    EXPECT_FALSE(IsThere(probe));
    WriteText(probe, "left by something else");
    EXPECT_TRUE(CanWriteTo(folder));
    EXPECT_FALSE(IsThere(probe));
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
    EXPECT_EQ(paths.importsDir, root + L"\\Documents");
    EXPECT_EQ(Settings::ReadString(L"ImportsDir"), root + L"\\Documents");
    for (const std::wstring* folder : {&paths.dataDir, &paths.slidesDir, &paths.updatesDir,
                                       &paths.itemsDir, &paths.wallpaperDir, &paths.screenSaverDir,
                                       &paths.wallpaperCacheDir})
        EXPECT_TRUE(IsThere(*folder)) << std::string(folder->begin(), folder->end());
    EXPECT_FALSE(IsThere(root + L"\\Documents\\.lumivane-write-test"));
    EXPECT_EQ(BuildDataPaths(tree).wallpaperCacheDir, paths.wallpaperCacheDir);
}

} // namespace
