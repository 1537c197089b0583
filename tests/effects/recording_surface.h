#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "effects/drawing_surface.h"

// A DrawingSurface for host tests that draws nothing and writes down every call with its
// arguments, so that timelines, rectangles, opacities and transforms can be checked exactly.
//
// One SurfaceLog is shared by a window target, the offscreen targets made from it, every object
// they make, and any later window target given the same log (the one made again after a loss).
// All calls go into the one list, in the order they happened, each tagged with the number of the
// target that got it; so an offscreen build and the drawing of its picture read as one sequence.
// The log also checks the rules that a real device enforces (see `misuses`).
//
//   auto surface = std::make_unique<RecordingSurface>();
//   SurfaceLog& log = *surface->log;
//   log.failBitmaps = true;
//   ... draw ...
//   EXPECT_EQ(log.Trace(surface->id), (std::vector<std::string>{"BeginDraw", ...}));
//   EXPECT_TRUE(log.misuses.empty());

// Exact comparison and readable printing of the drawing records, for EXPECT_EQ.
bool operator==(const ColorF& a, const ColorF& b);
bool operator==(const PointF& a, const PointF& b);
bool operator==(const SizeF& a, const SizeF& b);
bool operator==(const RectF& a, const RectF& b);
bool operator==(const Matrix3x2F& a, const Matrix3x2F& b);
bool operator==(const GradientStop& a, const GradientStop& b);
void PrintTo(const ColorF& value, std::ostream* out);
void PrintTo(const PointF& value, std::ostream* out);
void PrintTo(const SizeF& value, std::ostream* out);
void PrintTo(const RectF& value, std::ostream* out);
void PrintTo(const Matrix3x2F& value, std::ostream* out);
void PrintTo(const GradientStop& value, std::ostream* out);

// One call on a recording target. Only the fields that the operation takes are set.
struct SurfaceCall {
    enum class Op {
        BeginDraw,
        Clear,
        EndDraw,
        SetTransform,
        IsOccluded,
        UseGrayscaleTextAntialiasing,
        MaximumBitmapSize,
        CreateBitmap,
        CreateSolidColorBrush,
        CreateLinearGradientBrush,
        CreateLayer,
        CreateCompatibleRenderTarget,
        GetBitmap,
        CreateTextFormat,
        DrawBitmap,
        FillRectangle,
        DrawString,
        PushLayer,
        PopLayer,
        SetColor,              // on a brush
        SetTextAlignment,      // on a text format
        SetParagraphAlignment, // on a text format
        SetWordWrapping,       // on a text format
    };

    Op op = Op::BeginDraw;
    int target = 0; // the target that was called, or that made the brush or format
    // The object made (0 when the making failed or gave null), drawn, pushed or changed: the
    // bitmap of DrawBitmap, the format of DrawString, the layer of PushLayer, the new target of
    // CreateCompatibleRenderTarget.
    int object = 0;
    int brush = 0; // of FillRectangle and DrawString; the opacity brush of PushLayer (0: none)
    RectF rect;    // DrawBitmap's destination, FillRectangle's and DrawString's rectangle
    std::optional<RectF> source; // DrawBitmap's source rectangle, none for the whole bitmap
    float opacity = 0;           // DrawBitmap, PushLayer
    Matrix3x2F transform;        // SetTransform
    ColorF color;                // Clear, CreateSolidColorBrush, SetColor
    PointF start, end;           // CreateLinearGradientBrush
    std::vector<GradientStop> stops;
    uint32_t width = 0, height = 0; // CreateBitmap; pixel size of CreateCompatibleRenderTarget
                                    // and GetBitmap; MaximumBitmapSize's answer in `width`
    SizeF size;                     // CreateCompatibleRenderTarget
    std::vector<uint32_t> pixels;   // CreateBitmap's copy
    std::wstring text;              // DrawString's text, CreateTextFormat's family
    int32_t weight = 0, style = 0, stretch = 0; // CreateTextFormat
    float fontSize = 0;                         // CreateTextFormat
    int32_t value = 0; // the enumerator of SetTextAlignment, SetParagraphAlignment, SetWordWrapping
    bool answer = false;                      // IsOccluded
    EndDrawResult result = EndDrawResult::Ok; // EndDraw
};

const char* OpName(SurfaceCall::Op op);
// One line for a call: the operation, then its arguments, floats in their shortest exact form,
// objects as #id. For example "DrawBitmap #3 (0,0,640,480) opacity=0.5".
std::string Describe(const SurfaceCall& call);
void PrintTo(const SurfaceCall& call, std::ostream* out);

