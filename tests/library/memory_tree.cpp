#include "library/memory_tree.h"

#include <cwctype>

#include "library/system_text.h"

namespace {

std::wstring Lower(std::wstring text) {
    for (wchar_t& c : text) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return text;
}

std::wstring Parent(const std::wstring& path) {
    const auto slash = path.rfind(L'\\');
    return slash == std::wstring::npos ? std::wstring() : path.substr(0, slash);
}

bool EndsWith(const std::wstring& text, const std::wstring& tail) {
    return text.size() >= tail.size() &&
           text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

} // namespace

bool MemoryTree::Fail(uint32_t error) {
    lastError = error;
    return false;
}

void MemoryTree::Add(const std::wstring& path, uint32_t attributes, uint64_t writeTime,
                     const std::string& content) {
    if (!Parent(path).empty() && Parent(path).find(L'\\') != std::wstring::npos)
        AddFolder(Parent(path));
    const auto slash = path.rfind(L'\\');
    nodes[Lower(path)] = {path, {path.substr(slash + 1), attributes, writeTime}, content};
}

void MemoryTree::AddFolder(const std::wstring& path) {
    if (Attributes(path) == kMissingFile) Add(path, kDirectoryBit, 0, "");
}
void MemoryTree::AddFile(const std::wstring& path, uint64_t writeTime, uint32_t attributes,
                         const std::string& content) {
    Add(path, attributes, writeTime, content);
}
void MemoryTree::AddJunction(const std::wstring& path) {
    Add(path, kDirectoryBit | kReparsePointBit, 0, "");
}

std::vector<std::wstring> MemoryTree::Paths() const {
    std::vector<std::wstring> paths;
    for (const auto& [key, node] : nodes) paths.push_back(node.path);
    return paths;
}

bool MemoryTree::Has(const std::wstring& path) const { return nodes.count(Lower(path)) != 0; }

uint32_t MemoryTree::Attributes(const std::wstring& path) {
    if (path.find(L'\\') == std::wstring::npos) return kDirectoryBit; // a drive
    const auto found = nodes.find(Lower(path));
    return found == nodes.end() ? kMissingFile : found->second.entry.attributes;
}

bool MemoryTree::Move(const std::wstring& from, const std::wstring& to) {
    if (!Has(from)) return Fail(2);                               // ERROR_FILE_NOT_FOUND
    if (Attributes(to) != kMissingFile) return Fail(183);          // ERROR_ALREADY_EXISTS
    if (Attributes(Parent(to)) == kMissingFile) return Fail(3);    // ERROR_PATH_NOT_FOUND
    const std::wstring prefix = Lower(from);
    for (const std::wstring& path : stuck)
        if (Lower(path) == prefix) return Fail(5); // ERROR_ACCESS_DENIED
    std::map<std::wstring, Node> moved;
    for (auto it = nodes.begin(); it != nodes.end();) {
        if (it->first == prefix || it->first.rfind(prefix + L"\\", 0) == 0) {
            Node node = it->second;
            node.path = to + node.path.substr(from.size());
            if (it->first == prefix) node.entry.name = to.substr(to.rfind(L'\\') + 1);
            moved[Lower(node.path)] = node;
            it = nodes.erase(it);
        } else {
            ++it;
        }
    }
    nodes.insert(moved.begin(), moved.end());
    return true;
}

bool MemoryTree::CreateFolder(const std::wstring& path) {
    if (Attributes(path) != kMissingFile) return Fail(183);
    if (Attributes(Parent(path)) == kMissingFile) return Fail(3);
    AddFolder(path);
    return true;
}

void MemoryTree::CreateFolderTree(const std::wstring& path) { AddFolder(path); }

bool MemoryTree::RemoveFolder(const std::wstring& path) {
    const auto found = nodes.find(Lower(path));
    if (found == nodes.end() || !(found->second.entry.attributes & kDirectoryBit)) return Fail(2);
    const std::wstring children = found->first + L"\\";
    const auto next = nodes.lower_bound(children);
    if (next != nodes.end() && next->first.rfind(children, 0) == 0) return Fail(145);
    nodes.erase(found);
    return true;
}

bool MemoryTree::List(const std::wstring& pattern, std::vector<FolderEntry>& entries) {
    const std::wstring folder = Parent(pattern);
    const std::wstring wildcard = Lower(pattern.substr(folder.size() + 1));
    if (!(Attributes(folder) & kDirectoryBit) || Attributes(folder) == kMissingFile)
        return Fail(3);
    if (wildcard == L"*") {
        entries.push_back({L".", kDirectoryBit, 0});
        entries.push_back({L"..", kDirectoryBit, 0});
    }
    const std::wstring prefix = Lower(folder) + L"\\";
    for (const auto& [key, node] : nodes) {
        if (key.rfind(prefix, 0) != 0 || key.find(L'\\', prefix.size()) != std::wstring::npos)
            continue;
        if (wildcard == L"*" || EndsWith(key, wildcard.substr(1))) entries.push_back(node.entry);
    }
    return !entries.empty() || Fail(2);
}

bool MemoryTree::CanWriteTo(const std::wstring& folder) {
    writeTests.push_back(folder);
    CreateFolderTree(folder);
    return unwritable.count(folder) == 0;
}

std::optional<std::string> MemoryTree::ReadFile(const std::wstring& path) {
    const auto found = nodes.find(Lower(path));
    if (found == nodes.end() || (found->second.entry.attributes & kDirectoryBit))
        return std::nullopt;
    return found->second.content;
}

MemoryTree& TestTree() {
    static MemoryTree tree;
    return tree;
}

FileTree& SystemFileTree() { return TestTree(); }

// The system's text rules, as far as the host tests need them.
std::wstring LowerCase(std::wstring text) { return Lower(std::move(text)); }

std::wstring WideFromUtf8(const std::string& text) {
    std::wstring wide;
    for (size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
        uint32_t code = length == 1 ? lead : lead & (0x3F >> (length - 1));
        for (size_t k = 1; k < length && i + k < text.size(); ++k)
            code = code << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3F);
        wide.push_back(static_cast<wchar_t>(code));
        i += length;
    }
    return wide;
}
