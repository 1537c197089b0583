// The choice of the photo directory among its four candidates, and its storing in ImportsDir.
#include <gtest/gtest.h>

#include <optional>

#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/photo_directory.h"
#include "library/settings.h"

TEST(PhotoDirectory, CandidatesAreTriedInOrderAndTheChoiceIsStored) {
    const std::wstring dataDir = L"C:\\U\\Local\\Lumivane", documents = L"C:\\U\\Documents";
    const std::wstring fixed = L"C:\\LumivaneItems", beside = L"C:\\U\\Roaming\\LumivaneOneDrive";
    struct Case {
        const char* what;
        std::optional<std::wstring> stored; // ImportsDir before the start
        std::string settings;               // the companion's settings file; empty: none
        std::wstring documents, unwritable, chosen;
        std::vector<std::wstring> tested; // folders given to the write test, in order
    };
    const Case cases[] = {
        {"stored value returned untested", L"E:\\Gone", R"({"data-dir":"D:\\P"})", documents, L"",
         L"E:\\Gone", {}},
        {"stored empty string counts as absent", L"", "", documents, L"", documents, {documents}},
        {"data-dir wins without its trailing slashes", {}, R"({"data-dir":"D:\\P\\/\\"})",
         documents, L"", L"D:\\P", {L"D:\\P"}},
        {"data-dir that is the companion's folder", {},
         R"({"data-dir":"c:\\u\\ROAMING\\lumivane"})", documents, L"", documents, {documents}},
        {"data-dir beside the companion's folder, on a cloud path", {},
         R"({"data-dir":"C:\\U\\Roaming\\LumivaneOneDrive"})", documents, L"", beside, {beside}},
        {"a drive's data-dir keeps its backslash and fails the write test", {},
         R"({"data-dir":"D:\\"})", documents, L"D:\\", documents, {L"D:\\", documents}},
        {"documents under a user named like a cloud", {}, R"({"data-dir":5})",
         L"C:\\Users\\Dropbox Fan\\Documents", L"", fixed, {fixed}},
        {"no documents folder", {}, "", L"", L"", fixed, {fixed}},
        {"cloud documents and a closed drive C", {}, "", L"C:\\OneDrive\\Documents", fixed,
         dataDir, {fixed}},
    };
    for (const Case& c : cases) {
        MemoryTree tree;
        TestRegistry() = {};
        if (c.stored) TestRegistry().PutString(L"ImportsDir", *c.stored);
        if (!c.settings.empty()) tree.contents[L"C:\\U\\Roaming\\Lumivane\\Settings"] = c.settings;
        tree.documents = c.documents;
        tree.unwritable = {c.unwritable};

        EXPECT_EQ(LinkPhotoDirectory(tree, dataDir), c.chosen) << c.what;
        EXPECT_EQ(tree.writeTests, c.tested) << c.what;
        EXPECT_EQ(Settings::ReadString(L"ImportsDir"), c.chosen) << c.what;
        const bool chose = !c.stored || c.stored->empty();
        EXPECT_EQ(TestRegistry().writes.size(), chose ? 1u : 0u) << c.what;
        if (chose) EXPECT_EQ(PhotoDirectoryLine(), L"linked: photo directory " + c.chosen);
    }
}
