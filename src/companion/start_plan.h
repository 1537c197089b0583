#pragma once

#include <string>
#include <vector>

// How a start of Lumivane.exe goes. There is one tray instance per user: a later start hands its
// request over to the running one, through the tray window's settings message, and ends.
struct StartPlan {
    bool handOver = false;     // post the settings request to the running instance and end
    bool runTray = false;      // become the tray instance
    bool openSettings = false; // the new tray instance opens its settings dialog at once
    bool importOnce = false;   // run one import of the stored folders and end, with no tray
};

// The plan for the program's arguments (without its own path) when another instance does or
// doesn't run. "--settings", in any case, asks for the settings dialog; "--import" runs one
// import for scripts and administrators, whether or not the tray runs; other arguments are
// passed over, so a start from an older shortcut still brings the tray up.
StartPlan PlanStart(const std::vector<std::wstring>& arguments, bool instanceRuns);
