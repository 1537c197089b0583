#include "effects/timing.h"

#include <algorithm>

double CubicBezier(double x1, double y1, double x2, double y2, double t) {
    if (t <= 0) t = 0;
    if (t > 1) t = 1;
    // Bisection on the curve's parameter: x grows with it for every control point in 0..1.
    double lo = 0, hi = 1, a = 0, b = 0, c = 0;
    for (int i = 0; i < 30; ++i) {
        const double m = (lo + hi) * 0.5;
        a = 3 * (1 - m) * (1 - m) * m;
        b = 3 * (1 - m) * m * m;
        c = m * m * m;
        const double x = a * x1 + b * x2 + c;
        if (t > x) lo = m;
        else hi = m;
    }
    return a * y1 + b * y2 + c;
}

double Ease(double t) { return CubicBezier(0.25, 0.1, 0.25, 1.0, t); }
double EaseIn(double t) { return CubicBezier(0.42, 0, 1, 1, t); }
double EaseOut(double t) { return CubicBezier(0, 0, 0.58, 1, t); }

int32_t HoldSeconds(EffectKind kind, int32_t pauseIndex) {
    // Columns: Fader, Slider and Reflections; Panner; FourUp.
    static constexpr int32_t kHolds[6][3] = {
        {3, 3, 6}, {5, 5, 10}, {10, 10, 20}, {20, 15, 40}, {30, 20, 60}, {60, 60, 120},
    };
    const int32_t row = std::clamp(pauseIndex, 0, 5);
    const int column = kind == EffectKind::Panner ? 1 : kind == EffectKind::FourUp ? 2 : 0;
    return kHolds[row][column];
}

double PhotoOpacity(double elapsed, double hold) {
    const double u = elapsed - 1300;
    if (u < 0) return 0;
    if (u < 3000) return Ease(u / 3000);
    const double v = u - 3000;
    if (v < hold) return 1.0;
    const double r = v - hold;
    if (r < 3000) return 1 - EaseIn(r / 3000);
    return 0;
}
