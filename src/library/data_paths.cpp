#include "library/data_paths.h"

#include "library/companion.h"
#include "library/migration.h"
#include "library/photo_directory.h"

namespace {

std::wstring Join(const std::wstring& folder, const wchar_t* name) { return folder + L"\\" + name; }

} // namespace

const DataPaths& DataPaths::Get() {
    // A function-local static: built once, and other threads wait while it is being built.
    static const DataPaths paths = BuildDataPaths(SystemFileTree());
    return paths;
}

DataPaths BuildDataPaths(FileTree& tree) {
    DataPaths paths;
    paths.exePath = tree.ModulePath();
    if (const auto localAppData = tree.LocalAppData()) {
        paths.dataDir = MigrateDataFolder(tree, *localAppData);
    } else {
        // The temporary path ends in a backslash already. No older folder is looked for there.
        paths.dataDir = tree.TempPath() + kDataFolderName;
    }
    paths.slidesDir = Join(paths.dataDir, kSlidesFolderName);
    paths.updatesDir = Join(paths.dataDir, kUpdatesFolderName);
    tree.CreateFolder(paths.dataDir);
    // After the migration, which may have rewritten the stored photo directory.
    paths.importsDir = LinkPhotoDirectory(tree, paths.dataDir);
    paths.itemsDir = Join(paths.importsDir, kPhotoTreeName);
    paths.wallpaperDir = Join(paths.itemsDir, kWallpaperFolderName);
    paths.screenSaverDir = Join(paths.itemsDir, kScreenSaverFolderName);
    paths.wallpaperCacheDir = Join(paths.itemsDir, kWallpaperCacheFolderName);
    tree.CreateFolderTree(paths.itemsDir);
    for (const std::wstring* folder : {&paths.slidesDir, &paths.updatesDir, &paths.wallpaperDir,
                                       &paths.screenSaverDir, &paths.wallpaperCacheDir})
        tree.CreateFolder(*folder);
    return paths;
}

std::vector<std::wstring> DataPathsLines() {
    std::vector<std::wstring> lines;
    for (const std::wstring* line : {&MigrationLine(), &PhotoDirectoryLine()})
        if (!line->empty()) lines.push_back(*line);
    return lines;
}
