#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "session/saver_mode.h"

// What the command line asks for: a mode to run with its preview parent, or to end at once with
// exit code 0 and no trace (an unknown switch, a preview parent that isn't a window).
struct CommandLineChoice {
    bool run = false;
    SaverMode mode = SaverMode::Settings;
    uint64_t handle = 0; // the preview parent; 0 for every other mode
};

// Decides from the arguments behind the program's own path. `isWindow` answers whether a number
// is the handle of a window; it is asked only in preview.
CommandLineChoice ParseCommandLine(const std::vector<std::wstring>& arguments,
                                   const std::function<bool(uint64_t)>& isWindow);
