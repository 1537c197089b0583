#pragma once

// The names under which the saver and its companion tray application meet. They never talk during
// a run: they share a registry key, folders, file names and one hand-over of the settings.

// The registry key of the options, under the current user.
inline constexpr wchar_t kSettingsKey[] = L"Software\\LumivaneW";

// Values of that key.
inline constexpr wchar_t kValueSaverFit[] = L"SaverFit";
inline constexpr wchar_t kValueSaverTitle[] = L"SaverTitle";
inline constexpr wchar_t kValueSaverImportedTitle[] = L"SaverImportedTitle";
inline constexpr wchar_t kValueSaverShow[] = L"SaverShow";
inline constexpr wchar_t kValueSaverPause[] = L"SaverPause";
inline constexpr wchar_t kValueSaverRandom[] = L"SaverRandom";
inline constexpr wchar_t kValueLanguage[] = L"Language";
inline constexpr wchar_t kValueImportsDir[] = L"ImportsDir";

// The tray application's window class and the message that asks it to open its settings.
inline constexpr wchar_t kTrayWindowClass[] = L"LumivaneTray";
inline constexpr wchar_t kOpenSettingsMessage[] = L"Lumivane.OpenSettings";

// The companion program beside the saver's own file, and its switch that opens the settings.
inline constexpr wchar_t kCompanionProgram[] = L"Lumivane.exe";
inline constexpr wchar_t kCompanionSettingsSwitch[] = L"--settings";

// Folder names: the data folder under the local application data (and its older name), the
// photo tree under the photo directory, and the fixed candidate for the photo directory.
inline constexpr wchar_t kDataFolderName[] = L"Lumivane";
inline constexpr wchar_t kOldDataFolderName[] = L"LumivaneW";
inline constexpr wchar_t kPhotoTreeName[] = L"Lumivane";
inline constexpr wchar_t kScreenSaverFolderName[] = L"Lumivane ScreenSaver";
inline constexpr wchar_t kWallpaperFolderName[] = L"Lumivane Wallpaper";
inline constexpr wchar_t kWallpaperCacheFolderName[] = L"Wallpaper Cache";
inline constexpr wchar_t kFixedItemsFolder[] = L"C:\\LumivaneItems";
// Folders of the data folder that the companion application uses.
inline constexpr wchar_t kSlidesFolderName[] = L"Slides";
inline constexpr wchar_t kUpdatesFolderName[] = L"Updates";

// The companion's folder and settings file under the roaming application data, and the key read
// from that file.
inline constexpr wchar_t kCompanionRoamingFolder[] = L"Lumivane";
inline constexpr wchar_t kCompanionSettingsFile[] = L"Lumivane\\Settings";
inline constexpr char kCompanionDataDirKey[] = "data-dir";

// The word of crash reports written by the saver.
inline constexpr char kCrashAppWord[] = "saver-win";
