// The choice of the photo directory among its four candidates, and its storing in ImportsDir.
#include <gtest/gtest.h>

#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/photo_directory.h"
#include "library/settings.h"

TEST(PhotoDirectory, CandidatesAreTriedInOrderAndTheChoiceIsStored) {
    const std::wstring dataDir = L"C:\\U\\Local\\Lumivane", documents = L"C:\\U\\Documents";
    const std::wstring fixed = L"C:\\LumivaneItems", beside = L"C:\\U\\Roaming\\LumivaneOneDrive";
    struct Case {
        std::wstring stored;  // ImportsDir before the start; empty counts as none
        std::string settings; // the companion's settings file; empty: none
        std::wstring documents, unwritable, chosen;
    };
    const Case cases[] = {
        // A stored value is returned untested.
        {L"E:\\Gone", R"({"data-dir":"D:\\P"})", documents, L"E:\\Gone", L"E:\\Gone"},
        // The companion's data-dir wins without its trailing slashes, unless it is the
        // companion's own folder; one beside it passes, even on a cloud path.
        {L"", R"({"data-dir":"D:\\P\\/\\"})", documents, L"", L"D:\\P"},
        {L"", R"({"data-dir":"c:\\u\\ROAMING\\lumivane"})", documents, L"", documents},
        {L"", R"({"data-dir":"C:\\U\\Roaming\\LumivaneOneDrive"})", documents, L"", beside},
        // A drive's data-dir keeps its backslash, and fails the write test here.
        {L"", R"({"data-dir":"D:\\"})", documents, L"D:\\", documents},
        // Documents under a cloud service's name, or none, fall to the fixed folder, and a
        // closed drive C to the data folder.
        {L"", R"({"data-dir":5})", L"C:\\Users\\Dropbox Fan\\Documents", L"", fixed},
        {L"", "", L"", L"", fixed},
        {L"", "", L"C:\\OneDrive\\Documents", fixed, dataDir},
    };
    for (const Case& c : cases) {
        MemoryTree tree;
        TestRegistry() = {};
        TestRegistry().PutString(L"ImportsDir", c.stored);
        if (!c.settings.empty()) tree.contents[L"C:\\U\\Roaming\\Lumivane\\Settings"] = c.settings;
        tree.documents = c.documents;
        tree.unwritable = {c.unwritable};
        EXPECT_EQ(LinkPhotoDirectory(tree, dataDir), c.chosen) << c.settings;
        EXPECT_EQ(Settings::ReadString(L"ImportsDir"), c.chosen);
        if (c.stored.empty())
            EXPECT_EQ(PhotoDirectoryLine(), L"linked: photo directory " + c.chosen);
    }
}
