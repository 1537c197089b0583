#include "effects/recording_surface.h"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <utility>

namespace {

// The handles. Each keeps the log alive, so that a test may drop the surface before the effect
// that still holds its bitmaps, and still read the counters.
struct RecordedBitmap final : SurfaceBitmap {
    RecordedBitmap(std::shared_ptr<SurfaceLog> shared, int number, int owner)
        : log(std::move(shared)), id(number), device(owner) {
        ++log->bitmapsAlive;
    }
    ~RecordedBitmap() override { --log->bitmapsAlive; }
    std::shared_ptr<SurfaceLog> log;
    int id, device;
};

struct RecordedBrush final : SurfaceBrush {
    RecordedBrush(std::shared_ptr<SurfaceLog> shared, int number, int owner, int maker)
        : log(std::move(shared)), id(number), device(owner), target(maker) {
        ++log->brushesAlive;
    }
    ~RecordedBrush() override { --log->brushesAlive; }
    void SetColor(const ColorF& color) override {
        SurfaceCall call;
        call.op = SurfaceCall::Op::SetColor;
        call.target = target;
        call.object = id;
        call.color = color;
        log->calls.push_back(std::move(call));
    }
    std::shared_ptr<SurfaceLog> log;
    int id, device, target;
};

struct RecordedLayer final : SurfaceLayer {
    RecordedLayer(std::shared_ptr<SurfaceLog> shared, int number, int owner)
        : log(std::move(shared)), id(number), device(owner) {
        ++log->layersAlive;
    }
    ~RecordedLayer() override { --log->layersAlive; }
    std::shared_ptr<SurfaceLog> log;
    int id, device;
};

// Text formats belong to the factory, not to a device, so they survive a lost target.
struct RecordedFormat final : TextFormat {
    RecordedFormat(std::shared_ptr<SurfaceLog> shared, int number, int maker)
        : log(std::move(shared)), id(number), target(maker) {
        ++log->formatsAlive;
    }
    ~RecordedFormat() override { --log->formatsAlive; }
    void SetTextAlignment(TextAlignment alignment) override {
        Set(SurfaceCall::Op::SetTextAlignment, static_cast<int32_t>(alignment));
    }
    void SetParagraphAlignment(ParagraphAlignment alignment) override {
        Set(SurfaceCall::Op::SetParagraphAlignment, static_cast<int32_t>(alignment));
    }
    void SetWordWrapping(WordWrapping wrapping) override {
        Set(SurfaceCall::Op::SetWordWrapping, static_cast<int32_t>(wrapping));
    }
    void Set(SurfaceCall::Op op, int32_t value) {
        SurfaceCall call;
        call.op = op;
        call.target = target;
        call.object = id;
        call.value = value;
        log->calls.push_back(std::move(call));
    }
    std::shared_ptr<SurfaceLog> log;
    int id, target;
};

// Shortest text that reads back as the same float, so traces are exact and still readable.
std::string Number(float value) {
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    return std::string(buffer, end);
}

std::string Text(const RectF& r) {
    return "(" + Number(r.left) + "," + Number(r.top) + "," + Number(r.right) + "," +
           Number(r.bottom) + ")";
}
std::string Text(const ColorF& c) {
    return "rgba(" + Number(c.r) + "," + Number(c.g) + "," + Number(c.b) + "," + Number(c.a) + ")";
}
std::string Text(PointF p) { return "(" + Number(p.x) + "," + Number(p.y) + ")"; }
std::string Text(const Matrix3x2F& m) {
    return "[" + Number(m.m11) + "," + Number(m.m12) + "," + Number(m.m21) + "," +
           Number(m.m22) + "," + Number(m.dx) + "," + Number(m.dy) + "]";
}
std::string Id(int id) { return "#" + std::to_string(id); }
std::string Narrow(const std::wstring& text) {
    std::string result;
    for (wchar_t c : text) result += (c >= 32 && c < 127) ? static_cast<char>(c) : '?';
    return result;
}
const char* ResultName(EndDrawResult result) {
    switch (result) {
    case EndDrawResult::Ok: return "Ok";
    case EndDrawResult::RecreateTarget: return "RecreateTarget";
    case EndDrawResult::Failed: return "Failed";
    }
    return "?";
}

} // namespace

