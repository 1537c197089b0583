#include "effects/recording_surface.h"

#include <gtest/gtest.h>

#include <utility>

using Op = SurfaceCall::Op;
template <class T> using Own = std::unique_ptr<T>;

namespace {

// Any object that a recording target makes, counted in `alive` while it lives.
struct Recorded final : SurfaceBitmap, SurfaceBrush, SurfaceLayer, TextFormat {
    Recorded(std::shared_ptr<SurfaceLog> shared, int number, int maker, int* count)
        : log(std::move(shared)), id(number), target(maker), alive(count) {
        ++*alive;
    }
    ~Recorded() override { --*alive; }
    SurfaceCall& Record(Op op) {
        return log->calls.emplace_back(SurfaceCall{op, target, {}, {}, id});
    }
    void SetColor(const ColorF& color) override { Record(Op::SetColor).color = color; }
    void SetTextAlignment(TextAlignment v) override { Record(Op::SetTextAlignment).value = int(v); }
    void SetParagraphAlignment(ParagraphAlignment v) override {
        Record(Op::SetParagraphAlignment).value = int(v);
    }
    void SetWordWrapping(WordWrapping v) override { Record(Op::SetWordWrapping).value = int(v); }

    std::shared_ptr<SurfaceLog> log;
    int id, target;
    int* alive;
};

template <class Base> int IdOf(const Base* object) {
    return object ? static_cast<const Recorded*>(object)->id : 0;
}

class RecordingSurface final : public DrawingSurface {
public:
    explicit RecordingSurface(std::shared_ptr<SurfaceLog> shared)
        : log(std::move(shared)), id(log->nextId++) {
        ++log->targetsAlive;
    }
    ~RecordingSurface() override { --log->targetsAlive; }

    void BeginDraw() override {
        drawing = true;
        Record(Op::BeginDraw);
    }
    void Clear(const ColorF& color) override { RecordDraw(Op::Clear).color = color; }
    EndDrawResult EndDraw() override {
        RecordDraw(Op::EndDraw);
        Expect(opacities.empty(), "EndDraw with a layer pushed");
        drawing = false;
        if (log->endDrawResults.empty()) return EndDrawResult::Ok;
        const EndDrawResult result = log->endDrawResults.front();
        log->endDrawResults.pop_front();
        return result;
    }
    void SetTransform(const Matrix3x2F& transform) override {
        Record(Op::SetTransform).transform = current = transform;
    }
    bool IsOccluded() override { return log->occluded; } // asked of window targets only
    void UseGrayscaleTextAntialiasing() override {}
    uint32_t MaximumBitmapSize() override { return 16384; }

    Own<SurfaceBitmap> CreateBitmap(uint32_t width, uint32_t height,
                                    const uint32_t* pixels) override {
        SurfaceCall& call = Record(Op::CreateBitmap, {0, 0, float(width), float(height)});
        call.pixels.assign(pixels, pixels + size_t{width} * height);
        return Make(call, &log->bitmapsAlive);
    }
    Own<SurfaceBrush> CreateSolidColorBrush(const ColorF& color) override {
        return Make(Record(Op::CreateSolidColorBrush, {}, color));
    }
    Own<SurfaceBrush> CreateLinearGradientBrush(PointF start, PointF end, const GradientStop* stops,
                                                uint32_t count) override {
        SurfaceCall& call = Record(Op::CreateLinearGradientBrush, {start.x, start.y, end.x, end.y});
        call.stops.assign(stops, stops + count);
        return Make(call);
    }
    Own<SurfaceLayer> CreateLayer() override {
        return Make(Record(Op::CreateLayer), &log->layersAlive);
    }
    Own<DrawingSurface> CreateCompatibleRenderTarget(SizeF, uint32_t width,
                                                     uint32_t height) override {
        auto target = std::make_unique<RecordingSurface>(log);
        Record(Op::CreateCompatibleRenderTarget, {0, 0, float(width), float(height)}).object =
            target->id;
        return target;
    }
    Own<SurfaceBitmap> GetBitmap() override {
        return std::make_unique<Recorded>(log, log->nextId++, id, &log->bitmapsAlive);
    }
    Own<TextFormat> CreateTextFormat(const TextFormatParams& font) override {
        SurfaceCall& call = Record(Op::CreateTextFormat);
        call.font = font;
        return Make(call);
    }

    void DrawBitmap(const SurfaceBitmap& bitmap, const RectF& destination, float opacity,
                    const RectF*) override {
        RecordDraw(Op::DrawBitmap, destination, IdOf(&bitmap)).opacity *= opacity;
    }
    void FillRectangle(const RectF& rectangle, const SurfaceBrush&) override {
        RecordDraw(Op::FillRectangle, rectangle);
    }
    void DrawString(std::wstring_view text, const TextFormat& format, const RectF& rectangle,
                    const SurfaceBrush&) override {
        RecordDraw(Op::DrawString, rectangle, IdOf(&format)).text = text;
    }
    void PushLayer(SurfaceLayer&, float opacity, const SurfaceBrush* mask) override {
        RecordDraw(Op::PushLayer, {}, IdOf(mask)).opacity = opacity;
        opacities.push_back(opacity);
    }
    void PopLayer() override {
        RecordDraw(Op::PopLayer);
        Expect(!opacities.empty(), "PopLayer with no layer pushed");
        if (!opacities.empty()) opacities.pop_back();
    }

private:
    SurfaceCall& Record(Op op, const RectF& rect = {}, const ColorF& color = {}) {
        return log->calls.emplace_back(SurfaceCall{op, id, rect, color});
    }
    // A call inside BeginDraw/EndDraw, with the state that shapes it.
    SurfaceCall& RecordDraw(Op op, const RectF& rect = {}, int object = 0) {
        Expect(drawing, "a call outside BeginDraw/EndDraw");
        SurfaceCall& call = Record(op, rect);
        call.object = object;
        call.transform = current;
        for (float opacity : opacities) call.opacity *= opacity;
        return call;
    }
    Own<Recorded> Make(SurfaceCall& call, int* count = &uncounted) {
        if (log->failing.count(call.op)) return nullptr;
        call.object = log->nextId++;
        return std::make_unique<Recorded>(log, call.object, id, count);
    }
    void Expect(bool ok, const char* what) {
        if (!ok) ADD_FAILURE() << "recording target " << id << ": " << what;
    }

    static inline int uncounted = 0;
    const std::shared_ptr<SurfaceLog> log;
    const int id; // this target's number in the log
    bool drawing = false;
    std::vector<float> opacities; // of the layers pushed and not yet popped, innermost last
    Matrix3x2F current;           // the transform in force
};

} // namespace

Own<DrawingSurface> MakeRecordingSurface(std::shared_ptr<SurfaceLog> log) {
    return std::make_unique<RecordingSurface>(std::move(log));
}

std::vector<SurfaceCall> SurfaceLog::Calls(Op op, int target) const {
    std::vector<SurfaceCall> result;
    for (const auto& call : calls)
        if (call.op == op && (target == 0 || call.target == target)) result.push_back(call);
    return result;
}
