// The two plain timelines of SingleEffect: the photo fades in place, or slides through.
#include "effects/painting.h"
#include "effects/single_effect.h"
#include "effects/timing.h"

void SingleEffect::DrawFader(const Canvas& canvas, double elapsed) {
    // The upload happens in the dark first 1300 ms, where nobody sees it.
    const SurfaceBitmap* bitmap = slot.Bitmap(*canvas.target);
    DrawWithOpacity(canvas, static_cast<float>(PhotoOpacity(elapsed, Hold())),
                    [&] { DrawPhoto(canvas, bitmap); });
}

void SingleEffect::DrawSlider(const Canvas& canvas, double elapsed) {
    // Enters from one width to the left while it fades up, rests, and leaves to the right over
    // twice that distance while it fades away.
    const double width = canvas.width;
    const double u = elapsed - 100;
    if (u < 0) return;
    double x = 0, opacity = 1.0;
    if (u < 3000) {
        const double e = Ease(u / 3000);
        x = -width * (1 - e);
        opacity = e;
    } else if (const double v = u - 3000; v >= Hold()) {
        const double b = EaseIn((v - Hold()) / 3000);
        if (b >= 1.0) return;
        x = 2 * width * b;
        opacity = 1 - b;
    }
    const SurfaceBitmap* bitmap = slot.Bitmap(*canvas.target);
    canvas.target->SetTransform(Translation(static_cast<float>(x), 0));
    DrawWithOpacity(canvas, static_cast<float>(opacity), [&] { DrawPhoto(canvas, bitmap); });
}
