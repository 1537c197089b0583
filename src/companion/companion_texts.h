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

// All of them, for whoever must know that each has its translations.
inline constexpr const wchar_t* kCompanionTexts[] = {
    kSettingsMenuText, kStartSaverMenuText, kOpenFolderMenuText, kExitMenuText,  kRandomText,
    kSecondsText,      kSystemLanguageText, kNotFoundText,       kPickFolderText};
