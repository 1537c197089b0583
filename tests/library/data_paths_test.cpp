// The nine paths, the order of their building and the folders that it makes.
#include <gtest/gtest.h>

#include "library/data_paths.h"
#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/settings.h"

namespace {

std::vector<std::wstring> Fields(const DataPaths& p) {
    return {p.exePath,  p.dataDir,      p.slidesDir,      p.updatesDir,       p.importsDir,
            p.itemsDir, p.wallpaperDir, p.screenSaverDir, p.wallpaperCacheDir};
}

class DataPathsTest : public ::testing::Test {
protected:
    void SetUp() override { TestRegistry() = {}; }
    MemoryTree tree;
};

TEST_F(DataPathsTest, FreshUserGetsEveryFolderAndAStoredPhotoDirectoryOnce) {
    const DataPaths first = BuildDataPaths(tree);
    EXPECT_EQ(Fields(first),
              (std::vector<std::wstring>{
                  L"C:\\Windows\\System32\\Lumivane.scr", L"C:\\U\\Local\\Lumivane",
                  L"C:\\U\\Local\\Lumivane\\Slides", L"C:\\U\\Local\\Lumivane\\Updates",
                  L"C:\\U\\Documents", L"C:\\U\\Documents\\Lumivane",
                  L"C:\\U\\Documents\\Lumivane\\Lumivane Wallpaper",
                  L"C:\\U\\Documents\\Lumivane\\Lumivane ScreenSaver",
                  L"C:\\U\\Documents\\Lumivane\\Wallpaper Cache"}));
    for (size_t i = 1; i < 9; ++i) EXPECT_TRUE(tree.Has(Fields(first)[i])) << i;
    EXPECT_EQ(Settings::ReadString(L"ImportsDir"), L"C:\\U\\Documents");

    // A second start finds everything in place and changes nothing.
    const auto paths = tree.Paths();
    EXPECT_EQ(Fields(BuildDataPaths(tree)), Fields(first));
    EXPECT_EQ(tree.Paths(), paths);
    EXPECT_EQ(TestRegistry().writes.size(), 1u);
}

TEST_F(DataPathsTest, WithoutLocalApplicationDataTheTemporaryFolderServesAndNothingMoves) {
    tree.localAppData.reset();
    tree.Add(L"C:\\U\\Local\\LumivaneW", kDirectoryBit);
    EXPECT_EQ(BuildDataPaths(tree).slidesDir, L"C:\\T\\Lumivane\\Slides");
    EXPECT_TRUE(tree.Has(L"C:\\U\\Local\\LumivaneW"));
}

TEST_F(DataPathsTest, StoredPhotoDirectoryIsReadAfterTheMigrationRewroteIt) {
    tree.Add(L"C:\\U\\Local\\LumivaneW\\Lumivane\\Wallpaper Cache", kDirectoryBit);
    TestRegistry().PutString(L"ImportsDir", L"C:\\U\\Local\\LumivaneW");
    const DataPaths paths = BuildDataPaths(tree);
    EXPECT_EQ(paths.wallpaperCacheDir, L"C:\\U\\Local\\Lumivane\\Lumivane\\Wallpaper Cache");
    EXPECT_TRUE(tree.writeTests.empty());
    EXPECT_EQ(DataPathsLines().front(),
              L"data: moved C:\\U\\Local\\LumivaneW to C:\\U\\Local\\Lumivane");
}

TEST_F(DataPathsTest, StoredPhotoDirectoryOnAMissingDriveIsMadeAndUsed) {
    TestRegistry().PutString(L"ImportsDir", L"D:\\Pics");
    const DataPaths paths = BuildDataPaths(tree);
    EXPECT_EQ(paths.screenSaverDir, L"D:\\Pics\\Lumivane\\Lumivane ScreenSaver");
    EXPECT_TRUE(tree.Has(paths.screenSaverDir));
}

} // namespace
