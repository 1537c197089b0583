#pragma once

#include <cstdint>
#include <string>

#include "library/companion.h"

// The options of the store as both programs read them: one list of names, forms and fallbacks.
// The saver reads them at the start of a run; the companion's settings dialog reads them with the
// same fallbacks and writes them in the same forms.

// A REG_DWORD option, read as a signed number; `fallback` when it is missing or of another type.
// Any value other than 0 counts as on.
struct NumberOption {
    const wchar_t* name;
    int32_t fallback;
};

inline constexpr NumberOption kOptionSaverRandom{kValueSaverRandom, 0};
inline constexpr NumberOption kOptionSaverFit{kValueSaverFit, 0};
inline constexpr NumberOption kOptionSaverTitle{kValueSaverTitle, 1};
inline constexpr NumberOption kOptionSaverImportedTitle{kValueSaverImportedTitle, 1};

// SaverShow, compared exactly: these texts choose a presentation, any other text (the empty one
// included) is the Fader.
inline constexpr wchar_t kShowRandom[] = L"random";
inline constexpr wchar_t kShowFaller[] = L"faller";
inline constexpr wchar_t kShowFourUp[] = L"fourup";
inline constexpr wchar_t kShowPanner[] = L"kber";
inline constexpr wchar_t kShowSlider[] = L"slider";
inline constexpr wchar_t kShowReflections[] = L"reflections";

// SaverPause: one character "0" to "5" picks a pause index; anything else is index 2.
inline constexpr int32_t kPauseCount = 6;
inline constexpr int32_t kDefaultPauseIndex = 2;
// How long a photo rests at each pause index, as the user chooses it.
inline constexpr int32_t kPauseSeconds[kPauseCount] = {3, 5, 10, 20, 30, 60};

// The pause index of a SaverPause text.
int32_t PauseIndex(const std::wstring& value);
