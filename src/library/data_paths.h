#pragma once

#include <string>
#include <vector>

#include "library/file_tree.h"

// Where everything is: nine full paths, worked out once per process on first use.
struct DataPaths {
    std::wstring exePath;           // the running program file
    std::wstring dataDir;           // the data folder: log, crash reports
    std::wstring slidesDir;         // dataDir\Slides, for the companion application
    std::wstring updatesDir;        // dataDir\Updates, for the companion application
    std::wstring importsDir;        // the photo directory, the value ImportsDir
    std::wstring itemsDir;          // importsDir\Lumivane, the root of the photo tree
    std::wstring wallpaperDir;      // itemsDir\Lumivane Wallpaper, for the companion application
    std::wstring screenSaverDir;    // itemsDir\Lumivane ScreenSaver: the photos of the saver
    std::wstring wallpaperCacheDir; // itemsDir\Wallpaper Cache: shown when the first is empty

    // The one record of the process. The first call builds it (moving an older data folder,
    // linking the photo directory, making the folders); later calls return at once, and a
    // call from another thread during the build waits for it. Nothing that runs during the
    // build may use the log, whose file lies in dataDir.
    static const DataPaths& Get();
};

// Works the record out on `tree`, in order: the older data folder is moved (or, without a local
// application data folder, the temporary folder is used), the data folder is made, the photo
// directory is linked, and the photo tree and the remaining folders are made. Results of the
// folder calls are ignored: a folder that exists already is the normal case.
DataPaths BuildDataPaths(FileTree& tree);

// The lines composed while the record was built (the migration's, the photo directory link's),
// in that order, leaving out those that are empty. The log can't take them during the build;
// once the log exists, its first user may write them out after DataPaths::Get() has returned.
std::vector<std::wstring> DataPathsLines();
