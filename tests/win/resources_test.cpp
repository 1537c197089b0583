// The resources that Windows reads from Lumivane.scr without running it: the name in the screen
// saver list, the version, the icon and the manifest. LUMIVANE_SCR names the built file; the
// test skips when it is unset.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

TEST(Resources, NameVersionIconAndManifestAreTheSavers) {
    const wchar_t* path = _wgetenv(L"LUMIVANE_SCR");
    if (!path || !*path) GTEST_SKIP() << "LUMIVANE_SCR is not set";
    HMODULE program =
        LoadLibraryExW(path, nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    ASSERT_NE(program, nullptr);

    wchar_t name[64] = {};
    EXPECT_TRUE(LoadStringW(program, 1, name, 64) > 0 && std::wstring(name) == L"Lumivane");
    EXPECT_TRUE(FindResourceW(program, MAKEINTRESOURCEW(100), RT_GROUP_ICON));

    std::vector<char> version(GetFileVersionInfoSizeW(path, nullptr));
    VS_FIXEDFILEINFO* fixed = nullptr;
    wchar_t* text = nullptr;
    UINT size = 0;
    ASSERT_TRUE(!version.empty() &&
                GetFileVersionInfoW(path, 0, static_cast<DWORD>(version.size()), version.data()) &&
                VerQueryValueW(version.data(), L"\\", reinterpret_cast<void**>(&fixed), &size) &&
                VerQueryValueW(version.data(), L"\\StringFileInfo\\000004b0\\FileVersion",
                               reinterpret_cast<void**>(&text), &size));
    EXPECT_EQ(uint64_t{fixed->dwFileVersionMS} << 32 | fixed->dwFileVersionLS, 0x0006000200040000u);
    EXPECT_STREQ(text, L"6.2.4");

    // Windows ignores a setting in the wrong namespace without a word, so each is matched with
    // its namespace.
    HRSRC found = FindResourceW(program, CREATEPROCESS_MANIFEST_RESOURCE_ID, RT_MANIFEST);
    ASSERT_TRUE(found);
    const auto* bytes = static_cast<const char*>(LockResource(LoadResource(program, found)));
    const std::string_view manifest(bytes, SizeofResource(program, found));
    for (const char* entry : {
             "<requestedExecutionLevel level=\"asInvoker\"",
             "<dpiAware xmlns=\"http://schemas.microsoft.com/SMI/2005/WindowsSettings\">true/pm<",
             "<dpiAwareness xmlns=\"http://schemas.microsoft.com/SMI/2016/WindowsSettings\">"
             "PerMonitorV2, PerMonitor<",
             "name=\"Microsoft.Windows.Common-Controls\" version=\"6.0.0.0\"",
             "{35138b9a-5d96-4fbd-8e2d-a2440225f93a}", // Windows 7
             "{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}", // Windows 8
             "{1f676c76-80e1-4239-95bb-83d0f6d0da78}", // Windows 8.1
             "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}", // Windows 10 and 11
         })
        EXPECT_NE(manifest.find(entry), manifest.npos) << entry;
    FreeLibrary(program);
}

} // namespace
