// The resources that Windows reads from Lumivane.scr without running it: the display name in
// the Screen Saver settings list, the version block Explorer shows, the icons and the manifest
// the loader acts on. The built program is opened as a data file, so none of its code runs.
//
// LUMIVANE_SCR names the built Lumivane.scr (a Windows path, or a host path starting with '/'
// when run under Wine); the tests skip when it is unset.

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kIconGroupId = 100;
// A group icon entry: width, height, colours, reserved, planes, bit count, bytes, icon id.
constexpr size_t kIconEntryBytes = 14;
// Version 6.2.4.0 as VS_FIXEDFILEINFO holds it.
constexpr DWORD kVersionHigh = (6u << 16) | 2u;
constexpr DWORD kVersionLow = 4u << 16;

// A module mapped as resources only, freed at the end of the scope.
class ResourceModule {
public:
    explicit ResourceModule(const std::wstring& path)
        : module(LoadLibraryExW(path.c_str(), nullptr,
                                LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE)) {}
    ~ResourceModule() {
        if (module) FreeLibrary(module);
    }
    ResourceModule(const ResourceModule&) = delete;
    ResourceModule& operator=(const ResourceModule&) = delete;
    HMODULE Get() const { return module; }

private:
    HMODULE module;
};

// The bytes of one resource, empty when it is missing.
std::string_view Resource(HMODULE module, LPCWSTR type, LPCWSTR name) {
    HRSRC found = FindResourceW(module, name, type);
    if (!found) return {};
    HGLOBAL loaded = LoadResource(module, found);
    const void* bytes = loaded ? LockResource(loaded) : nullptr;
    if (!bytes) return {};
    return {static_cast<const char*>(bytes), SizeofResource(module, found)};
}

// One node of the version resource: wLength, wValueLength, wType, a key, a value and then
// child nodes, each part starting on a 32-bit boundary of the resource.
struct VersionNode {
    std::wstring key;
    std::string_view value;
    std::string_view children;
};

size_t AlignDword(size_t offset) { return (offset + 3) & ~size_t{3}; }

WORD ReadWord(std::string_view bytes, size_t offset) {
    WORD word;
    std::memcpy(&word, bytes.data() + offset, sizeof word);
    return word;
}

// Reads the node at the start of `bytes` (which starts on a 32-bit boundary) and returns its
// full length, or 0 when the node is malformed.
size_t ReadVersionNode(std::string_view bytes, VersionNode& node) {
    if (bytes.size() < 6) return 0;
    size_t length = ReadWord(bytes, 0);
    size_t valueLength = ReadWord(bytes, 2);
    bool text = ReadWord(bytes, 4) == 1;
    if (length < 6 || length > bytes.size()) return 0;
    node.key.clear();
    size_t at = 6;
    for (; at + 2 <= length; at += 2) {
        wchar_t c = static_cast<wchar_t>(ReadWord(bytes, at));
        if (c == 0) break;
        node.key += c;
    }
    size_t valueAt = AlignDword(at + 2);
    size_t valueBytes = text ? valueLength * 2 : valueLength;
    if (valueAt + valueBytes > length) return 0;
    node.value = bytes.substr(valueAt, valueBytes);
    size_t childrenAt = std::min(AlignDword(valueAt + valueBytes), length);
    node.children = bytes.substr(childrenAt, length - childrenAt);
    return length;
}

// Follows `path` of keys down from the root node; false when a step is missing.
bool FindVersionNode(std::string_view block, const std::vector<std::wstring>& path,
                     VersionNode& node) {
    if (!ReadVersionNode(block, node)) return false;
    for (const std::wstring& key : path) {
        std::string_view rest = node.children;
        VersionNode child;
        bool found = false;
        while (!found && !rest.empty()) {
            size_t length = ReadVersionNode(rest, child);
            if (length == 0) return false;
            found = child.key == key;
            rest.remove_prefix(std::min(AlignDword(length), rest.size()));
        }
        if (!found) return false;
        node = child;
    }
    return true;
}

// A text value up to its terminating null.
std::wstring TextOf(std::string_view value) {
    std::wstring text(value.size() / 2, L'\0');
    std::memcpy(text.data(), value.data(), text.size() * 2);
    return text.substr(0, text.find(L'\0'));
}

class ResourcesTest : public ::testing::Test {
protected:
    void SetUp() override {
        const wchar_t* path = _wgetenv(L"LUMIVANE_SCR");
        if (!path || !*path) GTEST_SKIP() << "LUMIVANE_SCR is not set";
        std::wstring windowsPath = path;
        // Wine maps the host's root directory to drive Z:.
        if (windowsPath[0] == L'/') windowsPath = L"Z:" + windowsPath;
        for (wchar_t& c : windowsPath) {
            if (c == L'/') c = L'\\';
        }
        program = std::make_unique<ResourceModule>(windowsPath);
        ASSERT_NE(program->Get(), nullptr)
            << "cannot open " << windowsPath << ", error " << GetLastError();
    }

    HMODULE Module() const { return program->Get(); }

    std::unique_ptr<ResourceModule> program;
};

