#include "effects/slot.h"

#include <utility>

void Slot::Request(PhotoSource& source, int32_t width, int32_t height, PhotoSource::Shape shape) {
    if (pending || ready) return;
    pending = true;
    // A plain pointer: completions run only while the render loop dispatches messages, and the
    // Slot's effect lives until the loop has ended; a completion left then is dropped unrun.
    source.Next(width, height, shape,
                [slot = this](PhotoSource::Photo& photo) { slot->Deliver(photo); });
}

void Slot::Deliver(PhotoSource::Photo& photo) {
    next.width = photo.width;
    next.height = photo.height;
    next.pixels = std::move(photo.pixels);
    photo.pixels.clear();
    next.title = photo.title;
    ready = true;
    pending = false;
}

bool Slot::Advance(double now) {
    if (!ready) return false;
    // The old photo's pixels, caption and device bitmap go at once.
    current = std::move(next);
    next = SlotImage{};
    ready = false;
    shownAt = now;
    return true;
}

const SurfaceBitmap* UploadImage(DrawingSurface& target, SlotImage& image) {
    if (!image.bitmap && !image.pixels.empty()) {
        image.bitmap =
            target.CreateBitmap(static_cast<uint32_t>(image.width),
                                static_cast<uint32_t>(image.height), image.pixels.data());
    }
    return image.bitmap.get();
}

const SurfaceBitmap* Slot::Bitmap(DrawingSurface& target) { return UploadImage(target, current); }

void Slot::ReleaseBitmaps() {
    current.bitmap.reset();
    next.bitmap.reset();
}
