#include "effects/single_effect.h"

#include <algorithm>

#include "effects/captions.h"
#include "effects/painting.h"
#include "effects/timing.h"
#include "library/random.h"
#include "photos/photo_source.h"

SingleEffect::SingleEffect(EffectKind effectKind, EffectOptions options, PhotoSource& photoSource)
    : kind(effectKind), pauseIndex(options.pauseIndex), fit(options.fit), source(&photoSource) {}

double SingleEffect::Hold() const { return HoldSeconds(kind, pauseIndex) * 1000.0; }

double SingleEffect::CycleLength() const {
    switch (kind) {
    case EffectKind::Slider: return Hold() + 6200;      // 100 + 3000 in, 3000 out, 100
    case EffectKind::Panner: return Hold() + 3200;      // 100 + 3000 in, the move, 100
    case EffectKind::Reflections: return Hold() + 4200; // 2200 in, 2000 out
    default: return Hold() + 7400;                      // 1300 + 3000 in, 3000 out, 100
    }
}

void SingleEffect::Draw(const Canvas& canvas, double elapsed) {
    // The stage of Reflections shows on every frame, also while no photo does.
    if (kind == EffectKind::Reflections) FillVerticalGradient(canvas, 0x0A0A0A, 0x1A1A1A);
    if (slot.shownAt < 0 || elapsed - slot.shownAt >= CycleLength()) {
        if (!slot.Advance(elapsed)) {
            // The next photo is late: the old one isn't drawn any more, the screen stays dark.
            RequestPhoto(canvas);
            return;
        }
        const CameraMove move = CameraMoveOfRow(RandomU32() % 5);
        pan = move.pan;
        zoom = move.zoom;
        composite.reset();
    }
    // From the first frame of a photo on, its successor is on its way.
    RequestPhoto(canvas);
    if (slot.current.pixels.empty()) return; // a photo that failed to decode takes its turn dark
    const double onStage = elapsed - slot.shownAt;
    switch (kind) {
    case EffectKind::Slider: DrawSlider(canvas, onStage); break;
    case EffectKind::Panner: DrawPanner(canvas, onStage); break;
    case EffectKind::Reflections: DrawReflections(canvas, onStage); break;
    default: DrawFader(canvas, onStage); break;
    }
    canvas.target->SetTransform(Matrix3x2F{});
}

void SingleEffect::RequestPhoto(const Canvas& canvas) {
    if (slot.pending || slot.ready) return; // costs two flag tests on most frames
    const auto w = static_cast<int32_t>(canvas.width);
    const auto h = static_cast<int32_t>(canvas.height);
    if (kind == EffectKind::Panner) {
        // Up to 1.2 times the canvas, the largest zoom, within what one device bitmap holds.
        const double m = std::max(w, h);
        const double f = std::min(canvas.target->MaximumBitmapSize() / m, 1.2);
        slot.Request(*source, static_cast<int32_t>(f * w), static_cast<int32_t>(f * h),
                     PhotoSource::Shape::Letterbox);
        return;
    }
    if (kind == EffectKind::Reflections) {
        // The photo fits the frame of 80% exactly on one axis.
        slot.Request(*source, 4 * w / 5, 4 * h / 5, PhotoSource::Shape::Exact);
        return;
    }
    slot.Request(*source, w, h, fit ? PhotoSource::Shape::Cover : PhotoSource::Shape::Letterbox);
}

void SingleEffect::DrawPhoto(const Canvas& canvas, const SurfaceBitmap* bitmap) {
    if (bitmap)
        canvas.target->DrawBitmap(*bitmap, RectF{0, 0, canvas.width, canvas.height}, 1.0f, nullptr);
    DrawCaption(canvas, slot.current.title);
}

void SingleEffect::ReleaseTargetResources() {
    slot.ReleaseBitmaps();
    composite.reset();
}
