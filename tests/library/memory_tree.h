#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "library/file_tree.h"

// The file tree of the host tests. A path without a backslash is a drive and always there. Calls
// fail where the file calls would: a move onto something that exists, a folder whose parent is
// missing, the removal of a folder not empty.
class MemoryTree : public FileTree {
public:
    std::map<std::wstring, uint32_t> nodes;       // every path, with its attributes
    std::map<std::wstring, std::string> contents; // what ReadFile gives
    std::optional<std::wstring> localAppData = L"C:\\U\\Local";
    std::wstring documents = L"C:\\U\\Documents";
    std::set<std::wstring> unwritable; // folders whose write test fails
    std::set<std::wstring> stuck;      // paths that can't be moved (in use)
    std::set<std::wstring> ownFolders; // folders made the user's own

    // Adds a file (attributes 0x20) or, with kDirectoryBit, a folder, with its missing parents.
    void Add(const std::wstring& path, uint32_t attributes = 0x20);

    std::wstring ModulePath() override { return L"C:\\Windows\\System32\\Lumivane.scr"; }
    std::optional<std::wstring> LocalAppData() override { return localAppData; }
    std::wstring TempPath() override { return L"C:\\T\\"; }
    std::wstring RoamingAppData() override { return L"C:\\U\\Roaming"; }
    std::wstring Documents() override { return documents; }
    uint32_t Attributes(const std::wstring& path) override;
    bool Move(const std::wstring& from, const std::wstring& to) override;
    uint32_t LastError() override { return 5; } // ERROR_ACCESS_DENIED, as a move of `stuck` gives
    bool CreateFolder(const std::wstring& path) override;
    bool CreateOwnFolder(const std::wstring& path) override {
        return CreateFolder(path) && ownFolders.insert(path).second;
    }
    void CreateFolderTree(const std::wstring& path) override;
    bool RemoveFolder(const std::wstring& path) override;
    bool List(const std::wstring& pattern, std::vector<FolderEntry>& entries) override;
    bool CanWriteTo(const std::wstring& folder) override;
    std::optional<std::string> ReadFile(const std::wstring& path) override {
        return contents.count(path) ? std::optional(contents[path]) : std::nullopt;
    }
};

MemoryTree& TestTree();
