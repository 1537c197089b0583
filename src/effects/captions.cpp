#include "effects/captions.h"

namespace {

constexpr int32_t kLightWeight = 300;
constexpr ColorF kBlack{0, 0, 0, 1};
constexpr ColorF kWhite{1, 1, 1, 1};

} // namespace

std::unique_ptr<TextFormat> MakeTextFormat(const Canvas& canvas, float size,
                                           TextAlignment alignment, bool wrap) {
    TextFormatParams font;
    font.family = L"Segoe UI";
    font.weight = kLightWeight;
    font.size = size;
    auto format = canvas.target->CreateTextFormat(font);
    if (!format) return nullptr;
    format->SetTextAlignment(alignment);
    format->SetWordWrapping(wrap ? WordWrapping::Wrap : WordWrapping::NoWrap);
    return format;
}

void DrawCaption(const Canvas& canvas, const std::wstring& title) {
    if (title.empty()) return;
    // Made anew on every frame: a caption costs two text runs, and nothing outlives the target.
    const auto format = MakeTextFormat(canvas, static_cast<float>(canvas.scale * 19.2),
                                       TextAlignment::Leading, true);
    if (!format) return;
    const auto brush = canvas.target->CreateSolidColorBrush(kBlack);
    if (!brush) return;
    const float s = canvas.scale;
    const float m = 32 * s;
    const RectF text{m, m, canvas.width - m, canvas.height};
    const RectF shadow{m + s, m + s, canvas.width - m + s, canvas.height + s};
    canvas.target->DrawString(title, *format, shadow, *brush);
    brush->SetColor(kWhite);
    canvas.target->DrawString(title, *format, text, *brush);
}
