// Moving the older data folder "LumivaneW" to "Lumivane": the outcomes of the two folders'
// states. No file is ever overwritten, and nothing is moved into a link.
#include <gtest/gtest.h>

#include <set>

#include "library/memory_tree.h"
#include "library/migration.h"

namespace {

const wchar_t kMoved[] = L"data: moved C:\\LumivaneW to C:\\Lumivane";
const wchar_t kMerged[] = L"data: moved C:\\LumivaneW into C:\\Lumivane (some files were on both "
                          L"sides and stay in the old folder)";
const wchar_t kFailed[] = L"data: couldn't move C:\\LumivaneW (error 5), using it this time";

// Paths on drive C: before, where a trailing backslash makes a folder and a trailing ">" a
// junction (anything else is a file), and after; the line composed.
const std::tuple<std::vector<std::wstring>, std::set<std::wstring>, const wchar_t*> kCases[] = {
    {{L"LumivaneW\\a", L"LumivaneW\\s\\b"},
     {L"Lumivane", L"Lumivane\\a", L"Lumivane\\s", L"Lumivane\\s\\b"}, kMoved},
    {{L"LumivaneW\\a"}, {L"LumivaneW", L"LumivaneW\\a"}, kFailed}, // in use
    // A conflict deep inside a folder on both sides keeps every folder above it.
    {{L"LumivaneW\\x\\y\\c", L"LumivaneW\\x\\y\\d", L"LumivaneW\\x\\e", L"Lumivane\\x\\y\\c"},
     {L"Lumivane", L"Lumivane\\x", L"Lumivane\\x\\e", L"Lumivane\\x\\y", L"Lumivane\\x\\y\\c",
      L"Lumivane\\x\\y\\d", L"LumivaneW", L"LumivaneW\\x", L"LumivaneW\\x\\y",
      L"LumivaneW\\x\\y\\c"},
     kMerged},
    {{L"LumivaneW\\x\\a", L"Lumivane\\x"},
     {L"Lumivane", L"Lumivane\\x", L"LumivaneW", L"LumivaneW\\x", L"LumivaneW\\x\\a"}, kMerged},
    {{L"LumivaneW\\x>", L"Lumivane\\x\\"},
     {L"Lumivane", L"Lumivane\\x", L"LumivaneW", L"LumivaneW\\x"}, kMerged},
    // A junction moves as a link, a folder in one piece.
    {{L"LumivaneW\\x>", L"LumivaneW\\s\\b", L"Lumivane\\"},
     {L"Lumivane", L"Lumivane\\s", L"Lumivane\\s\\b", L"Lumivane\\x"}, kMoved},
};

TEST(Migration, EachStateOfTheTwoFoldersEndsAsItShould) {
    for (const auto& [before, after, line] : kCases) {
        MemoryTree tree;
        for (std::wstring item : before) {
            const wchar_t last = item.back();
            if (last == L'\\' || last == L'>') item.pop_back();
            tree.Add(L"C:\\" + item, last == L'\\'  ? kDirectoryBit
                                     : last == L'>' ? kDirectoryBit | kReparsePointBit
                                                    : 0x20);
        }
        if (line == kFailed) tree.stuck.insert(L"C:\\LumivaneW");
        EXPECT_EQ(MigrateDataFolder(tree, L"C:"), line == kFailed ? L"C:\\LumivaneW" : L"C:\\Lumivane");
        std::set<std::wstring> names;
        for (const auto& node : tree.nodes) names.insert(node.first.substr(3));
        EXPECT_EQ(names, after) << line;
        EXPECT_EQ(MigrationLine(), line);
    }
}

} // namespace
