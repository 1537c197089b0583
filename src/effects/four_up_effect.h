#pragma once

#include <cstdint>

#include "effects/effect.h"
#include "effects/slot.h"

// Four photos at once in two columns and two rows, each position with its own clock and its own
// rest, so that they fade in and out at different moments. The positions start four seconds apart
// after the run begins; from then on each goes through the Fader's states by itself. No
// background, no transform, no caption.
class FourUpEffect final : public Effect {
public:
    FourUpEffect(int32_t pauseIndex, PhotoSource& source);

    void Draw(const Canvas& canvas, double elapsed) override;
    void ReleaseTargetResources() override;

private:
    int32_t pauseIndex; // the middle of the three rests a photo may draw
    PhotoSource* source;
    // Slot i stands in column i % 2 and row i / 2: top left, top right, bottom left, bottom right.
    Slot slots[4];
    double hold[4] = {}; // milliseconds at rest of each slot's current photo
};
