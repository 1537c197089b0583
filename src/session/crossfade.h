#pragma once

#include <cstdint>

#include "session/saver_session.h"

// The plain GDI view's rules, apart from the drawing calls: its timing, the alpha of each step of a
// fade and where the caption stands. ScreenWindow's LoadNext, StartFade, AdvanceFade and
// CrossfadeCaption (defined in crossfade.cpp) carry the per-window states.

// The window timer of a fade ticks this often, and a fade has this many ticks.
inline constexpr uint32_t kFadeTickMs = 30;
inline constexpr int32_t kFadeSteps = 100;

// How long one photo lasts, its fade included, for a SaverPause index (0 to 5; anything else is
// taken for the default, 2).
uint32_t CrossfadePeriodMs(int32_t pauseIndex);

// The constant alpha with which the next photo is laid over the current one at `fadeStep`:
// fadeStep x 255 / 100, cut towards zero; 0 outside a fade.
uint8_t FadeAlpha(int32_t fadeStep);

// The caption's font height (a character height, in pixels) and the rectangles of its text and of
// its shadow, which lies 2 pixels further right and down. The text stands at the bottom left, one
// font height in from the left, right and bottom edges.
struct CaptionLayout {
    int32_t fontHeight = 0;
    SaverSession::Rectangle text;
    SaverSession::Rectangle shadow;
};
CaptionLayout LayOutCaption(SaverMode mode, int32_t width, int32_t height);
