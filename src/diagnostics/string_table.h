#pragma once

#include <cstdint>
#include <string>

// The English texts that this program shows; each is also its own key in the table.
inline constexpr wchar_t kNoPhotosText[] =
    L"Lumivane has no photos yet. Open it from the system tray to sign in.";
inline constexpr wchar_t kOpenSettingsText[] =
    L"Open Lumivane to change the screen saver's settings.";

// The languages that have texts, by language number: 0 is English, which needs no translation.
inline constexpr int32_t kLanguageCount = 7;
inline constexpr const wchar_t* kLanguageCodes[kLanguageCount] = {L"en", L"de", L"es", L"fr",
                                                                  L"it", L"nl", L"pt"};

// Texts in the language of the process. A call site names the English text and gets it back
// whenever nothing better is known, so a missing translation never leaves an empty place.
struct StringTable {
    // Chooses the language once, on the first thread, before any Get: the value Language when it
    // is exactly one of "en", "de", "es", "fr", "it", "nl", "pt", else the system's user
    // interface language. Asks the system (src/platform/), then calls the one below.
    static void Init();
    // The same with the system's language identifier given; only its primary language counts.
    static void Init(uint16_t systemLanguage);
    // The text of `key` in the process's language, or `key` itself; the reference stays valid to
    // the end of the process, and asking twice gives the same string. Any thread may call it.
    static const std::wstring& Get(const std::wstring& key);
};
