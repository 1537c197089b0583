#pragma once

#include <string>

// Where everything is: nine full paths, worked out once per process on first use.
//
// Stand-in until the data folders land: Get gives a record of empty paths and makes no folder,
// so the photo listing finds nothing and a run shows the crossfade. The library issue replaces
// the body of Get; its first call stays where it is, in CrashReporter::Start.
struct DataPaths {
    std::wstring exePath;
    std::wstring dataDir;
    std::wstring slidesDir;
    std::wstring updatesDir;
    std::wstring importsDir;
    std::wstring itemsDir;
    std::wstring wallpaperDir;
    std::wstring screenSaverDir;
    std::wstring wallpaperCacheDir;

    static const DataPaths& Get();
};
