// The photo listing: .jpg files of one folder, newest first.
#include <gtest/gtest.h>

#include "library/memory_tree.h"
#include "library/photo_listing.h"

TEST(PhotoListing, ListsJpgFilesNewestFirstWithoutFoldersOrOtherTypes) {
    MemoryTree tree;
    tree.Add(L"C:\\P\\b.jpg", 0x20, 100);
    tree.Add(L"C:\\P\\a.jpg", 0x20, 0x1'0000'0000); // only the high 32 bits differ
    tree.Add(L"C:\\P\\x.JPG", 0x22, 50);            // hidden
    tree.Add(L"C:\\P\\photo.png", 0x20, 900);
    tree.Add(L"C:\\P\\album.jpg\\inner.jpg", 0x20, 900);
    tree.Add(L"C:\\Other\\c.jpg", 0x20, 900);
    EXPECT_EQ(ListPhotosIn(tree, L"C:\\P"),
              (std::vector<std::wstring>{L"C:\\P\\a.jpg", L"C:\\P\\b.jpg", L"C:\\P\\x.JPG"}));
    EXPECT_TRUE(ListPhotosIn(tree, L"C:\\Missing").empty());
}
