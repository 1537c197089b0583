#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "library/file_tree.h"

// The file tree of the host tests. Paths compare without case, as on Windows; a path without a
// backslash is a drive and always there. Calls fail where the file calls would: a move onto
// something that exists, a folder whose parent is missing, the removal of a folder not empty.
class MemoryTree : public FileTree {
public:
    std::optional<std::wstring> localAppData = L"C:\\U\\Local";
    std::wstring documents = L"C:\\U\\Documents";
    std::set<std::wstring> unwritable;    // folders whose write test fails
    std::set<std::wstring> stuck;         // paths that can't be moved (in use)
    std::vector<std::wstring> writeTests; // folders given to CanWriteTo, in order

    // Adds a file (attributes 0x20) or, with kDirectoryBit, a folder, with its missing parents.
    void Add(const std::wstring& path, uint32_t attributes = 0x20, uint64_t writeTime = 0,
             const std::string& content = "");
    std::vector<std::wstring> Paths() const; // every path, sorted, with its own spelling
    bool Has(const std::wstring& path) { return Exists(*this, path); }

    std::wstring ModulePath() override { return L"C:\\Windows\\System32\\Lumivane.scr"; }
    std::optional<std::wstring> LocalAppData() override {
        if (localAppData) CreateFolderTree(*localAppData); // made when asked for
        return localAppData;
    }
    std::wstring TempPath() override { return L"C:\\T\\"; }
    std::wstring RoamingAppData() override { return L"C:\\U\\Roaming"; }
    std::wstring Documents() override { return documents; }
    uint32_t Attributes(const std::wstring& path) override;
    bool Move(const std::wstring& from, const std::wstring& to) override;
    uint32_t LastError() override { return lastError; }
    bool CreateFolder(const std::wstring& path) override;
    void CreateFolderTree(const std::wstring& path) override;
    bool RemoveFolder(const std::wstring& path) override;
    bool List(const std::wstring& pattern, std::vector<FolderEntry>& entries) override;
    bool CanWriteTo(const std::wstring& folder) override {
        writeTests.push_back(folder);
        CreateFolderTree(folder);
        return unwritable.count(folder) == 0;
    }
    std::optional<std::string> ReadFile(const std::wstring& path) override;

private:
    struct Node {
        std::wstring path;
        FolderEntry entry;
        std::string content;
    };
    bool Fail(uint32_t error) {
        lastError = error;
        return false;
    }
    std::map<std::wstring, Node> nodes; // by lower-cased path
    uint32_t lastError = 0;
};

MemoryTree& TestTree();
