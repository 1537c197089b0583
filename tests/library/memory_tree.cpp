#include "library/memory_tree.h"

bool MemoryTree::Move(const std::wstring& from, const std::wstring& to) {
    if (!Exists(*this, from) || Exists(*this, to) || !Exists(*this, Parent(to)) || stuck.count(from))
        return false;
    std::map<std::wstring, uint32_t> moved;
    for (auto node = nodes.begin(); node != nodes.end();) {
        if (node->first != from && !IsBelow(node->first, from)) {
            ++node;
            continue;
        }
        moved[to + node->first.substr(from.size())] = node->second;
        node = nodes.erase(node);
    }
    nodes.merge(moved);
    return true;
}

bool MemoryTree::RemoveFolder(const std::wstring& path) {
    for (const auto& node : nodes)
        if (IsBelow(node.first, path)) return false; // not empty
    return nodes.erase(path) == 1;
}

// Only the pattern "*" is asked for; it gives "." and ".." too.
bool MemoryTree::List(const std::wstring& pattern, std::vector<FolderEntry>& entries) {
    const std::wstring folder = Parent(pattern);
    if (!nodes.count(folder)) return false;
    entries = {{L".", kDirectoryBit}, {L"..", kDirectoryBit}};
    for (const auto& [path, attributes] : nodes)
        if (Parent(path) == folder) entries.push_back({path.substr(folder.size() + 1), attributes});
    return true;
}

MemoryTree& TestTree() {
    static MemoryTree tree;
    return tree;
}