bool operator==(const ColorF& a, const ColorF& b) {
    return a.r == b.r && a.g == b.g && a.b == b.b && a.a == b.a;
}
bool operator==(const PointF& a, const PointF& b) { return a.x == b.x && a.y == b.y; }
bool operator==(const SizeF& a, const SizeF& b) {
    return a.width == b.width && a.height == b.height;
}
bool operator==(const RectF& a, const RectF& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}
bool operator==(const Matrix3x2F& a, const Matrix3x2F& b) {
    return a.m11 == b.m11 && a.m12 == b.m12 && a.m21 == b.m21 && a.m22 == b.m22 && a.dx == b.dx &&
           a.dy == b.dy;
}
bool operator==(const GradientStop& a, const GradientStop& b) {
    return a.position == b.position && a.color == b.color;
}
void PrintTo(const ColorF& value, std::ostream* out) { *out << Text(value); }
void PrintTo(const PointF& value, std::ostream* out) { *out << Text(value); }
void PrintTo(const SizeF& value, std::ostream* out) {
    *out << Number(value.width) << "x" << Number(value.height);
}
void PrintTo(const RectF& value, std::ostream* out) { *out << Text(value); }
void PrintTo(const Matrix3x2F& value, std::ostream* out) { *out << Text(value); }
void PrintTo(const GradientStop& value, std::ostream* out) {
    *out << Number(value.position) << ":" << Text(value.color);
}

const char* OpName(SurfaceCall::Op op) {
    using Op = SurfaceCall::Op;
    switch (op) {
    case Op::BeginDraw: return "BeginDraw";
    case Op::Clear: return "Clear";
    case Op::EndDraw: return "EndDraw";
    case Op::SetTransform: return "SetTransform";
    case Op::IsOccluded: return "IsOccluded";
    case Op::UseGrayscaleTextAntialiasing: return "UseGrayscaleTextAntialiasing";
    case Op::MaximumBitmapSize: return "MaximumBitmapSize";
    case Op::CreateBitmap: return "CreateBitmap";
    case Op::CreateSolidColorBrush: return "CreateSolidColorBrush";
    case Op::CreateLinearGradientBrush: return "CreateLinearGradientBrush";
    case Op::CreateLayer: return "CreateLayer";
    case Op::CreateCompatibleRenderTarget: return "CreateCompatibleRenderTarget";
    case Op::GetBitmap: return "GetBitmap";
    case Op::CreateTextFormat: return "CreateTextFormat";
    case Op::DrawBitmap: return "DrawBitmap";
    case Op::FillRectangle: return "FillRectangle";
    case Op::DrawString: return "DrawString";
    case Op::PushLayer: return "PushLayer";
    case Op::PopLayer: return "PopLayer";
    case Op::SetColor: return "SetColor";
    case Op::SetTextAlignment: return "SetTextAlignment";
    case Op::SetParagraphAlignment: return "SetParagraphAlignment";
    case Op::SetWordWrapping: return "SetWordWrapping";
    }
    return "?";
}

