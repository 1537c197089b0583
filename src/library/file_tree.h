#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What the folder logic (data folders, migration, photo directory, photo listing) asks of the
// machine: the user's known folders and a few file calls, with their raw answers. Windows
// answers with the shell and file calls; the host tests answer from an in-memory tree.

// The answer of Attributes for a path that doesn't exist (or can't be looked at).
inline constexpr uint32_t kMissingFile = 0xFFFFFFFF;
inline constexpr uint32_t kDirectoryBit = 0x10; // FILE_ATTRIBUTE_DIRECTORY
// FILE_ATTRIBUTE_REPARSE_POINT: a link or a junction.
inline constexpr uint32_t kReparsePointBit = 0x400;

// One entry of a folder search.
struct FolderEntry {
    std::wstring name; // the name alone, "." and ".." included where the system gives them
    uint32_t attributes = 0;
    uint64_t writeTime = 0; // last write, in 100-nanosecond ticks
};

class FileTree {
public:
    virtual ~FileTree() = default;

    // The running program's full path.
    virtual std::wstring ModulePath() = 0;
    // The local application data folder, made if missing; nothing when the system gives none.
    virtual std::optional<std::wstring> LocalAppData() = 0;
    // The temporary folder, ending in a backslash.
    virtual std::wstring TempPath() = 0;
    // The roaming application data folder; empty when the system gives none.
    virtual std::wstring RoamingAppData() = 0;
    // The documents folder; empty when the system gives none.
    virtual std::wstring Documents() = 0;

    // The attributes of `path`, or kMissingFile.
    virtual uint32_t Attributes(const std::wstring& path) = 0;
    // Renames `from` to `to` on the same volume, never replacing anything that exists.
    virtual bool Move(const std::wstring& from, const std::wstring& to) = 0;
    // The error code of the last call that failed.
    virtual uint32_t LastError() = 0;
    // Makes one folder whose parent exists.
    virtual bool CreateFolder(const std::wstring& path) = 0;
    // Makes one folder whose parent exists, which only the user and the system may open, and
    // everything made inside it after them; false when it exists or can't be made.
    virtual bool CreateOwnFolder(const std::wstring& path) = 0;
    // Makes a folder with all its missing ancestors.
    virtual void CreateFolderTree(const std::wstring& path) = 0;
    // Removes an empty folder.
    virtual bool RemoveFolder(const std::wstring& path) = 0;
    // The entries that match `pattern` (a folder, a backslash and a wildcard name); false when
    // the search finds nothing or the folder can't be read.
    virtual bool List(const std::wstring& pattern, std::vector<FolderEntry>& entries) = 0;
    // Makes `folder` with its ancestors and proves by writing a file there, which the system
    // deletes again, that the user may write into it.
    virtual bool CanWriteTo(const std::wstring& folder) = 0;
    // The whole content of a file, opened for shared reading; nothing if it can't be opened.
    virtual std::optional<std::string> ReadFile(const std::wstring& path) = 0;
};

inline bool Exists(FileTree& tree, const std::wstring& path) {
    return tree.Attributes(path) != kMissingFile;
}

// This machine's tree: the Windows file system, or in the host tests the in-memory one.
FileTree& SystemFileTree();
