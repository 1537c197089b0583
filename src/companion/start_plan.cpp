#include "companion/start_plan.h"

#include "library/companion.h"
#include "library/system_text.h"

namespace {

constexpr wchar_t kImportSwitch[] = L"--import";

bool Has(const std::vector<std::wstring>& arguments, const wchar_t* wanted) {
    for (const std::wstring& argument : arguments)
        if (LowerCase(argument) == wanted) return true;
    return false;
}

} // namespace

StartPlan PlanStart(const std::vector<std::wstring>& arguments, bool instanceRuns) {
    StartPlan plan;
    // An import on its own takes turns with the tray's imports; it shows nothing.
    if (Has(arguments, kImportSwitch)) {
        plan.importOnce = true;
        return plan;
    }
    // A second start, with or without the switch, is a user asking for the settings: the running
    // instance shows them, and no second tray icon appears.
    if (instanceRuns) {
        plan.handOver = true;
        return plan;
    }
    plan.runTray = true;
    plan.openSettings = Has(arguments, kCompanionSettingsSwitch);
    return plan;
}
