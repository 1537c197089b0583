// The folders and the one registry value that every start of the saver keeps in order, seen
// from outside: a user's first start makes them, and a later start changes nothing.
#include <windows.h>
#include <knownfolders.h>
#include <shellapi.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "e2e/driver_window.h"
#include "e2e/files.h"
#include "e2e/saver_registry.h"
#include "e2e/saver_test.h"

namespace e2e {
namespace {

void RemoveTree(const std::wstring& path) {
    const std::wstring list = path + L'\0';
    SHFILEOPSTRUCTW operation{};
    operation.wFunc = FO_DELETE;
    operation.pFrom = list.c_str();
    operation.fFlags = FOF_NO_UI;
    SHFileOperationW(&operation);
}

// Every folder and file below `folder`, with their sizes.
void Collect(const std::wstring& folder, std::vector<std::wstring>& items) {
    WIN32_FIND_DATAW data{};
    HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        const std::wstring name = data.cFileName;
        if (name == L"." || name == L"..") continue;
        items.push_back(folder + L"\\" + name + L" " + std::to_wstring(data.nFileSizeLow));
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) Collect(folder + L"\\" + name, items);
    } while (FindNextFileW(search, &data));
    FindClose(search);
}

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

TEST_F(SaverTest, FirstStartOfAUserMakesItsFoldersAndTheNextChangesNothing) {
    const std::wstring local = KnownFolder(FOLDERID_LocalAppData);
    const std::wstring documents = KnownFolder(FOLDERID_Documents);
    ASSERT_FALSE(local.empty());
    ASSERT_FALSE(documents.empty());
    const std::wstring dataDir = local + L"\\Lumivane";
    const std::wstring photoTree = documents + L"\\Lumivane";
    // A user who never ran the saver: no data folder, no photo tree, no key (cleared by SetUp).
    RemoveTree(dataDir);
    RemoveTree(local + L"\\LumivaneW");
    RemoveTree(photoTree);
    // The tray takes the settings request, so no message box waits for a click.
    DriverWindow tray(FakeTrayOptions());

    Start(L"/c");
    ExpectExitZero();
    EXPECT_EQ(saver_registry::ReadString(L"ImportsDir"), documents);
    for (const std::wstring& folder :
         {dataDir, dataDir + L"\\Slides", dataDir + L"\\Updates",
          photoTree + L"\\Lumivane Wallpaper", photoTree + L"\\Lumivane ScreenSaver",
          photoTree + L"\\Wallpaper Cache"})
        EXPECT_TRUE(IsFolder(folder)) << std::string(folder.begin(), folder.end());
    EXPECT_EQ(GetFileAttributesW((documents + L"\\.lumivane-write-test").c_str()),
              INVALID_FILE_ATTRIBUTES);

    std::vector<std::wstring> first;
    Collect(dataDir, first);
    Collect(photoTree, first);
    Start(L"/c");
    ExpectExitZero();
    std::vector<std::wstring> second;
    Collect(dataDir, second);
    Collect(photoTree, second);
    EXPECT_EQ(second, first);
    EXPECT_EQ(saver_registry::ReadString(L"ImportsDir"), documents);
}

} // namespace
} // namespace e2e