struct SurfaceLog {
    std::vector<SurfaceCall> calls;
    // What a real device would refuse or report, one line each: drawing outside BeginDraw and
    // EndDraw, unbalanced or nested use of a layer, an object of a lost target drawn on a new
    // one. Empty in every correct run.
    std::vector<std::string> misuses;

    // Knobs. Creation knobs make every target of the log fail that kind of object, returning
    // null; the attempt is still recorded, with object 0.
    bool occluded = false;                   // IsOccluded of window targets
    std::deque<EndDrawResult> endDrawResults; // taken one per EndDraw; Ok once empty
    bool failBitmaps = false;                // CreateBitmap
    bool failSolidBrushes = false;
    bool failGradientBrushes = false;
    bool failLayers = false;
    bool failTargets = false; // CreateCompatibleRenderTarget
    bool failTextFormats = false;
    // Also the edge above which CreateBitmap and CreateCompatibleRenderTarget fail.
    uint32_t maximumBitmapSize = 16384;

    // Counters.
    int bitmapsCreated = 0; // successful CreateBitmap calls: pixel uploads
    int bitmapsAlive = 0;   // bitmap handles not yet destroyed, GetBitmap's included
    int brushesAlive = 0;
    int layersAlive = 0;
    int formatsAlive = 0;
    int targetsAlive = 0; // window and offscreen

    // The calls of one operation, or the operations in order, of all targets or only `target`.
    std::vector<SurfaceCall> Calls(SurfaceCall::Op op, int target = 0) const;
    std::vector<SurfaceCall::Op> Ops(int target = 0) const;
    // Describe of each call. For all targets each line starts with "@<target> "; for one target
    // the lines stand without it.
    std::vector<std::string> Trace(int target = 0) const;

    int nextId = 1; // numbers targets and objects alike, so that no two share one
};

class RecordingSurface final : public DrawingSurface {
public:
    // A window target with a log of its own.
    RecordingSurface();
    // A window target recording into `log`.
    explicit RecordingSurface(std::shared_ptr<SurfaceLog> log);
    ~RecordingSurface() override;
    RecordingSurface(const RecordingSurface&) = delete;
    RecordingSurface& operator=(const RecordingSurface&) = delete;

    // The number of the object behind a handle that a recording surface made.
    static int IdOf(const SurfaceBitmap& bitmap);
    static int IdOf(const SurfaceBrush& brush);
    static int IdOf(const SurfaceLayer& layer);
    static int IdOf(const TextFormat& format);

    void BeginDraw() override;
    void Clear(const ColorF& color) override;
    EndDrawResult EndDraw() override;
    void SetTransform(const Matrix3x2F& transform) override;
    bool IsOccluded() override;
    void UseGrayscaleTextAntialiasing() override;
    uint32_t MaximumBitmapSize() override;
    std::unique_ptr<SurfaceBitmap> CreateBitmap(uint32_t width, uint32_t height,
                                                const uint32_t* pixels) override;
    std::unique_ptr<SurfaceBrush> CreateSolidColorBrush(const ColorF& color) override;
    std::unique_ptr<SurfaceBrush> CreateLinearGradientBrush(PointF start, PointF end,
                                                            const GradientStop* stops,
                                                            uint32_t count) override;
    std::unique_ptr<SurfaceLayer> CreateLayer() override;
    std::unique_ptr<DrawingSurface> CreateCompatibleRenderTarget(SizeF size, uint32_t pixelWidth,
                                                                 uint32_t pixelHeight) override;
    std::unique_ptr<SurfaceBitmap> GetBitmap() override;
    std::unique_ptr<TextFormat> CreateTextFormat(const TextFormatParams& font) override;
    void DrawBitmap(const SurfaceBitmap& bitmap, const RectF& destination, float opacity,
                    const RectF* source) override;
    void FillRectangle(const RectF& rectangle, const SurfaceBrush& brush) override;
    void DrawString(std::wstring_view text, const TextFormat& format, const RectF& rectangle,
                    const SurfaceBrush& brush) override;
    void PushLayer(SurfaceLayer& layer, float opacity, const SurfaceBrush* opacityBrush) override;
    void PopLayer() override;

    const std::shared_ptr<SurfaceLog> log;
    const int id;         // this target's number in the log
    const int device;     // the window target whose device this one shares (itself if a window)
    const bool offscreen; // made by CreateCompatibleRenderTarget
    const uint32_t pixelWidth = 0, pixelHeight = 0; // of an offscreen target

private:
    RecordingSurface(std::shared_ptr<SurfaceLog> shared, int parentDevice, uint32_t width,
                     uint32_t height);
    SurfaceCall& Record(SurfaceCall::Op op);
    void CheckDrawing(const char* what);
    void CheckDevice(int objectDevice, const char* what);

    bool drawing = false;
    std::vector<int> pushed; // layers pushed and not yet popped, innermost last
};
