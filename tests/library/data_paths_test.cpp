// The order of building the data paths, and the folders that it makes.
#include <gtest/gtest.h>

#include "library/data_paths.h"
#include "library/memory_registry.h"
#include "library/memory_tree.h"

namespace {

TEST(DataPaths, FreshUserGetsEveryFolderAndASecondStartChangesNothing) {
    TestRegistry() = {};
    MemoryTree tree;
    const DataPaths first = BuildDataPaths(tree);
    for (const std::wstring& folder : {first.slidesDir, first.updatesDir, first.wallpaperDir,
                                       first.screenSaverDir, first.wallpaperCacheDir})
        EXPECT_EQ(tree.Attributes(folder), kDirectoryBit) << folder;
    const auto nodes = tree.nodes;
    EXPECT_EQ(BuildDataPaths(tree).wallpaperCacheDir, first.wallpaperCacheDir);
    EXPECT_EQ(tree.nodes, nodes);
    EXPECT_EQ(TestRegistry().writes.size(), 1u);
}

// The stored photo directory is read after the migration has rewritten it, and its missing
// folders are made; without a local application data folder the temporary one serves.
TEST(DataPaths, StoredPhotoDirectoryFollowsTheMigrationAndIsMade) {
    TestRegistry() = {};
    MemoryTree tree;
    tree.Add(L"C:\\U\\Local\\LumivaneW\\log.txt");
    TestRegistry().PutString(L"ImportsDir", L"C:\\U\\Local\\LumivaneW\\Pics");
    const DataPaths paths = BuildDataPaths(tree);
    EXPECT_EQ(paths.screenSaverDir, L"C:\\U\\Local\\Lumivane\\Pics\\Lumivane\\Lumivane ScreenSaver");
    EXPECT_EQ(tree.Attributes(paths.screenSaverDir), kDirectoryBit);
    EXPECT_TRUE(tree.writeTests.empty());
    EXPECT_EQ(DataPathsLines().front(),
              L"data: moved C:\\U\\Local\\LumivaneW to C:\\U\\Local\\Lumivane");

    tree.localAppData.reset();
    tree.Add(L"C:\\T\\LumivaneW\\log.txt"); // no older folder is looked for there
    EXPECT_EQ(BuildDataPaths(tree).slidesDir, L"C:\\T\\Lumivane\\Slides");
    EXPECT_TRUE(tree.nodes.count(L"C:\\T\\LumivaneW\\log.txt"));
}

} // namespace
