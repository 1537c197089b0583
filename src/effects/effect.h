#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "effects/drawing_surface.h"

class PhotoSource;

// The drawing context of one window for one frame, built fresh by the render loop.
struct Canvas {
    DrawingSurface* target = nullptr;            // BeginDraw has been called, EndDraw not yet
    const DrawingFactories* factories = nullptr; // the run's factory pair
    float width = 0;                             // pixels
    float height = 0;
    float scale = 1;               // pixels per design unit
    SurfaceLayer* layer = nullptr; // the window's one layer, or null
};

// The options that every effect of a run gets by value.
struct EffectOptions {
    int32_t pauseIndex = 2; // 0 to 5: how long a photo rests
    bool fit = false;       // fill the screen, cropped, rather than show the whole photo
};

enum class EffectKind : int32_t {
    Fader = 0,
    Faller = 1,
    FourUp = 2,
    Panner = 3,
    Slider = 4,
    Reflections = 5,
};

// What fills one window's frame. The render loop calls Draw once per frame with the time in
// milliseconds since the loop began, the same for all windows of a pass.
class Effect {
public:
    virtual ~Effect() = default;
    virtual void Draw(const Canvas& canvas, double elapsed) = 0;
    // Drops every device object kept from frame to frame, after the target was lost.
    virtual void ReleaseTargetResources() = 0;
};

// The kind of a run from the text of SaverShow.
EffectKind ParseEffectKind(const std::wstring& text);

// A new effect of `kind` that borrows `source`, which outlives it.
std::unique_ptr<Effect> MakeEffect(EffectKind kind, EffectOptions options, PhotoSource& source);
