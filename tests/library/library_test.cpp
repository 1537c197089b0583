// The library's logic over the host's in-memory options key and file tree, from the options key
// up to the data paths.
#include <gtest/gtest.h>

#include <set>

#include "library/data_paths.h"
#include "library/json_reader.h"
#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/migration.h"
#include "library/photo_directory.h"
#include "library/settings.h"

// The options key: the value forms, and the rewrite of paths after the data folder has moved.
// (That only a write makes the key is a test of the real key.)
TEST(Settings, EachValueFormReadsByItsRuleAndPathsAreRewrittenByWholeFolderNames) {
    const auto Utf16 = MemoryRegistry::Utf16;
    TestRegistry() = {};
    Settings::WriteString(L"Value", L"D:\\\u20AC"); // both bytes of each character, and a zero
    EXPECT_EQ(TestRegistry().values.at(L"Value").second, Utf16(std::wstring(L"D:\\\u20AC", 5)));

    // The type, the bytes, ReadDword with the fallback 1, ReadString.
    const std::tuple<uint32_t, std::vector<uint8_t>, int32_t, std::wstring> cases[] = {
        {4, {0x01, 0x02, 0x03, 0x84}, -2080177663, L""}, // little-endian, signed
        {1, Utf16({L'0', 0}), 1, L"0"},                  // a string under a number
        {11, std::vector<uint8_t>(8), 1, L""},           // a qword doesn't fit 4 bytes
        {2, Utf16({L'x', 0}), 1, L""},                   // an expandable string isn't a string
        {1, Utf16(std::wstring(L"a\u20AC\0cd", 6)), 1, L"a\u20AC"},
    };
    for (const auto& [type, bytes, number, text] : cases) {
        TestRegistry().Put(L"Value", type, bytes);
        EXPECT_EQ(Settings::ReadDword(L"Value", 1), number) << type;
        EXPECT_EQ(Settings::ReadString(L"Value"), text) << type;
    }

    // The rewrite of paths replaces whole folder names and writes only what changed.
    TestRegistry() = {};
    const std::wstring old = L"C:\\U\\Local\\LumivaneW";
    TestRegistry().PutString(L"A", L"x:" + old + L"\nc:\\u\\LOCAL\\lumivanew|" + old + L"\\S|" +
                                       old + L"2");
    // Left alone: a name too long for the walk, which must go on past it, a type other than
    // REG_SZ, and a longer folder name.
    TestRegistry().PutString(L"B" + std::wstring(300, L'n'), old);
    TestRegistry().Put(L"C", 2, Utf16(old));
    TestRegistry().PutString(L"D", old);
    Settings::ReplacePathInValues(old, L"C:\\New");
    EXPECT_EQ(Settings::ReadString(L"A"), L"x:C:\\New\nC:\\New|C:\\New\\S|" + old + L"2");
    EXPECT_EQ(Settings::ReadString(L"D"), L"C:\\New");
    EXPECT_EQ(TestRegistry().writes, (std::vector<std::wstring>{L"A", L"D"}));
}

// The reader of the companion's settings file. What it makes of "data-dir" is in the photo
// directory's table.
TEST(JsonReader, DocumentsParseByTheRulesAndStringsKeepTheirEscapes) {
    // White space wherever it may stand, only white space after the root, and containers at most
    // 64 levels below it.
    JsonValue value;
    EXPECT_TRUE(JsonValue::Parse(
        " { \"a\" : [ 1 , { } , [ ] ] , \"b\" : [true,false,null] } \t\r\n", value));
    EXPECT_TRUE(JsonValue::Parse(std::string(65, '[') + std::string(65, ']'), value));
    EXPECT_FALSE(JsonValue::Parse(std::string(66, '[') + std::string(66, ']'), value));
    for (const char* text :
         {"{} x", "\xEF\xBB\xBF{}", "{\"a\":1,}", "[1,]", "{\"a\" 1}", "{\"a\":1 \"b\":2}",
          "{\"a\":1", "{\"a\":\"x", "[1", "truex", "-", "\"\\q\"", "\"\\u12\"", "\"abc", ""})
        EXPECT_FALSE(JsonValue::Parse(text, value)) << text;
    ASSERT_TRUE(JsonValue::Parse(R"({"k":"A","n":-1.5e2,"k":"B"})", value));
    EXPECT_EQ(value.GetString("k", "-"), "A"); // the first of equal keys
    EXPECT_EQ(value.Find("n").number, -150);

    // Lone halves of a pair, pairs up to the highest code point, each length of UTF-8, a second
    // escape after a high half used up all the same, the short escapes, and control characters
    // and invalid UTF-8 as they are.
    ASSERT_TRUE(
        JsonValue::Parse(R"("\ud83dx\udc00\ud800\udc00\udbff\udfff\u007f\u00e9\u0800\uD83D\u0041)"
                         R"(\u0000\"\\\/\b\f\n\r\t)"
                         "\x01\xFF\"",
                         value));
    EXPECT_EQ(value.text, "\xEF\xBF\xBDx\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\x7F\xC3\xA9"
                          "\xE0\xA0\x80\xEF\xBF\xBD" +
                              std::string(1, '\0') + "\"\\/\b\f\n\r\t\x01\xFF");
}

