#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

// Plain geometry and colour records of the drawing surface. Targets and bitmaps declare 96 DPI, so
// one unit is one pixel and y grows downward.
struct ColorF {
    float r = 0, g = 0, b = 0, a = 1;
};
struct PointF {
    float x = 0, y = 0;
};
struct SizeF {
    float width = 0, height = 0;
};
struct RectF {
    float left = 0, top = 0, right = 0, bottom = 0;
};
// A 3x2 matrix in the sense of SetTransform: a point (x, y) goes to
// (x*m11 + y*m21 + dx, x*m12 + y*m22 + dy).
struct Matrix3x2F {
    float m11 = 1, m12 = 0, m21 = 0, m22 = 1, dx = 0, dy = 0;
};
struct GradientStop {
    float position = 0;
    ColorF color;
};

// Text layout choices, numbered as DirectWrite numbers them.
enum class TextAlignment : int32_t { Leading = 0, Trailing = 1, Center = 2, Justified = 3 };
enum class ParagraphAlignment : int32_t { Near = 0, Far = 1, Center = 2 };
enum class WordWrapping : int32_t { Wrap = 0, NoWrap = 1 };

// What a text format is made from: family, weight (400 normal, 600 semi-bold), style
// (0 normal, 2 italic), stretch (5 normal) and size in units.
struct TextFormatParams {
    std::wstring_view family;
    int32_t weight = 400;
    int32_t style = 0;
    int32_t stretch = 5;
    float size = 12;
};

// The outcome of EndDraw that the render loop acts on.
enum class EndDrawResult { Ok, RecreateTarget, Failed };

// Device objects made by a surface. They belong to the surface's device: after the target is lost
// they are dropped and made again from the pixels that the caller keeps.
class SurfaceBitmap {
public:
    virtual ~SurfaceBitmap() = default;
};

class SurfaceBrush {
public:
    virtual ~SurfaceBrush() = default;
    // Changes the colour of a solid brush; a gradient brush ignores it.
    virtual void SetColor(const ColorF& color) = 0;
};

// The one layer of a window target, lent to effects for drawing at an opacity.
class SurfaceLayer {
public:
    virtual ~SurfaceLayer() = default;
};

class TextFormat {
public:
    virtual ~TextFormat() = default;
    virtual void SetTextAlignment(TextAlignment alignment) = 0;
    virtual void SetParagraphAlignment(ParagraphAlignment alignment) = 0;
    virtual void SetWordWrapping(WordWrapping wrapping) = 0;
};

// Everything that the render loop and the effects do to a render target, and nothing more. The
// window and offscreen targets of Direct2D implement it on Windows; tests record every call.
// All calls happen on the window thread.
class DrawingSurface {
public:
    virtual ~DrawingSurface() = default;

    // Frame bracket. Every BeginDraw is paired with one EndDraw.
    virtual void BeginDraw() = 0;
    virtual void Clear(const ColorF& color) = 0;
    virtual EndDrawResult EndDraw() = 0;
    // The transform holds until the next call.
    virtual void SetTransform(const Matrix3x2F& transform) = 0;

    // True while the window is covered (the occluded bit of the window state); an offscreen
    // target is never occluded.
    virtual bool IsOccluded() = 0;
    virtual void UseGrayscaleTextAntialiasing() = 0;
    // The largest bitmap edge that the device takes, in pixels.
    virtual uint32_t MaximumBitmapSize() = 0;

    // Copies `pixels` (premultiplied BGRA, 32 bits each, rows of 4 x width bytes) into a new
    // device bitmap at 96 DPI; null on failure.
    virtual std::unique_ptr<SurfaceBitmap> CreateBitmap(uint32_t width, uint32_t height,
                                                        const uint32_t* pixels) = 0;
    virtual std::unique_ptr<SurfaceBrush> CreateSolidColorBrush(const ColorF& color) = 0;
    // A linear gradient from `start` to `end` over `stops` (gamma 2.2, clamped at both ends);
    // null when the stops or the brush can't be made.
    virtual std::unique_ptr<SurfaceBrush> CreateLinearGradientBrush(PointF start, PointF end,
                                                                    const GradientStop* stops,
                                                                    uint32_t count) = 0;
    // A layer with no size of its own, reused for every PushLayer.
    virtual std::unique_ptr<SurfaceLayer> CreateLayer() = 0;
    // An offscreen target of `size` units and `pixelWidth` x `pixelHeight` pixels in the format
    // of CreateBitmap, whose result GetBitmap hands to this surface; null on failure.
    virtual std::unique_ptr<DrawingSurface>
    CreateCompatibleRenderTarget(SizeF size, uint32_t pixelWidth, uint32_t pixelHeight) = 0;
    // The picture of an offscreen target as a bitmap of its parent; null for a window target.
    virtual std::unique_ptr<SurfaceBitmap> GetBitmap() = 0;
    // A text format from the DirectWrite factory of the run, with no collection and an empty
    // locale; null on failure.
    virtual std::unique_ptr<TextFormat> CreateTextFormat(const TextFormatParams& font) = 0;

    // Draws `bitmap` scaled into `destination` with linear interpolation; `source` null means the
    // whole bitmap.
    virtual void DrawBitmap(const SurfaceBitmap& bitmap, const RectF& destination, float opacity,
                            const RectF* source) = 0;
    virtual void FillRectangle(const RectF& rectangle, const SurfaceBrush& brush) = 0;
    // Draws `text` in `rectangle` with no options and natural measuring.
    virtual void DrawString(std::wstring_view text, const TextFormat& format,
                            const RectF& rectangle, const SurfaceBrush& brush) = 0;
    // Composes what follows at `opacity` (times the alpha of `opacityBrush` when given), with
    // infinite bounds, no geometry and an identity mask transform, until PopLayer.
    virtual void PushLayer(SurfaceLayer& layer, float opacity,
                           const SurfaceBrush* opacityBrush) = 0;
    virtual void PopLayer() = 0;
};

// The run's Direct2D and DirectWrite factory pair. Only the platform layer knows what it holds;
// the session keeps it, and each window and canvas points at it.
struct DrawingFactories;
