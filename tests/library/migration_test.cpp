// Moving the older data folder "LumivaneW" to "Lumivane": every outcome of the two folders'
// states, on the in-memory tree.
#include <gtest/gtest.h>

#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/migration.h"

namespace {

const std::wstring kBase = L"C:\\U\\Local";
const std::wstring kOld = kBase + L"\\LumivaneW";
const std::wstring kNew = kBase + L"\\Lumivane";

// Paths below kBase, relative to it. A trailing backslash makes a folder, a trailing ">" a
// junction, anything else a file.
void Build(MemoryTree& tree, const std::vector<std::wstring>& items) {
    for (const std::wstring& item : items) {
        const std::wstring path = kBase + L"\\" + item;
        if (item.back() == L'\\') tree.AddFolder(path.substr(0, path.size() - 1));
        else if (item.back() == L'>') tree.AddJunction(path.substr(0, path.size() - 1));
        else tree.AddFile(path);
    }
}

std::vector<std::wstring> Below(const MemoryTree& tree) {
    std::vector<std::wstring> items;
    for (const std::wstring& path : tree.Paths())
        if (path.rfind(kBase + L"\\", 0) == 0) items.push_back(path.substr(kBase.size() + 1));
    return items;
}

struct Case {
    const char* what;
    std::vector<std::wstring> before;
    std::vector<std::wstring> stuck; // relative paths that can't be moved
    std::vector<std::wstring> after;
    bool usesNew;   // the result is the new folder (else the old one)
    bool rewritten; // the options now name the new folder
    const wchar_t* line; // with O for the old and N for the new path; null: not checked
};

const Case kCases[] = {
    {"no old folder", {L"Lumivane\\a"}, {}, {L"Lumivane", L"Lumivane\\a"}, true, false, L""},
    {"old only: one rename", {L"LumivaneW\\a", L"LumivaneW\\s\\b"}, {},
     {L"Lumivane", L"Lumivane\\a", L"Lumivane\\s", L"Lumivane\\s\\b"}, true, true,
     L"data: moved O to N"},
    {"rename fails", {L"LumivaneW\\a"}, {L"LumivaneW"}, {L"LumivaneW", L"LumivaneW\\a"}, false,
     false, L"data: couldn't move O (error 5), using it this time"},
    {"both, nothing in common", {L"LumivaneW\\a", L"LumivaneW\\s\\b", L"Lumivane\\c"}, {},
     {L"Lumivane", L"Lumivane\\a", L"Lumivane\\c", L"Lumivane\\s", L"Lumivane\\s\\b"}, true, true,
     L"data: moved O to N"},
    {"empty old beside new", {L"LumivaneW\\", L"Lumivane\\"}, {}, {L"Lumivane"}, true, true,
     L"data: moved O to N"},
    {"file on both sides", {L"LumivaneW\\a.txt", L"LumivaneW\\b", L"Lumivane\\a.txt"}, {},
     {L"Lumivane", L"Lumivane\\a.txt", L"Lumivane\\b", L"LumivaneW", L"LumivaneW\\a.txt"}, true,
     true, L"data: moved O into N (some files were on both sides and stay in the old folder)"},
    {"conflict deep inside a folder on both sides",
     {L"LumivaneW\\x\\y\\c", L"LumivaneW\\x\\y\\d", L"LumivaneW\\x\\e", L"Lumivane\\x\\y\\c"}, {},
     {L"Lumivane", L"Lumivane\\x", L"Lumivane\\x\\e", L"Lumivane\\x\\y", L"Lumivane\\x\\y\\c",
      L"Lumivane\\x\\y\\d", L"LumivaneW", L"LumivaneW\\x", L"LumivaneW\\x\\y",
      L"LumivaneW\\x\\y\\c"},
     true, true, nullptr},
    {"folder beside a file of its name", {L"LumivaneW\\x\\a", L"Lumivane\\x"}, {},
     {L"Lumivane", L"Lumivane\\x", L"LumivaneW", L"LumivaneW\\x", L"LumivaneW\\x\\a"}, true,
     true, nullptr},
    {"junction beside a folder of its name", {L"LumivaneW\\x>", L"Lumivane\\x\\"}, {},
     {L"Lumivane", L"Lumivane\\x", L"LumivaneW", L"LumivaneW\\x"}, true, true, nullptr},
    {"junction moved as a link", {L"LumivaneW\\x>", L"Lumivane\\"}, {},
     {L"Lumivane", L"Lumivane\\x"}, true, true, L"data: moved O to N"},
    {"item in use during a merge", {L"LumivaneW\\a", L"LumivaneW\\b", L"Lumivane\\"},
     {L"LumivaneW\\a"}, {L"Lumivane", L"Lumivane\\b", L"LumivaneW", L"LumivaneW\\a"}, true,
     true, nullptr},
};

std::wstring Expand(const wchar_t* line) {
    std::wstring text;
    for (const wchar_t* c = line; *c; ++c)
        text += *c == L'O' ? kOld : *c == L'N' ? kNew : std::wstring(1, *c);
    return text;
}

TEST(Migration, EachStateOfTheTwoFoldersEndsAsItShould) {
    for (const Case& c : kCases) {
        MemoryTree tree;
        Build(tree, c.before);
        for (const std::wstring& item : c.stuck) tree.stuck.insert(kBase + L"\\" + item);
        TestRegistry().Clear();
        TestRegistry().PutString(L"Dir", kOld + L"\\Slides");
        const std::wstring line = MigrationLine();

        EXPECT_EQ(MigrateDataFolder(tree, kBase), c.usesNew ? kNew : kOld) << c.what;
        EXPECT_EQ(Below(tree), c.after) << c.what;
        // The options are rewritten after every move, whole or partial, and only then.
        EXPECT_EQ(TestRegistry().String(L"Dir"), (c.rewritten ? kNew : kOld) + L"\\Slides")
            << c.what;
        // No line is composed when there is nothing to move.
        if (c.line) EXPECT_EQ(MigrationLine(), *c.line ? Expand(c.line) : line) << c.what;
    }
}

} // namespace
