#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "library/options.h"

// The choices of disk for the imported copies, in megabytes; 2 GB unless the user chooses.
inline constexpr int32_t kBudgetMegabytes[] = {500, 1024, 2048, 5120, 10240, 20480, 51200};
inline constexpr int32_t kBudgetCount = 7;
inline constexpr int32_t kDefaultBudgetIndex = 2;

// What the settings dialog shows and edits: the options of the store as choices, read with the
// saver's own fallbacks, and the companion's list of photo folders. The dialog only moves these
// values to and from its controls; reading and writing the store happens here.
struct SettingsForm {
    // The presentation choices, in the order the dialog lists them.
    enum Show : int32_t { Fader, Slider, Panner, Reflections, Faller, FourUp, Random, ShowCount };

    Show show = Fader;
    int32_t pauseIndex = kDefaultPauseIndex; // 0 to kPauseCount - 1
    bool fit = kOptionSaverFit.fallback != 0;
    bool shuffle = kOptionSaverRandom.fallback != 0;
    bool titles = kOptionSaverTitle.fallback != 0;
    bool importedTitles = kOptionSaverImportedTitle.fallback != 0;
    int32_t language = 0;              // 0 the system's, else 1 + the number of kLanguageCodes
    std::vector<std::wstring> folders; // the photo folders that the import brings in
    int32_t budgetIndex = kDefaultBudgetIndex; // the disk the copies may take: kBudgetMegabytes

    bool operator==(const SettingsForm& other) const;
    bool operator!=(const SettingsForm& other) const { return !(*this == other); }
};

// The companion's own values of the options key, which the saver neither reads nor rewrites (it
// rewrites REG_SZ values only): the photo folders, a REG_MULTI_SZ, and the most disk that the
// imported copies may take, in megabytes, a REG_DWORD.
inline constexpr wchar_t kValueImportFolders[] = L"ImportFolders";
inline constexpr wchar_t kValueImportBudget[] = L"ImportBudget";

// The SaverShow text of each presentation choice: empty for the Fader.
const wchar_t* ShowValue(SettingsForm::Show show);

// The form of the store's values, as the saver reads them: a value missing, of another type or
// out of range gives the saver's default. Without a stored folder list, the list holds
// `defaultFolder` (the user's Pictures folder), if it isn't empty.
SettingsForm ReadSettingsForm(const std::wstring& defaultFolder);

// Writes every value of `form` in the store's forms: numbers 0 or 1 as REG_DWORD, SaverShow,
// SaverPause and Language as REG_SZ, the folders as REG_MULTI_SZ.
void WriteSettingsForm(const SettingsForm& form);

// The disk that the imported copies may take, in bytes: the stored ImportBudget, any size above 0
// that an administrator set included, else 2 GB.
uint64_t ImportBudgetBytes();

// Adds `folder` to `folders` unless a folder of the same path (ignoring case and a trailing
// backslash) is there; gives the index where it stands.
size_t AddFolder(std::vector<std::wstring>& folders, const std::wstring& folder);
