#pragma once

#include <cstdint>

#include "session/saver_mode.h"

// Runs one mode to its end and gives the process exit code: the settings handoff, or one
// SaverSession over all monitors or in the preview pane, taken down in a fixed order.
int32_t RunMode(SaverMode mode, WindowHandle previewParent);