std::string Describe(const SurfaceCall& c) {
    using Op = SurfaceCall::Op;
    std::string line = OpName(c.op);
    const auto add = [&line](const std::string& part) { line += " " + part; };
    switch (c.op) {
    case Op::BeginDraw:
    case Op::UseGrayscaleTextAntialiasing:
    case Op::PopLayer: break;
    case Op::Clear:
    case Op::CreateSolidColorBrush:
    case Op::SetColor:
        if (c.op != Op::Clear) add(Id(c.object));
        add(Text(c.color));
        break;
    case Op::EndDraw: add(ResultName(c.result)); break;
    case Op::SetTransform: add(Text(c.transform)); break;
    case Op::IsOccluded: add(c.answer ? "true" : "false"); break;
    case Op::MaximumBitmapSize: add(std::to_string(c.width)); break;
    case Op::CreateBitmap:
    case Op::GetBitmap:
        add(Id(c.object));
        add(std::to_string(c.width) + "x" + std::to_string(c.height));
        break;
    case Op::CreateLinearGradientBrush:
        add(Id(c.object));
        add(Text(c.start) + "-" + Text(c.end));
        for (const auto& stop : c.stops) add(Number(stop.position) + ":" + Text(stop.color));
        break;
    case Op::CreateLayer: add(Id(c.object)); break;
    case Op::CreateCompatibleRenderTarget:
        add(Id(c.object));
        add(Number(c.size.width) + "x" + Number(c.size.height));
        add(std::to_string(c.width) + "x" + std::to_string(c.height) + "px");
        break;
    case Op::CreateTextFormat:
        add(Id(c.object));
        add("\"" + Narrow(c.text) + "\"");
        add(std::to_string(c.weight) + "/" + std::to_string(c.style) + "/" +
            std::to_string(c.stretch));
        add(Number(c.fontSize));
        break;
    case Op::DrawBitmap:
        add(Id(c.object));
        add(Text(c.rect));
        add("opacity=" + Number(c.opacity));
        if (c.source) add("source=" + Text(*c.source));
        break;
    case Op::FillRectangle:
        add(Text(c.rect));
        add("brush=" + Id(c.brush));
        break;
    case Op::DrawString:
        add("\"" + Narrow(c.text) + "\"");
        add("format=" + Id(c.object));
        add(Text(c.rect));
        add("brush=" + Id(c.brush));
        break;
    case Op::PushLayer:
        add(Id(c.object));
        add("opacity=" + Number(c.opacity));
        if (c.brush != 0) add("mask=" + Id(c.brush));
        break;
    case Op::SetTextAlignment:
    case Op::SetParagraphAlignment:
    case Op::SetWordWrapping:
        add(Id(c.object));
        add(std::to_string(c.value));
        break;
    }
    return line;
}

void PrintTo(const SurfaceCall& call, std::ostream* out) {
    *out << "@" << call.target << " " << Describe(call);
}

std::vector<SurfaceCall> SurfaceLog::Calls(SurfaceCall::Op op, int target) const {
    std::vector<SurfaceCall> result;
    for (const auto& call : calls) {
        if (call.op == op && (target == 0 || call.target == target)) result.push_back(call);
    }
    return result;
}

std::vector<SurfaceCall::Op> SurfaceLog::Ops(int target) const {
    std::vector<SurfaceCall::Op> result;
    for (const auto& call : calls) {
        if (target == 0 || call.target == target) result.push_back(call.op);
    }
    return result;
}

std::vector<std::string> SurfaceLog::Trace(int target) const {
    std::vector<std::string> result;
    for (const auto& call : calls) {
        if (target == 0) {
            result.push_back("@" + std::to_string(call.target) + " " + Describe(call));
        } else if (call.target == target) {
            result.push_back(Describe(call));
        }
    }
    return result;
}

RecordingSurface::RecordingSurface() : RecordingSurface(std::make_shared<SurfaceLog>()) {}

RecordingSurface::RecordingSurface(std::shared_ptr<SurfaceLog> shared)
    : log(std::move(shared)), id(log->nextId++), device(id), offscreen(false) {
    ++log->targetsAlive;
}

RecordingSurface::RecordingSurface(std::shared_ptr<SurfaceLog> shared, int parentDevice,
                                   uint32_t width, uint32_t height)
    : log(std::move(shared)), id(log->nextId++), device(parentDevice), offscreen(true),
      pixelWidth(width), pixelHeight(height) {
    ++log->targetsAlive;
}

RecordingSurface::~RecordingSurface() { --log->targetsAlive; }

int RecordingSurface::IdOf(const SurfaceBitmap& bitmap) {
    return static_cast<const RecordedBitmap&>(bitmap).id;
}
int RecordingSurface::IdOf(const SurfaceBrush& brush) {
    return static_cast<const RecordedBrush&>(brush).id;
}
int RecordingSurface::IdOf(const SurfaceLayer& layer) {
    return static_cast<const RecordedLayer&>(layer).id;
}
int RecordingSurface::IdOf(const TextFormat& format) {
    return static_cast<const RecordedFormat&>(format).id;
}

SurfaceCall& RecordingSurface::Record(SurfaceCall::Op op) {
    SurfaceCall call;
    call.op = op;
    call.target = id;
    log->calls.push_back(std::move(call));
    return log->calls.back();
}

void RecordingSurface::CheckDrawing(const char* what) {
    if (!drawing) {
        log->misuses.push_back("@" + std::to_string(id) + " " + what +
                               " outside BeginDraw/EndDraw");
    }
}

