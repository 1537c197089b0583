#include "effects/recording_surface.h"

#include <algorithm>
#include <utility>

using Op = SurfaceCall::Op;

namespace {

// A brush, layer, bitmap or text format; `device` is the window target whose device made it.
template <class Base>
struct Recorded : Base {
    Recorded(std::shared_ptr<SurfaceLog> shared, int number, int owner, int maker,
             int SurfaceLog::*counter)
        : log(std::move(shared)), id(number), device(owner), target(maker), alive(counter) {
        ++(*log.*alive);
    }
    ~Recorded() override { --(*log.*alive); }
    SurfaceCall& Record(Op op) {
        log->calls.push_back({op, target, id});
        return log->calls.back();
    }
    std::shared_ptr<SurfaceLog> log;
    int id, device, target;
    int SurfaceLog::*alive;
};

struct RecordedBrush final : Recorded<SurfaceBrush> {
    using Recorded::Recorded;
    void SetColor(const ColorF& color) override { Record(Op::SetColor).color = color; }
};

// Text formats belong to the factory, not to a device, so they survive a lost target.
struct RecordedFormat final : Recorded<TextFormat> {
    using Recorded::Recorded;
    void SetTextAlignment(TextAlignment v) override { Set(Op::SetTextAlignment, int32_t(v)); }
    void SetParagraphAlignment(ParagraphAlignment v) override {
        Set(Op::SetParagraphAlignment, int32_t(v));
    }
    void SetWordWrapping(WordWrapping v) override { Set(Op::SetWordWrapping, int32_t(v)); }
    void Set(Op op, int32_t value) { Record(op).value = value; }
};

class RecordingSurface final : public DrawingSurface {
public:
    // A window target when `parentDevice` is 0, else an offscreen target of that device.
    RecordingSurface(std::shared_ptr<SurfaceLog> shared, int parentDevice, uint32_t width = 0,
                     uint32_t height = 0)
        : log(std::move(shared)), id(log->nextId++), device(parentDevice ? parentDevice : id),
          pixelWidth(width), pixelHeight(height) {
        ++log->targetsAlive;
    }
    ~RecordingSurface() override { --log->targetsAlive; }

    void BeginDraw() override {
        if (drawing) Misuse("BeginDraw twice");
        drawing = true;
        Record(Op::BeginDraw);
    }
    void Clear(const ColorF& color) override {
        CheckDrawing("Clear");
        Record(Op::Clear).color = color;
    }
    EndDrawResult EndDraw() override {
        CheckDrawing("EndDraw");
        if (!pushed.empty()) Misuse("EndDraw with a layer pushed");
        pushed.clear();
        opacities.clear();
        drawing = false;
        EndDrawResult result = EndDrawResult::Ok;
        if (!log->endDrawResults.empty()) {
            result = log->endDrawResults.front();
            log->endDrawResults.pop_front();
        }
        return Record(Op::EndDraw).result = result;
    }
    void SetTransform(const Matrix3x2F& transform) override {
        current = transform;
        Record(Op::SetTransform).transform = transform;
    }
    bool IsOccluded() override {
        return Record(Op::IsOccluded).answer = device == id && log->occluded;
    }
    void UseGrayscaleTextAntialiasing() override { Record(Op::UseGrayscaleTextAntialiasing); }
    uint32_t MaximumBitmapSize() override {
        return Record(Op::MaximumBitmapSize).width = log->maximumBitmapSize;
    }

    std::unique_ptr<SurfaceBitmap> CreateBitmap(uint32_t width, uint32_t height,
                                                const uint32_t* pixels) override {
        SurfaceCall& call = Record(Op::CreateBitmap);
        call.width = width;
        call.height = height;
        if (pixels) call.pixels.assign(pixels, pixels + size_t{width} * height);
        if (std::max(width, height) > log->maximumBitmapSize) return nullptr;
        auto bitmap = Make<Recorded<SurfaceBitmap>>(call, &SurfaceLog::bitmapsAlive);
        log->bitmapsCreated += bitmap != nullptr;
        return bitmap;
    }
    std::unique_ptr<SurfaceBrush> CreateSolidColorBrush(const ColorF& color) override {
        SurfaceCall& call = Record(Op::CreateSolidColorBrush);
        call.color = color;
        return Make<RecordedBrush>(call, &SurfaceLog::brushesAlive);
    }
    std::unique_ptr<SurfaceBrush> CreateLinearGradientBrush(PointF start, PointF end,
                                                            const GradientStop* stops,
                                                            uint32_t count) override {
        SurfaceCall& call = Record(Op::CreateLinearGradientBrush);
        call.start = start;
        call.end = end;
        if (stops) call.stops.assign(stops, stops + count);
        return Make<RecordedBrush>(call, &SurfaceLog::brushesAlive);
    }
    std::unique_ptr<SurfaceLayer> CreateLayer() override {
        return Make<Recorded<SurfaceLayer>>(Record(Op::CreateLayer), &SurfaceLog::layersAlive);
    }
    std::unique_ptr<DrawingSurface> CreateCompatibleRenderTarget(SizeF size, uint32_t width,
                                                                 uint32_t height) override {
        SurfaceCall& call = Record(Op::CreateCompatibleRenderTarget);
        call.size = size;
        call.width = width;
        call.height = height;
        if (log->failing.count(call.op) || std::max(width, height) > log->maximumBitmapSize) {
            return nullptr;
        }
        auto target = std::make_unique<RecordingSurface>(log, device, width, height);
        call.object = target->id;
        return target;
    }
    std::unique_ptr<SurfaceBitmap> GetBitmap() override {
        SurfaceCall& call = Record(Op::GetBitmap);
        if (device == id) return nullptr; // a window target has no picture to hand out
        // The picture keeps the number of its target, however often it is asked for.
        call.object = id;
        call.width = pixelWidth;
        call.height = pixelHeight;
        return std::make_unique<Recorded<SurfaceBitmap>>(log, id, device, id,
                                                         &SurfaceLog::bitmapsAlive);
    }
    std::unique_ptr<TextFormat> CreateTextFormat(const TextFormatParams& font) override {
        SurfaceCall& call = Record(Op::CreateTextFormat);
        call.text = std::wstring(font.family);
        call.font = font;
        call.font.family = {};
        return Make<RecordedFormat>(call, &SurfaceLog::formatsAlive);
    }

