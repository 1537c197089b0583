// Moving the older data folder "LumivaneW" to "Lumivane": every outcome of the two folders'
// states, on the in-memory tree.
#include <gtest/gtest.h>

#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/migration.h"
#include "library/settings.h"

namespace {

const std::wstring kBase = L"C:\\U\\Local\\";
const std::wstring kOld = kBase + L"LumivaneW", kNew = kBase + L"Lumivane";

struct Case {
    const char* what;
    // Paths below kBase. Before: a trailing backslash makes a folder, a trailing ">" a
    // junction, a leading "!" an item in use; anything else is a file.
    std::vector<std::wstring> before, after;
    const wchar_t* line; // O for the old and N for the new path; empty: no line composed
};

const wchar_t kMoved[] = L"data: moved O to N";
const wchar_t kMerged[] =
    L"data: moved O into N (some files were on both sides and stay in the old folder)";
const wchar_t kFailed[] = L"data: couldn't move O (error 5), using it this time";

const Case kCases[] = {
    {"no old folder", {L"Lumivane\\a"}, {L"Lumivane", L"Lumivane\\a"}, L""},
    {"old only: one rename", {L"LumivaneW\\a", L"LumivaneW\\s\\b"},
     {L"Lumivane", L"Lumivane\\a", L"Lumivane\\s", L"Lumivane\\s\\b"}, kMoved},
    {"rename fails", {L"!LumivaneW\\", L"LumivaneW\\a"}, {L"LumivaneW", L"LumivaneW\\a"}, kFailed},
    {"both, nothing in common", {L"LumivaneW\\a", L"LumivaneW\\s\\b", L"Lumivane\\c"},
     {L"Lumivane", L"Lumivane\\a", L"Lumivane\\c", L"Lumivane\\s", L"Lumivane\\s\\b"}, kMoved},
    {"file on both sides", {L"LumivaneW\\a.txt", L"LumivaneW\\b", L"Lumivane\\a.txt"},
     {L"Lumivane", L"Lumivane\\a.txt", L"Lumivane\\b", L"LumivaneW", L"LumivaneW\\a.txt"},
     kMerged},
    {"conflict deep inside a folder on both sides",
     {L"LumivaneW\\x\\y\\c", L"LumivaneW\\x\\y\\d", L"LumivaneW\\x\\e", L"Lumivane\\x\\y\\c"},
     {L"Lumivane", L"Lumivane\\x", L"Lumivane\\x\\e", L"Lumivane\\x\\y", L"Lumivane\\x\\y\\c",
      L"Lumivane\\x\\y\\d", L"LumivaneW", L"LumivaneW\\x", L"LumivaneW\\x\\y",
      L"LumivaneW\\x\\y\\c"},
     kMerged},
    {"folder beside a file of its name", {L"LumivaneW\\x\\a", L"Lumivane\\x"},
     {L"Lumivane", L"Lumivane\\x", L"LumivaneW", L"LumivaneW\\x", L"LumivaneW\\x\\a"}, kMerged},
    {"junction beside a folder of its name", {L"LumivaneW\\x>", L"Lumivane\\x\\"},
     {L"Lumivane", L"Lumivane\\x", L"LumivaneW", L"LumivaneW\\x"}, kMerged},
    {"junction moved as a link", {L"LumivaneW\\x>", L"Lumivane\\"},
     {L"Lumivane", L"Lumivane\\x"}, kMoved},
    {"item in use during a merge", {L"!LumivaneW\\a", L"LumivaneW\\b", L"Lumivane\\"},
     {L"Lumivane", L"Lumivane\\b", L"LumivaneW", L"LumivaneW\\a"}, kMerged},
};

TEST(Migration, EachStateOfTheTwoFoldersEndsAsItShould) {
    for (const Case& c : kCases) {
        MemoryTree tree;
        for (std::wstring item : c.before) {
            const bool inUse = item[0] == L'!';
            if (inUse) item.erase(0, 1);
            uint32_t kind = 0x20;
            if (item.back() == L'\\') kind = kDirectoryBit;
            if (item.back() == L'>') kind = kDirectoryBit | kReparsePointBit;
            if (kind != 0x20) item.pop_back();
            tree.Add(kBase + item, kind);
            if (inUse) tree.stuck.insert(kBase + item);
        }
        TestRegistry() = {};
        TestRegistry().PutString(L"Dir", kOld + L"\\Slides");
        std::wstring line = *c.line ? L"" : MigrationLine();
        for (const wchar_t* p = c.line; *p; ++p)
            line += *p == L'O' ? kOld : *p == L'N' ? kNew : std::wstring(1, *p);

        EXPECT_EQ(MigrateDataFolder(tree, kBase.substr(0, kBase.size() - 1)),
                  c.line == kFailed ? kOld : kNew)
            << c.what;
        std::vector<std::wstring> below;
        for (const std::wstring& path : tree.Paths())
            if (path.rfind(kBase, 0) == 0) below.push_back(path.substr(kBase.size()));
        EXPECT_EQ(below, c.after) << c.what;
        // The options follow every move, whole or partial, and only a move.
        const bool moved = c.line == kMoved || c.line == kMerged;
        EXPECT_EQ(Settings::ReadString(L"Dir"), (moved ? kNew : kOld) + L"\\Slides") << c.what;
        EXPECT_EQ(MigrationLine(), line) << c.what;
    }
}

} // namespace