TEST_F(ResourcesTest, NameVersionAndIconsAreTheSavers) {
    // String 1 is the name the Screen Saver settings list shows.
    wchar_t name[64] = {};
    ASSERT_GT(LoadStringW(Module(), 1, name, 64), 0);
    EXPECT_STREQ(name, L"Lumivane");

    std::string_view version = Resource(Module(), RT_VERSION, MAKEINTRESOURCEW(VS_VERSION_INFO));
    VersionNode root;
    ASSERT_TRUE(FindVersionNode(version, {}, root));
    EXPECT_EQ(root.key, L"VS_VERSION_INFO");
    ASSERT_EQ(root.value.size(), sizeof(VS_FIXEDFILEINFO));
    VS_FIXEDFILEINFO fixed;
    std::memcpy(&fixed, root.value.data(), sizeof fixed);
    EXPECT_EQ(fixed.dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(fixed.dwFileVersionMS, kVersionHigh);
    EXPECT_EQ(fixed.dwFileVersionLS, kVersionLow);
    EXPECT_EQ(fixed.dwProductVersionMS, kVersionHigh);
    EXPECT_EQ(fixed.dwProductVersionLS, kVersionLow);
    EXPECT_EQ(fixed.dwFileType, static_cast<DWORD>(VFT_APP));

    // Readers look the strings up under the first translation, so the block must match it.
    VersionNode translation;
    ASSERT_TRUE(FindVersionNode(version, {L"VarFileInfo", L"Translation"}, translation));
    ASSERT_GE(translation.value.size(), 4u);
    wchar_t block[9];
    swprintf(block, 9, L"%04x%04x", ReadWord(translation.value, 0),
             ReadWord(translation.value, 2));

    const struct {
        const wchar_t* key;
        const wchar_t* text;
    } strings[] = {
        {L"FileVersion", L"6.2.4"},
        {L"ProductVersion", L"6.2.4"},
        {L"ProductName", L"Lumivane"},
        {L"FileDescription", L"Lumivane screen saver"},
        {L"OriginalFilename", L"Lumivane.scr"},
        {L"InternalName", L"Lumivane"},
        {L"CompanyName", L"Lumivane"},
    };
    for (const auto& expected : strings) {
        VersionNode value;
        ASSERT_TRUE(FindVersionNode(version, {L"StringFileInfo", block, expected.key}, value))
            << "missing " << expected.key;
        EXPECT_EQ(TextOf(value.value), expected.text);
    }

    // Each size the shell asks for has an image of its own, not one scaled from another size.
    std::string_view group = Resource(Module(), RT_GROUP_ICON, MAKEINTRESOURCEW(kIconGroupId));
    ASSERT_GE(group.size(), 6u);
    size_t count = ReadWord(group, 4);
    ASSERT_GE(group.size(), 6 + count * kIconEntryBytes);
    for (int size : {16, 32, 48, 256}) {
        SCOPED_TRACE(size);
        WORD id = 0;
        for (size_t i = 0; i < count && id == 0; ++i) {
            size_t entry = 6 + i * kIconEntryBytes;
            int width = static_cast<unsigned char>(group[entry]);
            if ((width == 0 ? 256 : width) == size) id = ReadWord(group, entry + 12);
        }
        ASSERT_NE(id, 0) << "no icon of this size";
        std::string_view image = Resource(Module(), RT_ICON, MAKEINTRESOURCEW(id));
        ASSERT_FALSE(image.empty());
        HICON icon = CreateIconFromResourceEx(
            reinterpret_cast<BYTE*>(const_cast<char*>(image.data())),
            static_cast<DWORD>(image.size()), TRUE, 0x00030000, 0, 0, LR_DEFAULTCOLOR);
        ASSERT_NE(icon, nullptr);
        ICONINFO info = {};
        ASSERT_TRUE(GetIconInfo(icon, &info));
        BITMAP bitmap = {};
        GetObjectW(info.hbmColor, sizeof bitmap, &bitmap);
        EXPECT_EQ(bitmap.bmWidth, size);
        EXPECT_EQ(bitmap.bmHeight, size);
        if (info.hbmColor) DeleteObject(info.hbmColor);
        if (info.hbmMask) DeleteObject(info.hbmMask);
        DestroyIcon(icon);
    }
}

TEST_F(ResourcesTest, ManifestAsksForInvokerPerMonitorDpiCommonControlsAndSystems) {
    std::string_view manifest =
        Resource(Module(), RT_MANIFEST, CREATEPROCESS_MANIFEST_RESOURCE_ID);
    ASSERT_FALSE(manifest.empty());

    // Windows ignores a setting in the wrong namespace without a word, so each is matched
    // together with its namespace.
    const char* const wanted[] = {
        "<requestedExecutionLevel level=\"asInvoker\"",
        "<dpiAware xmlns=\"http://schemas.microsoft.com/SMI/2005/WindowsSettings\">true/pm<",
        "<dpiAwareness xmlns=\"http://schemas.microsoft.com/SMI/2016/WindowsSettings\">"
        "PerMonitorV2, PerMonitor<",
        "<supportedOS Id=\"{35138b9a-5d96-4fbd-8e2d-a2440225f93a}\"/>",  // Windows 7
        "<supportedOS Id=\"{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}\"/>",  // Windows 8
        "<supportedOS Id=\"{1f676c76-80e1-4239-95bb-83d0f6d0da78}\"/>",  // Windows 8.1
        "<supportedOS Id=\"{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}\"/>",  // Windows 10 and 11
    };
    for (const char* text : wanted) {
        EXPECT_NE(manifest.find(text), std::string_view::npos) << text;
    }

    // The common controls dependency is one assemblyIdentity element naming version 6.
    size_t name = manifest.find("name=\"Microsoft.Windows.Common-Controls\"");
    ASSERT_NE(name, std::string_view::npos);
    size_t start = manifest.rfind("<assemblyIdentity", name);
    size_t end = manifest.find("/>", name);
    ASSERT_NE(start, std::string_view::npos);
    ASSERT_NE(end, std::string_view::npos);
    std::string_view identity = manifest.substr(start, end - start);
    EXPECT_NE(identity.find("version=\"6.0.0.0\""), std::string_view::npos) << identity;
    EXPECT_NE(identity.find("publicKeyToken=\"6595b64144ccf1df\""), std::string_view::npos)
        << identity;
    EXPECT_LT(manifest.rfind("<dependentAssembly>", start), start);
}

}  // namespace
