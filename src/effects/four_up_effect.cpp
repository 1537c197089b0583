#include "effects/four_up_effect.h"

#include <algorithm>

#include "effects/timing.h"
#include "library/random.h"
#include "photos/photo_source.h"

FourUpEffect::FourUpEffect(int32_t index, PhotoSource& photoSource)
    : pauseIndex(index), source(&photoSource) {}

void FourUpEffect::Draw(const Canvas& canvas, double elapsed) {
    const float scale = canvas.scale;
    const float c = (canvas.width - 16 * scale) * 0.5f; // column pitch less the gap
    const float cell = c - 8 * scale;
    for (int i = 0; i < 4; ++i) {
        if (i * 4000.0 > elapsed) continue; // slot i starts when the run is 4 i seconds old
        Slot& slot = slots[i];
        if ((slot.shownAt < 0 || elapsed - slot.shownAt >= hold[i] + 4400 + 3000) &&
            slot.Advance(elapsed)) {
            // One of three rests around the chosen one, each as likely.
            const int64_t row = std::clamp<int64_t>(
                int64_t{pauseIndex} - 1 + static_cast<int64_t>(RandomU32() % 3), 0, 5);
            hold[i] = HoldSeconds(EffectKind::FourUp, static_cast<int32_t>(row)) * 1000.0;
        }
        // Four canvases high: the column's width alone decides the size of nearly every photo.
        slot.Request(*source, static_cast<int32_t>(cell),
                     static_cast<int32_t>(canvas.height * 4.0f), PhotoSource::Shape::Exact);
    }
    // The top row is as high as its taller current photo, shown or not, so the bottom row moves
    // as soon as a top photo of another height takes the stage.
    const auto top = static_cast<float>(std::max(slots[0].current.height, slots[1].current.height));
    for (int i = 0; i < 4; ++i) {
        Slot& slot = slots[i];
        if (slot.shownAt < 0) continue;
        const SurfaceBitmap* bitmap = slot.Bitmap(*canvas.target);
        if (!bitmap) continue;
        const auto opacity = static_cast<float>(PhotoOpacity(elapsed - slot.shownAt, hold[i]));
        if (!(opacity > 0)) continue;
        // Photos stand at their own size at their cell's top left; the canvas cuts the rest.
        const float left = (16 * scale + c) * static_cast<float>(i % 2) + 8 * scale;
        const float y = (8 * scale + top) * static_cast<float>(i / 2) + 8 * scale;
        canvas.target->DrawBitmap(*bitmap,
                                  RectF{left, y, left + static_cast<float>(slot.current.width),
                                        y + static_cast<float>(slot.current.height)},
                                  opacity, nullptr);
    }
}

void FourUpEffect::ReleaseTargetResources() {
    for (Slot& slot : slots) slot.ReleaseBitmaps();
}
