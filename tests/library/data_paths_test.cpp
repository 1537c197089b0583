// The order of building the data paths: the stored photo directory is read after the migration
// has rewritten it, and its missing folders are made; without a local application data folder
// the temporary one serves. (A user's first start is an end-to-end scenario.)
#include <gtest/gtest.h>

#include "library/data_paths.h"
#include "library/memory_registry.h"
#include "library/memory_tree.h"

TEST(DataPaths, StoredPhotoDirectoryFollowsTheMigrationAndIsMade) {
    TestRegistry() = {};
    MemoryTree tree;
    tree.Add(L"C:\\U\\Local\\LumivaneW\\log.txt");
    TestRegistry().PutString(L"ImportsDir", L"C:\\U\\Local\\LumivaneW\\Pics");
    const DataPaths paths = BuildDataPaths(tree);
    EXPECT_EQ(paths.screenSaverDir,
              L"C:\\U\\Local\\Lumivane\\Pics\\Lumivane\\Lumivane ScreenSaver");
    EXPECT_EQ(tree.Attributes(paths.screenSaverDir), kDirectoryBit);
    EXPECT_EQ(DataPathsLines().front(),
              L"data: moved C:\\U\\Local\\LumivaneW to C:\\U\\Local\\Lumivane");

    tree.localAppData.reset();
    tree.Add(L"C:\\T\\LumivaneW\\log.txt"); // no older folder is looked for there
    EXPECT_EQ(BuildDataPaths(tree).slidesDir, L"C:\\T\\Lumivane\\Slides");
    EXPECT_TRUE(tree.nodes.count(L"C:\\T\\LumivaneW\\log.txt"));
}
