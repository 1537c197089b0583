// The choice of the photo directory among its four candidates, and its storing in ImportsDir.
#include <gtest/gtest.h>

#include <optional>

#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/photo_directory.h"
#include "library/settings.h"

namespace {

const std::wstring kDataDir = L"C:\\U\\Local\\Lumivane";
const std::wstring kDocuments = L"C:\\U\\Documents";
const std::wstring kFixed = L"C:\\LumivaneItems";

struct Case {
    const char* what;
    std::optional<std::wstring> stored;  // ImportsDir before the start
    std::optional<std::string> dataDir;  // "data-dir" of the companion's file
    std::wstring documents;
    std::wstring unwritable;
    std::wstring chosen;
    std::vector<std::wstring> tested; // folders given to the write test, in order
};

const Case kCases[] = {
    {"stored value returned untested", L"E:\\Gone", "D:\\\\P", kDocuments, L"", L"E:\\Gone", {}},
    {"stored empty string counts as absent", L"", {}, kDocuments, L"", kDocuments, {kDocuments}},
    {"usable data-dir wins", {}, "D:\\\\P", kDocuments, L"", L"D:\\P", {L"D:\\P"}},
    {"data-dir that is the companion's folder", {}, "c:\\\\u\\\\ROAMING\\\\lumivane", kDocuments,
     L"", kDocuments, {kDocuments}},
    {"data-dir on a cloud path passes", {}, "C:\\\\OneDrive\\\\P", kDocuments, L"",
     L"C:\\OneDrive\\P", {L"C:\\OneDrive\\P"}},
    {"data-dir fails the write test", {}, "D:\\\\P", kDocuments, L"D:\\P", kDocuments,
     {L"D:\\P", kDocuments}},
    {"documents under a user named like a cloud", {}, {}, L"C:\\Users\\Dropbox Fan\\Documents",
     L"", kFixed, {kFixed}},
    {"no documents folder", {}, {}, L"", L"", kFixed, {kFixed}},
    {"cloud documents and a closed drive C", {}, {}, L"C:\\OneDrive\\Documents", kFixed, kDataDir,
     {kFixed}},
};

TEST(PhotoDirectory, CandidatesAreTriedInOrderAndTheChoiceIsStored) {
    for (const Case& c : kCases) {
        MemoryTree tree;
        TestRegistry() = {};
        if (c.stored) TestRegistry().PutString(L"ImportsDir", *c.stored);
        if (c.dataDir)
            tree.Add(L"C:\\U\\Roaming\\Lumivane\\Settings", 0x20, 0,
                     "{\"data-dir\":\"" + *c.dataDir + "\"}");
        tree.documents = c.documents;
        tree.unwritable = {c.unwritable};

        EXPECT_EQ(LinkPhotoDirectory(tree, kDataDir), c.chosen) << c.what;
        EXPECT_EQ(tree.writeTests, c.tested) << c.what;
        EXPECT_EQ(Settings::ReadString(L"ImportsDir"), c.chosen) << c.what;
        const bool chose = !c.stored || c.stored->empty();
        EXPECT_EQ(TestRegistry().writes.size(), chose ? 1u : 0u) << c.what;
        if (chose) EXPECT_EQ(PhotoDirectoryLine(), L"linked: photo directory " + c.chosen);
    }
}

TEST(PhotoDirectory, InsideMeansTheFolderItselfOrBelowABackslash) {
    struct Case {
        const wchar_t* path;
        const wchar_t* folder;
        bool inside;
    };
    const Case cases[] = {
        {L"C:\\A\\B", L"c:\\a\\b", true},   {L"C:\\A\\B\\c", L"C:\\A\\B", true},
        {L"C:\\A\\B/c", L"C:\\A\\B", false}, {L"C:\\A\\BC", L"C:\\A\\B", false},
        {L"C:\\A", L"C:\\A\\B", false},     {L"C:\\A", L"", false}, {L"\\x", L"", false},
    };
    for (const Case& c : cases) EXPECT_EQ(IsInsideFolder(c.path, c.folder), c.inside) << c.path;
    EXPECT_TRUE(IsCloudFolder(L"D:\\My GOOGLE DRIVE\\x"));
    EXPECT_TRUE(IsCloudFolder(L"C:\\Users\\iCloudy"));
    EXPECT_FALSE(IsCloudFolder(L"C:\\Users\\A\\Documents"));
}

} // namespace