void RecordingSurface::CheckDevice(int objectDevice, const char* what) {
    if (objectDevice != device) {
        log->misuses.push_back("@" + std::to_string(id) + " " + what + " of target " +
                               std::to_string(objectDevice) + "'s device on target " +
                               std::to_string(device) + "'s device");
    }
}

void RecordingSurface::BeginDraw() {
    if (drawing) log->misuses.push_back("@" + std::to_string(id) + " BeginDraw twice");
    drawing = true;
    Record(SurfaceCall::Op::BeginDraw);
}

void RecordingSurface::Clear(const ColorF& color) {
    CheckDrawing("Clear");
    Record(SurfaceCall::Op::Clear).color = color;
}

EndDrawResult RecordingSurface::EndDraw() {
    CheckDrawing("EndDraw");
    if (!pushed.empty()) {
        log->misuses.push_back("@" + std::to_string(id) + " EndDraw with " +
                               std::to_string(pushed.size()) + " layer(s) pushed");
        pushed.clear();
    }
    drawing = false;
    EndDrawResult result = EndDrawResult::Ok;
    if (!log->endDrawResults.empty()) {
        result = log->endDrawResults.front();
        log->endDrawResults.pop_front();
    }
    Record(SurfaceCall::Op::EndDraw).result = result;
    return result;
}

void RecordingSurface::SetTransform(const Matrix3x2F& transform) {
    Record(SurfaceCall::Op::SetTransform).transform = transform;
}

bool RecordingSurface::IsOccluded() {
    const bool answer = !offscreen && log->occluded;
    Record(SurfaceCall::Op::IsOccluded).answer = answer;
    return answer;
}

void RecordingSurface::UseGrayscaleTextAntialiasing() {
    Record(SurfaceCall::Op::UseGrayscaleTextAntialiasing);
}

uint32_t RecordingSurface::MaximumBitmapSize() {
    Record(SurfaceCall::Op::MaximumBitmapSize).width = log->maximumBitmapSize;
    return log->maximumBitmapSize;
}

std::unique_ptr<SurfaceBitmap> RecordingSurface::CreateBitmap(uint32_t width, uint32_t height,
                                                              const uint32_t* pixels) {
    SurfaceCall& call = Record(SurfaceCall::Op::CreateBitmap);
    call.width = width;
    call.height = height;
    if (pixels) call.pixels.assign(pixels, pixels + size_t{width} * height);
    if (log->failBitmaps || width > log->maximumBitmapSize || height > log->maximumBitmapSize) {
        return nullptr;
    }
    call.object = log->nextId++;
    ++log->bitmapsCreated;
    return std::make_unique<RecordedBitmap>(log, call.object, device);
}

std::unique_ptr<SurfaceBrush> RecordingSurface::CreateSolidColorBrush(const ColorF& color) {
    SurfaceCall& call = Record(SurfaceCall::Op::CreateSolidColorBrush);
    call.color = color;
    if (log->failSolidBrushes) return nullptr;
    call.object = log->nextId++;
    return std::make_unique<RecordedBrush>(log, call.object, device, id);
}

std::unique_ptr<SurfaceBrush> RecordingSurface::CreateLinearGradientBrush(
    PointF start, PointF end, const GradientStop* stops, uint32_t count) {
    SurfaceCall& call = Record(SurfaceCall::Op::CreateLinearGradientBrush);
    call.start = start;
    call.end = end;
    if (stops) call.stops.assign(stops, stops + count);
    if (log->failGradientBrushes) return nullptr;
    call.object = log->nextId++;
    return std::make_unique<RecordedBrush>(log, call.object, device, id);
}

std::unique_ptr<SurfaceLayer> RecordingSurface::CreateLayer() {
    SurfaceCall& call = Record(SurfaceCall::Op::CreateLayer);
    if (log->failLayers) return nullptr;
    call.object = log->nextId++;
    return std::make_unique<RecordedLayer>(log, call.object, device);
}

