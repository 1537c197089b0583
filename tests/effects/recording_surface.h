#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "effects/drawing_surface.h"

// A DrawingSurface for host tests that draws nothing and writes down every call with its
// arguments. One SurfaceLog is shared by a window target, the offscreen targets made from it,
// every object they make, and any later window target given the same log (the one made again
// after a loss), so all calls read as one sequence, each tagged with the target that got it.
// Objects keep the log alive, so a test may drop the surface before the effect holding them.

inline bool operator==(const ColorF& a, const ColorF& b) {
    return a.r == b.r && a.g == b.g && a.b == b.b && a.a == b.a;
}
inline bool operator==(const RectF& a, const RectF& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}
inline bool operator==(const Matrix3x2F& a, const Matrix3x2F& b) {
    return a.m11 == b.m11 && a.m12 == b.m12 && a.m21 == b.m21 && a.m22 == b.m22 && a.dx == b.dx &&
           a.dy == b.dy;
}
// One call on a recording target, brush or text format. Only the fields that it takes are set.
struct SurfaceCall {
    enum class Op {
        BeginDraw, Clear, EndDraw, SetTransform, IsOccluded, UseGrayscaleTextAntialiasing,
        MaximumBitmapSize, CreateBitmap, CreateSolidColorBrush, CreateLinearGradientBrush,
        CreateLayer, CreateCompatibleRenderTarget, GetBitmap, CreateTextFormat, DrawBitmap,
        FillRectangle, DrawString, PushLayer, PopLayer,
        SetColor, SetTextAlignment, SetParagraphAlignment, SetWordWrapping // on brush or format
    };

    Op op = Op::BeginDraw;
    int target = 0; // the target called, or the one that made the brush or format
    // The object made (0 when it failed), drawn, pushed or changed: the bitmap of DrawBitmap, the
    // format of DrawString, the new target of CreateCompatibleRenderTarget.
    int object = 0;
    int brush = 0;               // of FillRectangle and DrawString; PushLayer's mask (0: none)
    RectF rect;                  // DrawBitmap's destination, FillRectangle's, DrawString's
    std::optional<RectF> source; // DrawBitmap's, none for the whole bitmap
    float opacity = 0;           // DrawBitmap, PushLayer
    // SetTransform's; for DrawBitmap, FillRectangle and DrawString the one in force
    Matrix3x2F transform;
    float layerOpacity = 1; // draws: the product of the opacities of the layers pushed
    ColorF color; // Clear, CreateSolidColorBrush, SetColor
    PointF start, end;
    std::vector<GradientStop> stops;
    // CreateBitmap; pixels of CreateCompatibleRenderTarget and GetBitmap; MaximumBitmapSize's answer
    uint32_t width = 0, height = 0;
    SizeF size;                   // CreateCompatibleRenderTarget
    std::vector<uint32_t> pixels; // CreateBitmap's copy
    std::wstring text;            // DrawString's text, CreateTextFormat's family
    TextFormatParams font;        // CreateTextFormat's, with the family in `text` instead
    int32_t value = 0; // the enumerator of SetTextAlignment, SetParagraphAlignment, SetWordWrapping
    bool answer = false;                      // IsOccluded
    EndDrawResult result = EndDrawResult::Ok; // EndDraw
};

struct SurfaceLog {
    std::vector<SurfaceCall> calls;
    // What a real device would refuse: drawing outside BeginDraw/EndDraw, unbalanced layers, an
    // object of another device (a lost one) used on this one. Empty in every correct run.
    std::vector<std::string> misuses;

    // Knobs. Every Create* whose op is in `failing` gives null; the call is still recorded.
    std::set<SurfaceCall::Op> failing;
    bool occluded = false;                    // IsOccluded of window targets
    std::deque<EndDrawResult> endDrawResults; // taken one per EndDraw; Ok once empty
    uint32_t maximumBitmapSize = 16384;       // bitmaps and offscreen targets above it fail

    int bitmapsCreated = 0; // successful CreateBitmap calls: pixel uploads
    int bitmapsAlive = 0, brushesAlive = 0, layersAlive = 0, formatsAlive = 0;
    int targetsAlive = 0; // window and offscreen

    // The calls of one op, or all ops in order, of every target or only of `target`.
    std::vector<SurfaceCall> Calls(SurfaceCall::Op op, int target = 0) const;
    std::vector<SurfaceCall::Op> Ops(int target = 0) const;

    int nextId = 1; // numbers targets and objects alike
};

// The number of an object that a recording target made.
int IdOf(const SurfaceBitmap& bitmap);
int IdOf(const SurfaceBrush& brush);
int IdOf(const SurfaceLayer& layer);
int IdOf(const TextFormat& format);

// A window target recording into `log`. Offscreen targets made from it record there too.
std::unique_ptr<DrawingSurface> MakeRecordingSurface(std::shared_ptr<SurfaceLog> log);
