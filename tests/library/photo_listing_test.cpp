// The photo listing: the files of one folder's search, newest first, without folders.
#include <gtest/gtest.h>

#include "library/memory_tree.h"
#include "library/photo_listing.h"

TEST(PhotoListing, ListsFilesNewestFirstWithoutFolders) {
    MemoryTree tree;
    tree.Add(L"C:\\P\\a.jpg", 0x20, 100);
    tree.Add(L"C:\\P\\b.jpg", 0x20, 0x1'0000'0000); // newer only by its high 32 bits
    tree.Add(L"C:\\P\\album.jpg\\inner.jpg", 0x20, 900);
    EXPECT_EQ(ListPhotosIn(tree, L"C:\\P"),
              (std::vector<std::wstring>{L"C:\\P\\b.jpg", L"C:\\P\\a.jpg"}));
    EXPECT_TRUE(ListPhotosIn(tree, L"C:\\Missing").empty());
}
