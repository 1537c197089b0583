#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "library/file_tree.h"

// The file tree of the host tests: what SystemFileTree gives on the host. Paths compare without
// case, as on Windows; a path without a backslash is a drive and always there. Calls fail where
// the file calls would: a move onto something that exists, a folder whose parent is missing, the
// removal of a folder that isn't empty.
class MemoryTree : public FileTree {
public:
    std::wstring modulePath = L"C:\\Windows\\System32\\Lumivane.scr";
    std::optional<std::wstring> localAppData = L"C:\\U\\Local";
    std::wstring tempPath = L"C:\\T\\";
    std::wstring roamingAppData = L"C:\\U\\Roaming";
    std::wstring documents = L"C:\\U\\Documents";
    std::set<std::wstring> unwritable; // folders whose write test fails
    std::set<std::wstring> stuck;      // paths that can't be moved (in use)
    std::vector<std::wstring> writeTests; // folders given to CanWriteTo, in order

    void Clear() { *this = MemoryTree(); }
    void AddFolder(const std::wstring& path);
    void AddFile(const std::wstring& path, uint64_t writeTime = 0, uint32_t attributes = 0x20,
                 const std::string& content = "");
    void AddJunction(const std::wstring& path); // a link to a folder elsewhere
    // Every path of the tree, sorted, with its own spelling.
    std::vector<std::wstring> Paths() const;
    bool Has(const std::wstring& path) const;

    std::wstring ModulePath() override { return modulePath; }
    // Made when asked for, as the system makes it.
    std::optional<std::wstring> LocalAppData() override {
        if (localAppData) AddFolder(*localAppData);
        return localAppData;
    }
    std::wstring TempPath() override { return tempPath; }
    std::wstring RoamingAppData() override { return roamingAppData; }
    std::wstring Documents() override { return documents; }
    uint32_t Attributes(const std::wstring& path) override;
    bool Move(const std::wstring& from, const std::wstring& to) override;
    uint32_t LastError() override { return lastError; }
    bool CreateFolder(const std::wstring& path) override;
    void CreateFolderTree(const std::wstring& path) override;
    bool RemoveFolder(const std::wstring& path) override;
    bool List(const std::wstring& pattern, std::vector<FolderEntry>& entries) override;
    bool CanWriteTo(const std::wstring& folder) override;
    std::optional<std::string> ReadFile(const std::wstring& path) override;

private:
    struct Node {
        std::wstring path;
        FolderEntry entry;
        std::string content;
    };
    bool Fail(uint32_t error);
    void Add(const std::wstring& path, uint32_t attributes, uint64_t writeTime,
             const std::string& content);
    std::map<std::wstring, Node> nodes; // by lower-cased path
    uint32_t lastError = 0;
};

MemoryTree& TestTree();
