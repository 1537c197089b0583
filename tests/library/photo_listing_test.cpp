// The photo listing: .jpg files of one folder, newest first.
#include <gtest/gtest.h>

#include "library/memory_tree.h"
#include "library/photo_listing.h"

namespace {

TEST(PhotoListing, ListsJpgFilesNewestFirstWithoutFoldersOrOtherTypes) {
    MemoryTree tree;
    tree.AddFile(L"C:\\P\\b.jpg", 100);
    tree.AddFile(L"C:\\P\\a.jpg", 0x1'0000'0000); // only the high 32 bits differ
    tree.AddFile(L"C:\\P\\x.JPG", 50, 0x22);      // hidden
    tree.AddFile(L"C:\\P\\photo.png", 900);
    tree.AddFile(L"C:\\P\\album.jpg\\inner.jpg", 900);
    tree.AddFile(L"C:\\Other\\c.jpg", 900);
    EXPECT_EQ(ListPhotosIn(tree, L"C:\\P"),
              (std::vector<std::wstring>{L"C:\\P\\a.jpg", L"C:\\P\\b.jpg", L"C:\\P\\x.JPG"}));
    EXPECT_TRUE(ListPhotosIn(tree, L"C:\\Missing").empty());
}

} // namespace
