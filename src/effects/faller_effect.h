#pragma once

#include <cstdint>

#include "effects/effect.h"
#include "effects/painting.h"
#include "effects/slot.h"

// Paper prints of photos falling down a dark stage, four at a time. Each print is a photo with a
// pale border and a soft shadow, slightly turned; it sinks past the screen at constant speed while
// it turns a little the other way, and comes back at the top as the next photo. Prints keep away
// from each other across the width. The show opens on a stage that is already full, under a black
// veil that lifts. No rest time, no fit, no captions.
//
// The show waits (black) until the four first photos are there; then each print is Falling (drawn,
// its next photo waiting behind it), Waiting (its fall is over and the next photo is late: not
// drawn), or Changing (the next photo takes the top at once, within the frame).
class FallerEffect final : public Effect {
public:
    explicit FallerEffect(PhotoSource& source);

    void Draw(const Canvas& canvas, double elapsed) override;
    void ReleaseTargetResources() override;

private:
    struct Print {
        Slot slot;               // shownAt marks the moment of leaving the top
        float sizePercent = 0;   // the photo's largest width in percent of the canvas width
        double duration = 0;     // length of the fall in milliseconds
        float x = 0;             // the centre as a share of the canvas width
        float rotationStart = 0; // degrees, at the top
        float rotationEnd = 0;   // degrees, at the end of the fall, turned the other way
        float border = 0;        // width of the pale border in pixels
        Shadow shadow;
    };

    // Asks for the print's next photo in a newly drawn size, unless one is on its way or waiting.
    void RequestPrint(const Canvas& canvas, Print& print);
    // Sets up print `index` for the photo that has just become current: where, how turned, how
    // long its fall lasts, its border and its shadow.
    void PlacePrint(const Canvas& canvas, int index, double duration);
    void DrawPrint(const Canvas& canvas, Print& print, double elapsed);

    PhotoSource* source;
    Print prints[4];         // drawn in index order, so the last lies on top
    double startedAt = -1.0; // when the show opened; negative while it waits for its first photos
};
