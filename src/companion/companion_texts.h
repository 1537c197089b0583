#pragma once

#include <initializer_list>
#include <string>
#include <utility>

// The English texts that the tray application shows from its code; each is also its key in the
// string table. The texts of the settings dialog's resource are keys in the same way.
inline constexpr wchar_t kSettingsMenuText[] = L"&Settings…";
inline constexpr wchar_t kStartSaverMenuText[] = L"Start screen sa&ver now";
inline constexpr wchar_t kOpenFolderMenuText[] = L"&Open photo folder";
inline constexpr wchar_t kExitMenuText[] = L"E&xit";
inline constexpr wchar_t kRandomText[] = L"Random";
inline constexpr wchar_t kSecondsText[] = L"%1 seconds";
inline constexpr wchar_t kSystemLanguageText[] = L"System language";
inline constexpr wchar_t kNotFoundText[] = L"(not found)";
inline constexpr wchar_t kPickFolderText[] = L"Choose a folder of photos";
// The import's state.
inline constexpr wchar_t kImportingText[] = L"Importing %1 of %2 photos";
inline constexpr wchar_t kPhotosInText[] = L"%1 photos, %2";
inline constexpr wchar_t kFirstPhotosText[] =
    L"Your photos are in. The screen saver shows them from now on.";

// `text` with "%1" replaced by `first` and "%2" by `second`. A plain replacement rather than a
// format string, so a translation can't make the program read arguments that aren't there.
inline std::wstring FillIn(std::wstring text, const std::wstring& first,
                           const std::wstring& second = {}) {
    for (const auto& [mark, value] : {std::pair{L"%1", &first}, std::pair{L"%2", &second}})
        if (const size_t at = text.find(mark); at != std::wstring::npos)
            text.replace(at, 2, *value);
    return text;
}

// All of them, for whoever must know that each has its translations.
inline constexpr const wchar_t* kCompanionTexts[] = {
    kSettingsMenuText, kStartSaverMenuText, kOpenFolderMenuText, kExitMenuText,
    kRandomText,       kSecondsText,        kSystemLanguageText, kNotFoundText,
    kPickFolderText,   kImportingText,      kPhotosInText,       kFirstPhotosText};
