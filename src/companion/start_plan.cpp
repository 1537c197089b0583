#include "companion/start_plan.h"

#include "library/companion.h"
#include "library/system_text.h"

StartPlan PlanStart(const std::vector<std::wstring>& arguments, bool instanceRuns) {
    StartPlan plan;
    // A second start, with or without the switch, is a user asking for the settings: the running
    // instance shows them, and no second tray icon appears.
    if (instanceRuns) {
        plan.handOver = true;
        return plan;
    }
    plan.runTray = true;
    for (const std::wstring& argument : arguments)
        if (LowerCase(argument) == kCompanionSettingsSwitch) plan.openSettings = true;
    return plan;
}
