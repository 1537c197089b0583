#pragma once

#include <cstdint>

#include "effects/effect.h"

// The timing curves of every motion and fade: cubic Bezier curves through (0,0) and (1,1) with
// the control points (x1,y1) and (x2,y2), evaluated at the point whose x is t (clamped to 0..1).
double CubicBezier(double x1, double y1, double x2, double y2, double t);
double Ease(double t);    // (0.25, 0.1) (0.25, 1.0): quick start, long soft landing
double EaseIn(double t);  // (0.42, 0) (1, 1): starts slowly
double EaseOut(double t); // (0, 0) (0.58, 1): ends slowly

// How many seconds a photo rests in `kind` for the pause index of SaverPause, clamped to 0..5.
// Faller has no rest of its own and gets the Fader's column.
int32_t HoldSeconds(EffectKind kind, int32_t pauseIndex);

// The opacity of a photo that fades in and out in place (Fader, FourUp), `elapsed` milliseconds
// after it took the stage: 1300 dark, 3000 in by Ease, `hold` at full strength, 3000 out by
// EaseIn, then 0.
double PhotoOpacity(double elapsed, double hold);
