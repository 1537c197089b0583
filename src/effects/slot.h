#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "effects/drawing_surface.h"
#include "photos/photo_source.h"

// One photo as a Slot holds it. Moving hands over the pixels, the caption and the bitmap, and
// leaves the source without them.
struct SlotImage {
    int32_t width = 0; // 0 when empty
    int32_t height = 0;
    std::vector<uint32_t> pixels;          // as PhotoSource::Photo; kept after the bitmap is made
    std::wstring title;                    // the caption to show; empty for none
    std::unique_ptr<SurfaceBitmap> bitmap; // made from `pixels` on first use, only for `current`
};

// The device bitmap of `image`, uploaded from its pixels on first use; null when it has no pixels
// or the upload failed, so that the next call tries again. `image` keeps it.
const SurfaceBitmap* UploadImage(DrawingSurface& target, SlotImage& image);

// One on-screen position of an effect: the photo on show, and behind it the one photo that is on
// its way or has arrived. Window thread only; nothing here blocks.
//
//   state      ready  pending  Request          completion      Advance
//   Idle       false  false    -> Requested     -               false
//   Requested  false  true     ignored          -> Delivered    false
//   Delivered  true   false    ignored          -               -> Idle, true
class Slot {
public:
    Slot() = default;
    // Completions under way hold a pointer to this Slot: it neither moves nor copies.
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    // Asks `source` for a next photo unless one is under way or waiting. Costs two flag tests
    // when the Slot is busy, so effects call it every frame.
    void Request(PhotoSource& source, int32_t width, int32_t height, PhotoSource::Shape shape);
    // Makes the delivered photo `current` and stamps `shownAt` with `now`; false when nothing
    // was delivered, and then nothing changes.
    bool Advance(double now);
    // The bitmap of `current`, uploaded from its pixels on first use; null when there is nothing
    // to draw or the upload failed (the next call tries again). The Slot keeps it.
    const SurfaceBitmap* Bitmap(DrawingSurface& target);
    // Drops both bitmaps after the target was lost; the pixels stay for the next upload.
    void ReleaseBitmaps();

    SlotImage current;     // the photo on show
    SlotImage next;        // the delivered photo waiting to be shown
    bool ready = false;    // `next` holds a delivered photo
    bool pending = false;  // a request is under way
    double shownAt = -1.0; // the time of the last Advance; negative before the first

private:
    // The completion: takes the pixels over without copying them.
    void Deliver(PhotoSource::Photo& photo);
};
