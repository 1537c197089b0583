// Moving the older data folder "LumivaneW" to "Lumivane": the outcomes of the two folders'
// states. No file is ever overwritten, and nothing is moved into a link.
#include <gtest/gtest.h>

#include <set>

#include "library/memory_tree.h"
#include "library/migration.h"

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
