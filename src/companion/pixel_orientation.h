#pragma once

#include <cstdint>

#include "companion/pixel_image.h"

// Turns `source` by the flip-rotator's `transform` (OrientationTransform of the orientation tag:
// the quarter turns clockwise in its low two bits, then a horizontal flip 8, a vertical flip 16)
// into `upright`, which gets OrientedSize of the source. The pixels move themselves, on every
// system: a transform 0 copies. False, with `upright` empty, when memory is short.
bool OrientPixels(const PixelImage& source, uint32_t transform, PixelImage& upright);
