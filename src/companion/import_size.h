#pragma once

#include <vector>

#include "photos/image_decoder.h"

// How large the import writes its copies: large enough to fill the largest monitor without
// scaling up on show, and no larger, so that the screen-saver folder stays small.

// The least box every copy covers: the largest width and the largest height among `monitors`
// (sizes in physical pixels, per-monitor DPI applied), and at least 1920 x 1080. Taking the two
// maxima apart covers a landscape and a portrait monitor side by side with one box.
ImageSize CopyTargetBox(const std::vector<ImageSize>& monitors);

// The size of the copy of an upright photo of `photo` pixels: scaled by one factor so that it
// just covers `box` (either side may then stand out: a portrait photo for a landscape box is tall,
// and the saver crops or letterboxes it), but never scaled up, the sides rounded to the nearest
// whole pixel. A side of 0 counts as 1.
ImageSize CopySize(ImageSize photo, ImageSize box);
