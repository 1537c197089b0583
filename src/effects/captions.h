#pragma once

#include <memory>
#include <string>

#include "effects/effect.h"

// A text format in the captions' font, light "Segoe UI", at `size` units; null when the text
// system can't make it.
std::unique_ptr<TextFormat> MakeTextFormat(const Canvas& canvas, float size,
                                           TextAlignment alignment, bool wrap);

// Writes `title` at the top left of the canvas, white over a hard black copy one `scale` down and
// to the right, wrapping inside margins of 32 x `scale`. Nothing for an empty title. It paints
// under whatever layer and transform are in force, so it fades and moves with the photo.
void DrawCaption(const Canvas& canvas, const std::wstring& title);
