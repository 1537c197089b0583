#include "library/migration.h"

#include <vector>

#include "library/companion.h"
#include "library/settings.h"

namespace {

std::wstring& LastLine() {
    static std::wstring line;
    return line;
}

} // namespace

std::wstring MigrateDataFolder(FileTree& tree, const std::wstring& base) {
    const std::wstring oldPath = base + L"\\" + kOldDataFolderName;
    const std::wstring newPath = base + L"\\" + kDataFolderName;
    if (!Exists(tree, oldPath)) return newPath;
    const bool moved =
        Exists(tree, newPath) ? MergeFolder(tree, oldPath, newPath) : tree.Move(oldPath, newPath);
    const uint32_t error = tree.LastError();
    if (!moved && !Exists(tree, newPath)) {
        // Nothing lost: this run works in the old folder, and the next start tries again.
        LastLine() = L"data: couldn't move " + oldPath + L" (error " + std::to_wstring(error) +
                     L"), using it this time";
        return oldPath;
    }
    // Whatever could be moved now lies at the new place, which is where dataDir will point.
    Settings::ReplacePathInValues(oldPath, newPath);
    LastLine() = moved ? L"data: moved " + oldPath + L" to " + newPath
                       : L"data: moved " + oldPath + L" into " + newPath +
                             L" (some files were on both sides and stay in the old folder)";
    return newPath;
}

bool MergeFolder(FileTree& tree, const std::wstring& from, const std::wstring& to) {
    tree.CreateFolder(to);
    std::vector<FolderEntry> entries;
    if (tree.List(from + L"\\*", entries)) {
        for (const FolderEntry& entry : entries) {
            if (entry.name == L"." || entry.name == L"..") continue;
            const std::wstring source = from + L"\\" + entry.name;
            const std::wstring target = to + L"\\" + entry.name;
            const uint32_t kind = entry.attributes & (kDirectoryBit | kReparsePointBit);
            const uint32_t targetAttributes = tree.Attributes(target);
            if (targetAttributes == kMissingFile) {
                // A whole folder, or a link as a link, in one piece.
                tree.Move(source, target);
            } else if (kind == kDirectoryBit && (targetAttributes & kDirectoryBit) != 0) {
                MergeFolder(tree, source, target);
            }
            // Anything else stays where it is, and so does every folder above it.
        }
    }
    return tree.RemoveFolder(from);
}

const std::wstring& MigrationLine() { return LastLine(); }
