#include "companion/settings_form.h"

#include "diagnostics/string_table.h"
#include "library/settings.h"
#include "library/system_text.h"

namespace {

constexpr const wchar_t* kShowValues[SettingsForm::ShowCount] = {
    L"", kShowSlider, kShowPanner, kShowReflections, kShowFaller, kShowFourUp, kShowRandom};

bool ReadFlag(const NumberOption& option) {
    return Settings::ReadDword(option.name, option.fallback) != 0;
}

// A path as compared: lower case, without a trailing backslash unless it is a drive's root.
std::wstring FolderKey(const std::wstring& folder) {
    std::wstring key = LowerCase(folder);
    while (key.size() > 3 && key.back() == L'\\') key.pop_back();
    return key;
}

} // namespace

bool SettingsForm::operator==(const SettingsForm& other) const {
    return show == other.show && pauseIndex == other.pauseIndex && fit == other.fit &&
           shuffle == other.shuffle && titles == other.titles &&
           importedTitles == other.importedTitles && language == other.language &&
           folders == other.folders && budgetIndex == other.budgetIndex;
}

const wchar_t* ShowValue(SettingsForm::Show show) {
    return show >= 0 && show < SettingsForm::ShowCount ? kShowValues[show] : L"";
}

SettingsForm ReadSettingsForm(const std::wstring& defaultFolder) {
    SettingsForm form;
    const std::wstring show = Settings::ReadString(kValueSaverShow);
    // The empty text is the Fader's own value; anything unknown is the Fader too.
    for (int32_t choice = 1; choice < SettingsForm::ShowCount; ++choice)
        if (show == kShowValues[choice]) form.show = static_cast<SettingsForm::Show>(choice);
    form.pauseIndex = PauseIndex(Settings::ReadString(kValueSaverPause));
    form.fit = ReadFlag(kOptionSaverFit);
    form.shuffle = ReadFlag(kOptionSaverRandom);
    form.titles = ReadFlag(kOptionSaverTitle);
    form.importedTitles = ReadFlag(kOptionSaverImportedTitle);
    const std::wstring language = Settings::ReadString(kValueLanguage);
    for (int32_t number = 0; number < kLanguageCount; ++number)
        if (language == kLanguageCodes[number]) form.language = number + 1;
    // A size that isn't one of the choices (set by hand) shows as the default.
    const int32_t budget = Settings::ReadDword(kValueImportBudget, 0);
    for (int32_t choice = 0; choice < kBudgetCount; ++choice)
        if (budget == kBudgetMegabytes[choice]) form.budgetIndex = choice;
    if (auto folders = Settings::ReadStrings(kValueImportFolders)) {
        form.folders = std::move(*folders);
    } else if (!defaultFolder.empty()) {
        form.folders = {defaultFolder};
    }
    return form;
}

void WriteSettingsForm(const SettingsForm& form) {
    Settings::WriteString(kValueSaverShow, ShowValue(form.show));
    const int32_t pause = form.pauseIndex >= 0 && form.pauseIndex < kPauseCount
                              ? form.pauseIndex
                              : kDefaultPauseIndex;
    Settings::WriteString(kValueSaverPause, std::wstring(1, static_cast<wchar_t>(L'0' + pause)));
    Settings::WriteDword(kValueSaverFit, form.fit ? 1 : 0);
    Settings::WriteDword(kValueSaverRandom, form.shuffle ? 1 : 0);
    Settings::WriteDword(kValueSaverTitle, form.titles ? 1 : 0);
    Settings::WriteDword(kValueSaverImportedTitle, form.importedTitles ? 1 : 0);
    const bool known = form.language > 0 && form.language <= kLanguageCount;
    Settings::WriteString(kValueLanguage, known ? kLanguageCodes[form.language - 1] : L"");
    Settings::WriteStrings(kValueImportFolders, form.folders);
    const bool chosen = form.budgetIndex >= 0 && form.budgetIndex < kBudgetCount;
    Settings::WriteDword(kValueImportBudget,
                         kBudgetMegabytes[chosen ? form.budgetIndex : kDefaultBudgetIndex]);
}

uint64_t ImportBudgetBytes() {
    const int32_t megabytes = Settings::ReadDword(kValueImportBudget, 0);
    const int32_t stored = megabytes > 0 ? megabytes : kBudgetMegabytes[kDefaultBudgetIndex];
    return uint64_t(stored) * 1024 * 1024;
}

size_t AddFolder(std::vector<std::wstring>& folders, const std::wstring& folder) {
    const std::wstring key = FolderKey(folder);
    for (size_t i = 0; i < folders.size(); ++i)
        if (FolderKey(folders[i]) == key) return i;
    folders.push_back(folder);
    return folders.size() - 1;
}
