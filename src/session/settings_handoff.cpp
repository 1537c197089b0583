#include "session/settings_handoff.h"

#include "diagnostics/string_table.h"
#include "library/companion.h"

namespace {

constexpr wchar_t kMessageTitle[] = L"Lumivane";

} // namespace

void HandOffSettings(const std::wstring& exePath, const HandoffCalls& calls) {
    if (calls.postToTray()) return;
    const size_t lastSlash = exePath.rfind(L'\\');
    const std::wstring folder =
        lastSlash == std::wstring::npos ? std::wstring() : exePath.substr(0, lastSlash + 1);
    if (calls.start(folder + kCompanionProgram, kCompanionSettingsSwitch)) return;
    calls.showMessage(StringTable::Get(kOpenSettingsText), kMessageTitle);
}
