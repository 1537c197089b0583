#pragma once

// The English texts that the tray application shows from its code; each is also its key in the
// string table. The texts of the settings dialog's resource are keys in the same way.
inline constexpr wchar_t kSettingsMenuText[] = L"&Settings…";
inline constexpr wchar_t kStartSaverMenuText[] = L"Start screen sa&ver now";
inline constexpr wchar_t kOpenFolderMenuText[] = L"&Open photo folder";
inline constexpr wchar_t kExitMenuText[] = L"E&xit";
inline constexpr wchar_t kRandomText[] = L"Random";
inline constexpr wchar_t kSecondsText[] = L"%d seconds";
inline constexpr wchar_t kSystemLanguageText[] = L"System language";
inline constexpr wchar_t kNotFoundText[] = L"(not found)";
inline constexpr wchar_t kPickFolderText[] = L"Choose a folder of photos";
// The import's state, with "%1" and "%2" for numbers and sizes.
inline constexpr wchar_t kImportingText[] = L"Importing %1 of %2 photos";
inline constexpr wchar_t kPhotosInText[] = L"%1 photos, %2";
inline constexpr wchar_t kFirstPhotosText[] =
    L"Your photos are in. The screen saver shows them from now on.";

// All of them, for whoever must know that each has its translations.
inline constexpr const wchar_t* kCompanionTexts[] = {
    kSettingsMenuText, kStartSaverMenuText, kOpenFolderMenuText, kExitMenuText,
    kRandomText,       kSecondsText,        kSystemLanguageText, kNotFoundText,
    kPickFolderText,   kImportingText,      kPhotosInText,       kFirstPhotosText};