    void DrawBitmap(const SurfaceBitmap& bitmap, const RectF& destination, float opacity,
                    const RectF* source) override {
        CheckDrawing("DrawBitmap");
        const int object = Check(bitmap, "DrawBitmap of a bitmap").id;
        if (object == id) Misuse("DrawBitmap of its own picture");
        SurfaceCall& call = RecordDraw(Op::DrawBitmap);
        call.object = object;
        call.rect = destination;
        call.opacity = opacity;
        if (source) call.source = *source;
    }
    void FillRectangle(const RectF& rectangle, const SurfaceBrush& brush) override {
        CheckDrawing("FillRectangle");
        const int brushId = Check(brush, "FillRectangle with a brush").id;
        SurfaceCall& call = RecordDraw(Op::FillRectangle);
        call.rect = rectangle;
        call.brush = brushId;
    }
    void DrawString(std::wstring_view text, const TextFormat& format, const RectF& rectangle,
                    const SurfaceBrush& brush) override {
        CheckDrawing("DrawString");
        const int brushId = Check(brush, "DrawString with a brush").id;
        SurfaceCall& call = RecordDraw(Op::DrawString);
        call.text = std::wstring(text);
        call.object = IdOf(format);
        call.rect = rectangle;
        call.brush = brushId;
    }
    void PushLayer(SurfaceLayer& layer, float opacity, const SurfaceBrush* mask) override {
        CheckDrawing("PushLayer");
        const int layerId = Check(layer, "PushLayer of a layer").id;
        if (std::count(pushed.begin(), pushed.end(), layerId)) Misuse("PushLayer twice");
        pushed.push_back(layerId);
        opacities.push_back(opacity);
        const int maskId = mask ? Check(*mask, "PushLayer with a brush").id : 0;
        SurfaceCall& call = Record(Op::PushLayer);
        call.object = layerId;
        call.opacity = opacity;
        call.brush = maskId;
    }
    void PopLayer() override {
        CheckDrawing("PopLayer");
        if (pushed.empty()) Misuse("PopLayer with no layer pushed");
        else {
            pushed.pop_back();
            opacities.pop_back();
        }
        Record(Op::PopLayer);
    }

private:
    SurfaceCall& Record(Op op) {
        log->calls.push_back({op, id});
        return log->calls.back();
    }
    // A draw, with the state that shapes it: the transform and the layers' opacity.
    SurfaceCall& RecordDraw(Op op) {
        SurfaceCall& call = Record(op);
        call.transform = current;
        for (float opacity : opacities) call.layerOpacity *= opacity;
        return call;
    }
    template <class Object>
    std::unique_ptr<Object> Make(SurfaceCall& call, int SurfaceLog::*counter) {
        if (log->failing.count(call.op)) return nullptr;
        call.object = log->nextId++;
        return std::make_unique<Object>(log, call.object, device, id, counter);
    }
    // The recorded object behind `object`, which must belong to this target's device.
    template <class Base>
    const Recorded<Base>& Check(const Base& object, const char* what) {
        const auto& recorded = static_cast<const Recorded<Base>&>(object);
        if (recorded.device != device) Misuse(std::string(what) + " of another device");
        return recorded;
    }
    void CheckDrawing(const char* what) {
        if (!drawing) Misuse(std::string(what) + " outside BeginDraw/EndDraw");
    }
    void Misuse(const std::string& what) {
        log->misuses.push_back("@" + std::to_string(id) + " " + what);
    }

    const std::shared_ptr<SurfaceLog> log;
    const int id;     // this target's number in the log
    const int device; // the window target whose device this one shares: itself if a window
    const uint32_t pixelWidth, pixelHeight; // of an offscreen target
    bool drawing = false;
    std::vector<int> pushed; // layers pushed and not yet popped, innermost last
    std::vector<float> opacities; // of those layers
    Matrix3x2F current;           // the transform in force
};

template <class Base>
int IdOfRecorded(const Base& object) {
    return static_cast<const Recorded<Base>&>(object).id;
}

} // namespace

int IdOf(const SurfaceBitmap& bitmap) { return IdOfRecorded(bitmap); }
int IdOf(const SurfaceBrush& brush) { return IdOfRecorded(brush); }
int IdOf(const SurfaceLayer& layer) { return IdOfRecorded(layer); }
int IdOf(const TextFormat& format) { return IdOfRecorded(format); }

std::unique_ptr<DrawingSurface> MakeRecordingSurface(std::shared_ptr<SurfaceLog> log) {
    return std::make_unique<RecordingSurface>(std::move(log), 0);
}

std::vector<SurfaceCall> SurfaceLog::Calls(Op op, int target) const {
    std::vector<SurfaceCall> result;
    for (const auto& call : calls)
        if (call.op == op && (target == 0 || call.target == target)) result.push_back(call);
    return result;
}

std::vector<Op> SurfaceLog::Ops(int target) const {
    std::vector<Op> result;
    for (const auto& call : calls)
        if (target == 0 || call.target == target) result.push_back(call.op);
    return result;
}
