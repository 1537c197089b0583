#pragma once

#include <cstdint>

#include "library/window_handle.h"

// How the program was started: over all monitors, inside the preview pane, or for its settings.
enum class SaverMode : int32_t { Fullscreen = 0, Preview = 1, Settings = 2 };

// The word under which crash reports name the stage of a mode.
const char* StageWord(SaverMode mode);
