#pragma once

#include <cstdint>

#include "effects/effect.h"
#include "effects/slot.h"

// Paints what `draw` paints at `opacity`: not at all at 0 or below, directly at 1 or above or
// when the window has no layer, otherwise inside the window's layer at that opacity.
template <class Paint>
void DrawWithOpacity(const Canvas& canvas, float opacity, const Paint& draw) {
    if (!(opacity > 0.0f)) return;
    if (opacity >= 1.0f || !canvas.layer) {
        draw();
        return;
    }
    canvas.target->PushLayer(*canvas.layer, opacity, nullptr);
    draw();
    canvas.target->PopLayer();
}

// The transform that applies `a` first, then `b`.
Matrix3x2F MultiplyTransforms(const Matrix3x2F& a, const Matrix3x2F& b);
Matrix3x2F Translation(float x, float y);
Matrix3x2F Scaling(float x, float y);

// Fills `rectangle` in one colour; nothing when the brush can't be made.
void FillSolid(const Canvas& canvas, const RectF& rectangle, const ColorF& colour);
// Fills the whole canvas with a gradient from `top` at y 0 to `bottom` at the canvas's height,
// both 0xRRGGBB; nothing when the gradient can't be made.
void FillVerticalGradient(const Canvas& canvas, uint32_t top, uint32_t bottom);

// A soft shadow at a sixteenth of its area: one pixel of `image` covers step x step canvas pixels,
// and the blur reaches `pad` beyond the shadowed rectangle on every side.
struct Shadow {
    SlotImage image; // alpha-only premultiplied black; no title
    float pad = 0;   // 0 until built
    float step = 4.0f;
};

// Makes `shadow` the shadow of a `width` x `height` rectangle: the rectangle blurred by a
// Gaussian of standard deviation max(size / 2, 1), at `opacity`. Once per picture, never per frame.
void BuildShadow(float width, float height, float size, float opacity, Shadow& shadow);
// Draws `shadow` under `rectangle`, moved down by `drop`; uploads its image on first use.
void DrawShadow(const Canvas& canvas, Shadow& shadow, const RectF& rectangle, float drop);