// Moving the older data folder "LumivaneW" to "Lumivane": the outcomes of the two folders'
// states. No file is ever overwritten, and nothing is moved into a link.
TEST(Migration, EachStateOfTheTwoFoldersEndsAsItShould) {
    const std::wstring moved = L"data: moved C:\\LumivaneW to C:\\Lumivane";
    const std::wstring merged = L"data: moved C:\\LumivaneW into C:\\Lumivane (some files were on "
                                L"both sides and stay in the old folder)";
    const std::wstring failed = L"data: couldn't move C:\\LumivaneW (error 5), using it this time";
    // The line composed; paths on drive C before, where a trailing backslash makes a folder and a
    // trailing ">" a junction (anything else is a file); the files and junctions after.
    const std::tuple<std::wstring, std::vector<std::wstring>, std::set<std::wstring>> cases[] = {
        {moved, {L"LumivaneW\\a", L"LumivaneW\\s\\b"}, {L"Lumivane\\a", L"Lumivane\\s\\b"}},
        {failed, {L"LumivaneW\\a"}, {L"LumivaneW\\a"}}, // in use
        // A conflict deep inside a folder on both sides.
        {merged,
         {L"LumivaneW\\x\\y\\c", L"LumivaneW\\x\\y\\d", L"LumivaneW\\x\\e", L"Lumivane\\x\\y\\c"},
         {L"Lumivane\\x\\e", L"Lumivane\\x\\y\\c", L"Lumivane\\x\\y\\d", L"LumivaneW\\x\\y\\c"}},
        {merged, {L"LumivaneW\\x\\a", L"Lumivane\\x"}, {L"Lumivane\\x", L"LumivaneW\\x\\a"}},
        {merged, {L"LumivaneW\\x>", L"Lumivane\\x\\"}, {L"LumivaneW\\x"}},
        // A junction moves as a link, a folder in one piece, and the emptied folder goes.
        {moved,
         {L"LumivaneW\\x>", L"LumivaneW\\s\\b", L"Lumivane\\"},
         {L"Lumivane\\s\\b", L"Lumivane\\x"}}};
    for (const auto& [line, before, after] : cases) {
        MemoryTree tree;
        for (std::wstring item : before) {
            const wchar_t last = item.back();
            if (last == L'\\' || last == L'>') item.pop_back();
            tree.Add(L"C:\\" + item, last == L'\\'  ? kDirectoryBit
                                     : last == L'>' ? kDirectoryBit | kReparsePointBit
                                                    : 0x20);
        }
        if (line == failed) tree.stuck.insert(L"C:\\LumivaneW");
        EXPECT_EQ(MigrateDataFolder(tree, L"C:"),
                  line == failed ? L"C:\\LumivaneW" : L"C:\\Lumivane");
        std::set<std::wstring> names;
        for (const auto& [path, attributes] : tree.nodes)
            if (attributes != kDirectoryBit) names.insert(path.substr(3));
        EXPECT_EQ(names, after) << line;
        EXPECT_EQ(MigrationLine(), line);
    }
}

// The choice of the photo directory among its four candidates, and its storing in ImportsDir.
TEST(PhotoDirectory, CandidatesAreTriedInOrderAndTheChoiceIsStored) {
    const std::wstring dataDir = L"C:\\U\\Local\\Lumivane", documents = L"C:\\U\\Documents";
    const std::wstring fixed = L"C:\\LumivaneItems", beside = L"C:\\U\\Roaming\\LumivaneOneDrive";
    // ImportsDir before the start (empty counts as none), the companion's settings file (empty:
    // none), the documents folder, the folder whose write test fails, and the choice.
    // clang-format off
    const std::tuple<std::wstring, std::string, std::wstring, std::wstring, std::wstring>
        cases[] = {
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
    // clang-format on
    for (const auto& [stored, settings, inDocuments, unwritable, chosen] : cases) {
        MemoryTree tree;
        TestRegistry() = {};
        TestRegistry().PutString(L"ImportsDir", stored);
        if (!settings.empty()) tree.contents[L"C:\\U\\Roaming\\Lumivane\\Settings"] = settings;
        tree.documents = inDocuments;
        tree.unwritable = {unwritable};
        EXPECT_EQ(LinkPhotoDirectory(tree, dataDir), chosen) << settings;
        EXPECT_EQ(Settings::ReadString(L"ImportsDir"), chosen);
        // The fixed folder, once tried, was made the user's own before its write test.
        const bool triedFixed = chosen == fixed || chosen == dataDir;
        EXPECT_EQ(tree.ownFolders, triedFixed ? std::set{fixed} : std::set<std::wstring>{});
        if (stored.empty()) EXPECT_EQ(PhotoDirectoryLine(), L"linked: photo directory " + chosen);
    }
    // A fixed folder that an earlier start made is tested and used as it is.
    MemoryTree tree;
    TestRegistry() = {};
    tree.documents.clear();
    tree.Add(fixed, kDirectoryBit);
    EXPECT_EQ(LinkPhotoDirectory(tree, dataDir), fixed);
    EXPECT_TRUE(tree.ownFolders.empty());
}

// The order of building the data paths: the stored photo directory is read after the migration
// has rewritten it, and its missing folders are made; without a local application data folder
// the temporary one serves. (A user's first start is an end-to-end scenario.)
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
