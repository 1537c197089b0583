// The Panner: a camera that drifts sideways over the photo while it zooms in.
#include "effects/painting.h"
#include "effects/single_effect.h"
#include "effects/timing.h"

CameraMove CameraMoveOfRow(uint32_t row) {
    // Each row's overhang at its zoom, (zoom - 1) / 2 of the width per side, covers its travel,
    // so the moved picture covers the canvas at every moment.
    static constexpr CameraMove kMoves[5] = {
        {0.1, 1.2}, {0.05, 1.1}, {0.0, 1.1}, {-0.05, 1.1}, {-0.1, 1.2},
    };
    return kMoves[row % 5];
}

void SingleEffect::DrawPanner(const Canvas& canvas, double elapsed) {
    const double u = elapsed - 100;
    if (u < 0) return;
    double opacity = 1.0, progress = 0;
    if (u < 3000) {
        opacity = Ease(u / 3000); // fades in at rest
    } else {
        const double q = (u - 3000) / Hold();
        if (q >= 1.0) return;
        if (q < 0.85) {
            progress = EaseIn(q / 0.85) * 0.85;
        } else {
            // The last 15% fades out while the move picks up again from rest.
            const double b = EaseIn((q - 0.85) / 0.15);
            opacity = 1 - b;
            progress = b * 0.15 + 0.85;
        }
    }
    // Scales about the middle of the canvas, then shifts sideways.
    const float w = canvas.width, h = canvas.height;
    const auto z = static_cast<float>((zoom - 1) * progress + 1);
    const auto x = static_cast<float>(progress * pan * canvas.width);
    canvas.target->SetTransform(
        MultiplyTransforms(MultiplyTransforms(Translation(-w * 0.5f, -h * 0.5f), Scaling(z, z)),
                           Translation(x + w * 0.5f, h * 0.5f)));
    const SurfaceBitmap* bitmap = slot.Bitmap(*canvas.target);
    DrawWithOpacity(canvas, static_cast<float>(opacity), [&] { DrawPhoto(canvas, bitmap); });
}
