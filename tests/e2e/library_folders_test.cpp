// The folders and the one registry value that every start of the saver keeps in order, seen
// from outside: a user's first start makes them (that a later start changes nothing is a host
// test).
#include <windows.h>
#include <knownfolders.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "e2e/driver_window.h"
#include "e2e/files.h"
#include "e2e/saver_test.h"

namespace e2e {
namespace {

namespace fs = std::filesystem;

TEST_F(SaverTest, FirstStartOfAUserMakesItsFoldersAndStoresThePhotoDirectory) {
    const std::wstring local = KnownFolder(FOLDERID_LocalAppData);
    const std::wstring documents = KnownFolder(FOLDERID_Documents);
    ASSERT_FALSE(local.empty() || documents.empty());
    const std::wstring dataDir = local + L"\\Lumivane", photoTree = documents + L"\\Lumivane";
    // A user who never ran the saver: no data folder, no photo tree, no key (cleared by SetUp).
    for (const std::wstring& folder : {dataDir, local + L"\\LumivaneW", photoTree})
        fs::remove_all(folder);
    // The tray takes the settings request, so no message box waits for a click.
    DriverWindow tray(FakeTrayOptions());

    Start(L"/c");
    ExpectExitZero();
    EXPECT_EQ(ReadSaverString(L"ImportsDir"), documents);
    for (const std::wstring& folder :
         {dataDir + L"\\Slides", dataDir + L"\\Updates", photoTree + L"\\Lumivane Wallpaper",
          photoTree + L"\\Lumivane ScreenSaver", photoTree + L"\\Wallpaper Cache"})
        EXPECT_TRUE(fs::is_directory(folder)) << fs::path(folder).string();
    EXPECT_FALSE(fs::exists(documents + L"\\.lumivane-write-test"));
}

} // namespace
} // namespace e2e
