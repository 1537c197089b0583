// The library's adapters on the real registry key and the real file system: a merge of data
// folders, which rewrites the options, and a photo listing. Their rules are host tests against the
// in-memory key and tree; reading and writing options, making the folders and the write test
// are seen at every start of the saver end to end.
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

// A merge: what has no counterpart in the new folder moves (a folder at once), a conflict stays
// behind, and the options follow through the real key, which only a write makes.
TEST_F(LibraryFiles, OldDataFolderIsMergedAndTheOptionsFollowIt) {
    EXPECT_EQ(Settings::ReadDword(L"SaverTitle", 1), 1);
    Settings::ReplacePathInValues(L"C:\\Old", L"C:\\New");
    HKEY key = nullptr;
    EXPECT_NE(RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key), ERROR_SUCCESS);
    const std::wstring oldDir = root + L"\\LumivaneW", newDir = root + L"\\Lumivane";
    WriteText(newDir + L"\\a.txt", "new");
    WriteText(oldDir + L"\\a.txt", "old");
    WriteText(oldDir + L"\\sub\\b.txt", "b");
    Settings::WriteString(L"Dir", oldDir + L"\\Slides");
    EXPECT_EQ(MigrateDataFolder(SystemFileTree(), root), newDir);
    EXPECT_EQ(SystemFileTree().ReadFile(newDir + L"\\sub\\b.txt"), "b");
    EXPECT_FALSE(fs::exists(oldDir + L"\\sub"));
    EXPECT_EQ(SystemFileTree().ReadFile(oldDir + L"\\a.txt"), "old");
    EXPECT_EQ(SystemFileTree().ReadFile(newDir + L"\\a.txt"), "new");
    EXPECT_EQ(Settings::ReadString(L"Dir"), newDir + L"\\Slides");

    // Once the conflict is cleared, the next start finishes the move.
    fs::remove(oldDir + L"\\a.txt");
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
