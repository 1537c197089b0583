// The choice of the photo directory among its four candidates, and its storing in ImportsDir.
#include <gtest/gtest.h>

#include <optional>

#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/photo_directory.h"

namespace {

const std::wstring kDataDir = L"C:\\U\\Local\\Lumivane";
const std::wstring kSettingsFile = L"C:\\U\\Roaming\\Lumivane\\Settings";

struct Case {
    const char* what;
    std::optional<std::wstring> stored;   // ImportsDir before the start
    std::optional<std::string> dataDir;   // "data-dir" of the companion's file
    std::wstring documents;
    std::vector<std::wstring> unwritable;
    std::wstring chosen;
    std::vector<std::wstring> tested; // folders given to the write test, in order
};

const Case kCases[] = {
    {"stored value returned untested", L"E:\\Gone", "D:\\\\Photos", L"C:\\U\\Documents", {},
     L"E:\\Gone", {}},
    {"stored empty string counts as absent", L"", std::nullopt, L"C:\\U\\Documents", {},
     L"C:\\U\\Documents", {L"C:\\U\\Documents"}},
    {"usable data-dir wins", std::nullopt, "D:\\\\Photos", L"C:\\U\\Documents", {}, L"D:\\Photos",
     {L"D:\\Photos"}},
    {"data-dir that is the companion's folder", std::nullopt, "c:\\\\u\\\\ROAMING\\\\lumivane",
     L"C:\\U\\Documents", {}, L"C:\\U\\Documents", {L"C:\\U\\Documents"}},
    {"data-dir below the companion's folder", std::nullopt, "C:\\\\U\\\\Roaming\\\\Lumivane\\\\x",
     L"C:\\U\\Documents", {}, L"C:\\U\\Documents", {L"C:\\U\\Documents"}},
    {"data-dir in a sibling folder", std::nullopt, "C:\\\\U\\\\Roaming\\\\LumivaneOther",
     L"C:\\U\\Documents", {}, L"C:\\U\\Roaming\\LumivaneOther", {L"C:\\U\\Roaming\\LumivaneOther"}},
    {"data-dir on a cloud path passes", std::nullopt, "C:\\\\U\\\\OneDrive\\\\Pics",
     L"C:\\U\\Documents", {}, L"C:\\U\\OneDrive\\Pics", {L"C:\\U\\OneDrive\\Pics"}},
    {"data-dir fails the write test", std::nullopt, "D:\\\\Photos", L"C:\\U\\Documents",
     {L"D:\\Photos"}, L"C:\\U\\Documents", {L"D:\\Photos", L"C:\\U\\Documents"}},
    {"documents under a user named like a cloud", std::nullopt, std::nullopt,
     L"C:\\Users\\Dropbox Fan\\Documents", {}, L"C:\\LumivaneItems", {L"C:\\LumivaneItems"}},
    {"cloud documents and a closed drive C", std::nullopt, std::nullopt,
     L"C:\\Users\\A\\OneDrive\\Documents", {L"C:\\LumivaneItems"}, kDataDir,
     {L"C:\\LumivaneItems"}},
    {"no documents folder", std::nullopt, std::nullopt, L"", {}, L"C:\\LumivaneItems",
     {L"C:\\LumivaneItems"}},
};

TEST(PhotoDirectory, CandidatesAreTriedInOrderAndTheChoiceIsStored) {
    for (const Case& c : kCases) {
        MemoryTree tree;
        TestRegistry().Clear();
        if (c.stored) TestRegistry().PutString(L"ImportsDir", *c.stored);
        if (c.dataDir)
            tree.AddFile(kSettingsFile, 0, 0x20, "{\"data-dir\":\"" + *c.dataDir + "\"}");
        tree.documents = c.documents;
        tree.unwritable.insert(c.unwritable.begin(), c.unwritable.end());

        EXPECT_EQ(LinkPhotoDirectory(tree, kDataDir), c.chosen) << c.what;
        EXPECT_EQ(tree.writeTests, c.tested) << c.what;
        EXPECT_EQ(TestRegistry().String(L"ImportsDir"), c.chosen) << c.what;
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
        {L"C:\\A", L"C:\\A\\B", false},     {L"C:\\A", L"", false},
    };
    for (const Case& c : cases) EXPECT_EQ(IsInsideFolder(c.path, c.folder), c.inside) << c.path;
    EXPECT_TRUE(IsCloudFolder(L"D:\\My GOOGLE DRIVE\\x"));
    EXPECT_TRUE(IsCloudFolder(L"C:\\Users\\iCloudy"));
    EXPECT_FALSE(IsCloudFolder(L"C:\\Users\\A\\Documents"));
}

} // namespace
