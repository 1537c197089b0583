#pragma once

#include <deque>
#include <set>
#include <string>
#include <vector>

#include "effects/drawing_surface.h"

// A DrawingSurface for host tests that draws nothing and writes down the calls that tests read.
// One SurfaceLog is shared by a window target, the offscreen targets made from it, every object
// they make, and any later window target given the same log (the one made again after a loss),
// so all calls read as one sequence, each tagged with the target that got it. What a real device
// would refuse (drawing outside BeginDraw/EndDraw, a layer left pushed or popped twice) fails the
// running test at once.

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
    // clang-format off
    enum class Op {
        BeginDraw, Clear, EndDraw, SetTransform, CreateBitmap, CreateSolidColorBrush,
        CreateLinearGradientBrush, CreateLayer, CreateCompatibleRenderTarget, CreateTextFormat,
        DrawBitmap, FillRectangle, DrawString, PushLayer, PopLayer,
        SetColor, SetTextAlignment, SetParagraphAlignment, SetWordWrapping // brush, format
    };
    // clang-format on

    Op op = Op::BeginDraw;
    int target = 0; // the target called, or the one that made the brush or format
    // A draw's destination; a gradient's start and end point; {0, 0, width, height} of
    // CreateBitmap and CreateCompatibleRenderTarget.
    RectF rect;
    ColorF color; // Clear, CreateSolidColorBrush, SetColor
    // The object made (0 when it failed) or changed; the one used by a draw: the bitmap drawn,
    // the format written in, PushLayer's mask (0: none); the new target of
    // CreateCompatibleRenderTarget.
    int object = 0;
    float opacity = 1;               // PushLayer's; of a draw its own times the layers' pushed
    Matrix3x2F transform;            // SetTransform's; of a draw the one in force
    std::vector<GradientStop> stops; // CreateLinearGradientBrush
    std::vector<uint32_t> pixels;    // CreateBitmap's copy
    std::wstring text;               // DrawString's
    TextFormatParams font;           // CreateTextFormat's
    int32_t value = 0;               // the enumerator of a format's Set... call
};

struct SurfaceLog {
    std::vector<SurfaceCall> calls;

    // Knobs. Every CreateBitmap, CreateLayer, brush and format whose op is in `failing` is null.
    std::set<SurfaceCall::Op> failing;
    bool occluded = false;                    // IsOccluded of window targets
    std::deque<EndDrawResult> endDrawResults; // taken one per EndDraw; Ok once empty

    int bitmapsAlive = 0, layersAlive = 0, targetsAlive = 0; // targets: window and offscreen
    int nextId = 1;                                          // numbers targets and objects alike

    // The calls of one op, of every target or only of `target`.
    std::vector<SurfaceCall> Calls(SurfaceCall::Op op, int target = 0) const;
};

// A window target recording into `log`. Offscreen targets made from it record there too.
std::unique_ptr<DrawingSurface> MakeRecordingSurface(std::shared_ptr<SurfaceLog> log);
