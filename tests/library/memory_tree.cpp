#include "library/memory_tree.h"

#include "library/system_text.h"

namespace {

constexpr auto npos = std::wstring::npos;

std::wstring Parent(const std::wstring& path) {
    const auto slash = path.rfind(L'\\');
    return slash == std::wstring::npos ? std::wstring() : path.substr(0, slash);
}

bool StartsWith(const std::wstring& text, const std::wstring& head) {
    return text.compare(0, head.size(), head) == 0;
}

} // namespace

void MemoryTree::Add(const std::wstring& path, uint32_t attributes, uint64_t writeTime,
                     const std::string& content) {
    CreateFolderTree(Parent(path));
    const std::wstring name = path.substr(path.rfind(L'\\') + 1);
    nodes[LowerCase(path)] = {path, {name, attributes, writeTime}, content};
}

std::vector<std::wstring> MemoryTree::Paths() const {
    std::vector<std::wstring> paths;
    for (const auto& [key, node] : nodes) paths.push_back(node.path);
    return paths;
}

uint32_t MemoryTree::Attributes(const std::wstring& path) {
    if (path.find(L'\\') == std::wstring::npos) return kDirectoryBit; // a drive
    const auto found = nodes.find(LowerCase(path));
    return found == nodes.end() ? kMissingFile : found->second.entry.attributes;
}

bool MemoryTree::Move(const std::wstring& from, const std::wstring& to) {
    if (!Has(from) || Has(to) || !Has(Parent(to))) return Fail(183); // never replaces
    if (stuck.count(from)) return Fail(5);                            // ERROR_ACCESS_DENIED
    const std::wstring key = LowerCase(from);
    std::map<std::wstring, Node> moved;
    for (auto it = nodes.begin(); it != nodes.end();) {
        if (it->first != key && !StartsWith(it->first, key + L"\\")) {
            ++it;
            continue;
        }
        Node node = it->second;
        node.path = to + node.path.substr(from.size());
        if (it->first == key) node.entry.name = to.substr(to.rfind(L'\\') + 1);
        moved[LowerCase(node.path)] = node;
        it = nodes.erase(it);
    }
    nodes.insert(moved.begin(), moved.end());
    return true;
}

bool MemoryTree::CreateFolder(const std::wstring& path) {
    if (Has(path) || !Has(Parent(path))) return Fail(183);
    Add(path, kDirectoryBit);
    return true;
}

void MemoryTree::CreateFolderTree(const std::wstring& path) {
    if (!Has(path)) Add(path, kDirectoryBit);
}

bool MemoryTree::RemoveFolder(const std::wstring& path) {
    const auto found = nodes.find(LowerCase(path));
    if (found == nodes.end() || !(found->second.entry.attributes & kDirectoryBit)) return Fail(2);
    const auto next = nodes.lower_bound(found->first + L"\\");
    if (next != nodes.end() && StartsWith(next->first, found->first + L"\\")) return Fail(145);
    nodes.erase(found);
    return true;
}

bool MemoryTree::List(const std::wstring& pattern, std::vector<FolderEntry>& entries) {
    const std::wstring folder = Parent(pattern);
    const std::wstring wildcard = LowerCase(pattern.substr(folder.size() + 1));
    const uint32_t attributes = Attributes(folder);
    if (attributes == kMissingFile || !(attributes & kDirectoryBit)) return Fail(3);
    if (wildcard == L"*") {
        entries.push_back({L".", kDirectoryBit});
        entries.push_back({L"..", kDirectoryBit});
    }
    const std::wstring prefix = LowerCase(folder) + L"\\", tail = wildcard.substr(1);
    for (const auto& [key, node] : nodes) {
        const bool inFolder = StartsWith(key, prefix) && key.find(L'\\', prefix.size()) == npos;
        if (inFolder && key.size() >= tail.size() && key.substr(key.size() - tail.size()) == tail)
            entries.push_back(node.entry);
    }
    return !entries.empty() || Fail(2);
}

std::optional<std::string> MemoryTree::ReadFile(const std::wstring& path) {
    const auto found = nodes.find(LowerCase(path));
    if (found == nodes.end() || (found->second.entry.attributes & kDirectoryBit)) return {};
    return found->second.content;
}

MemoryTree& TestTree() {
    static MemoryTree tree;
    return tree;
}