std::unique_ptr<DrawingSurface> RecordingSurface::CreateCompatibleRenderTarget(
    SizeF size, uint32_t pixelWidth, uint32_t pixelHeight) {
    SurfaceCall& call = Record(SurfaceCall::Op::CreateCompatibleRenderTarget);
    call.size = size;
    call.width = pixelWidth;
    call.height = pixelHeight;
    if (log->failTargets || pixelWidth > log->maximumBitmapSize ||
        pixelHeight > log->maximumBitmapSize) {
        return nullptr;
    }
    std::unique_ptr<RecordingSurface> target(
        new RecordingSurface(log, device, pixelWidth, pixelHeight));
    call.object = target->id;
    return target;
}

std::unique_ptr<SurfaceBitmap> RecordingSurface::GetBitmap() {
    SurfaceCall& call = Record(SurfaceCall::Op::GetBitmap);
    if (!offscreen) return nullptr;
    // The picture keeps the number of its target, however often it is asked for.
    call.object = id;
    call.width = pixelWidth;
    call.height = pixelHeight;
    return std::make_unique<RecordedBitmap>(log, id, device);
}

std::unique_ptr<TextFormat> RecordingSurface::CreateTextFormat(const TextFormatParams& font) {
    SurfaceCall& call = Record(SurfaceCall::Op::CreateTextFormat);
    call.text = std::wstring(font.family);
    call.weight = font.weight;
    call.style = font.style;
    call.stretch = font.stretch;
    call.fontSize = font.size;
    if (log->failTextFormats) return nullptr;
    call.object = log->nextId++;
    return std::make_unique<RecordedFormat>(log, call.object, id);
}

void RecordingSurface::DrawBitmap(const SurfaceBitmap& bitmap, const RectF& destination,
                                  float opacity, const RectF* source) {
    CheckDrawing("DrawBitmap");
    const auto& recorded = static_cast<const RecordedBitmap&>(bitmap);
    CheckDevice(recorded.device, "DrawBitmap of a bitmap");
    if (recorded.id == id) {
        log->misuses.push_back("@" + std::to_string(id) + " DrawBitmap of its own picture");
    }
    SurfaceCall& call = Record(SurfaceCall::Op::DrawBitmap);
    call.object = recorded.id;
    call.rect = destination;
    call.opacity = opacity;
    if (source) call.source = *source;
}

void RecordingSurface::FillRectangle(const RectF& rectangle, const SurfaceBrush& brush) {
    CheckDrawing("FillRectangle");
    const auto& recorded = static_cast<const RecordedBrush&>(brush);
    CheckDevice(recorded.device, "FillRectangle with a brush");
    SurfaceCall& call = Record(SurfaceCall::Op::FillRectangle);
    call.rect = rectangle;
    call.brush = recorded.id;
}

void RecordingSurface::DrawString(std::wstring_view text, const TextFormat& format,
                                  const RectF& rectangle, const SurfaceBrush& brush) {
    CheckDrawing("DrawString");
    const auto& recorded = static_cast<const RecordedBrush&>(brush);
    CheckDevice(recorded.device, "DrawString with a brush");
    SurfaceCall& call = Record(SurfaceCall::Op::DrawString);
    call.text = std::wstring(text);
    call.object = IdOf(format);
    call.rect = rectangle;
    call.brush = recorded.id;
}

void RecordingSurface::PushLayer(SurfaceLayer& layer, float opacity,
                                 const SurfaceBrush* opacityBrush) {
    CheckDrawing("PushLayer");
    const auto& recorded = static_cast<const RecordedLayer&>(layer);
    CheckDevice(recorded.device, "PushLayer of a layer");
    if (std::find(pushed.begin(), pushed.end(), recorded.id) != pushed.end()) {
        log->misuses.push_back("@" + std::to_string(id) + " PushLayer of layer #" +
                               std::to_string(recorded.id) + " that is already pushed");
    }
    pushed.push_back(recorded.id);
    SurfaceCall& call = Record(SurfaceCall::Op::PushLayer);
    call.object = recorded.id;
    call.opacity = opacity;
    if (opacityBrush) {
        const auto& brush = static_cast<const RecordedBrush&>(*opacityBrush);
        CheckDevice(brush.device, "PushLayer with a brush");
        call.brush = brush.id;
    }
}

void RecordingSurface::PopLayer() {
    CheckDrawing("PopLayer");
    if (pushed.empty()) {
        log->misuses.push_back("@" + std::to_string(id) + " PopLayer with no layer pushed");
    } else {
        pushed.pop_back();
    }
    Record(SurfaceCall::Op::PopLayer);
}
