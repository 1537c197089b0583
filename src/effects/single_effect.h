#pragma once

#include <cstdint>
#include <memory>

#include "effects/effect.h"
#include "effects/slot.h"

// One photo at a time on the whole stage, for four kinds: Fader fades it in place, Slider slides
// it through from left to right, Panner moves a camera over it, Reflections turns it in and out
// as a framed picture. The kind decides how long a photo stays and which member draws it.
//
// Each photo is Waiting (no photo yet, or its successor is late: nothing drawn), On stage (its
// timeline runs from slot.shownAt), or Changing (its turn is over and the next has arrived: the
// new photo takes the stage at time 0 within the same frame).
class SingleEffect final : public Effect {
public:
    SingleEffect(EffectKind kind, EffectOptions options, PhotoSource& source);

    void Draw(const Canvas& canvas, double elapsed) override;
    void ReleaseTargetResources() override;

    // The time from a photo's shownAt to the earliest change to the next, in milliseconds.
    double CycleLength() const;

private:
    double Hold() const; // the photo's rest in milliseconds
    void RequestPhoto(const Canvas& canvas);
    // The timelines, each with `elapsed` counted from slot.shownAt.
    void DrawFader(const Canvas& canvas, double elapsed);
    void DrawSlider(const Canvas& canvas, double elapsed);
    void DrawPanner(const Canvas& canvas, double elapsed);
    void DrawReflections(const Canvas& canvas, double elapsed);
    // Renders the framed photo with its shadow, mirror image and title into `composite`.
    void BuildComposite(const Canvas& canvas);
    // The photo stretched over the canvas, then its caption, under one layer and transform.
    void DrawPhoto(const Canvas& canvas, const SurfaceBitmap* bitmap);

    EffectKind kind;
    int32_t pauseIndex;
    bool fit;
    PhotoSource* source;
    Slot slot;
    double pan = 0;  // the camera move of the photo on stage: travel as a share of the width
    double zoom = 0; // and magnification at the end of the move
    std::unique_ptr<SurfaceBitmap> composite; // the framed picture of the photo on stage
};

// Draws `picture` over the canvas turned by `angle` degrees about its vertical middle and moved
// `depth` away from the viewer, in strips 4 pixels wide; flat, as one bitmap, at 0 and 0.
void DrawPerspective(const Canvas& canvas, const SurfaceBitmap& picture, double depth,
                     double angle);

// The camera move of a row drawn for each new photo.
struct CameraMove {
    double pan;
    double zoom;
};
CameraMove CameraMoveOfRow(uint32_t row);
