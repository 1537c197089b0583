#include "library/memory_tree.h"

namespace {

std::wstring Parent(const std::wstring& path) { return path.substr(0, path.rfind(L'\\')); }

bool IsBelow(const std::wstring& path, const std::wstring& folder) {
    return path.rfind(folder + L"\\", 0) == 0;
}

} // namespace

void MemoryTree::Add(const std::wstring& path, uint32_t attributes) {
    CreateFolderTree(Parent(path));
    nodes[path] = attributes;
}

uint32_t MemoryTree::Attributes(const std::wstring& path) {
    if (path.find(L'\\') == std::wstring::npos) return kDirectoryBit; // a drive
    return nodes.count(path) ? nodes[path] : kMissingFile;
}

bool MemoryTree::Move(const std::wstring& from, const std::wstring& to) {
    if (!Exists(*this, from) || Exists(*this, to) || !Exists(*this, Parent(to)) ||
        stuck.count(from))
        return false;
    std::map<std::wstring, uint32_t> renamed;
    for (const auto& [path, attributes] : nodes)
        renamed[IsBelow(path + L"\\", from) ? to + path.substr(from.size()) : path] = attributes;
    nodes = renamed;
    return true;
}

bool MemoryTree::CreateFolder(const std::wstring& path) {
    if (Exists(*this, path) || !Exists(*this, Parent(path))) return false;
    nodes[path] = kDirectoryBit;
    return true;
}

void MemoryTree::CreateFolderTree(const std::wstring& path) {
    if (!Exists(*this, path)) Add(path, kDirectoryBit);
}

bool MemoryTree::RemoveFolder(const std::wstring& path) {
    for (const auto& node : nodes)
        if (IsBelow(node.first, path)) return false; // not empty
    return nodes.erase(path) == 1;
}

// Only the pattern "*" is asked for; it gives "." and ".." too.
bool MemoryTree::List(const std::wstring& pattern, std::vector<FolderEntry>& entries) {
    const std::wstring folder = Parent(pattern);
    entries = {{L".", kDirectoryBit}, {L"..", kDirectoryBit}};
    for (const auto& [path, attributes] : nodes)
        if (Parent(path) == folder) entries.push_back({path.substr(folder.size() + 1), attributes});
    return nodes.count(folder) == 1;
}

bool MemoryTree::CanWriteTo(const std::wstring& folder) {
    CreateFolderTree(folder);
    return unwritable.count(folder) == 0;
}

MemoryTree& TestTree() {
    static MemoryTree tree;
    return tree;
}
