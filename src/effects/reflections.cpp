// Reflections: the photo as a framed picture on a dark stage, with a soft shadow and a mirror
// image, that turns into view out of the depth, rests, and turns on and sinks back.
#include <algorithm>
#include <cmath>

#include "effects/captions.h"
#include "effects/painting.h"
#include "effects/single_effect.h"
#include "effects/timing.h"

void SingleEffect::DrawReflections(const Canvas& canvas, double elapsed) {
    const double u = elapsed - 100;
    if (u < 0) return;
    double opacity = 1.0, angle = 0, depth = 0;
    if (u < 2000) {
        const double e = EaseOut(u / 2000);
        opacity = e;
        angle = -45 * (1 - e);
        depth = -500 * (1 - e);
    } else if (const double v = u - 2000; v >= Hold()) {
        const double b = EaseIn((v - Hold()) / 2000);
        if (b >= 1.0) return;
        opacity = 1 - b;
        angle = 45 * b;
        depth = -500 * b;
    }
    if (!composite) BuildComposite(canvas);
    if (!composite) return; // tried again on the next frame
    DrawWithOpacity(canvas, static_cast<float>(opacity),
                    [&] { DrawPerspective(canvas, *composite, depth, angle); });
}

void DrawPerspective(const Canvas& canvas, const SurfaceBitmap& picture, double depth,
                     double angle) {
    const float width = canvas.width, height = canvas.height;
    if (depth == 0 && angle == 0) {
        // At rest the picture is flat: one bitmap, not strips.
        canvas.target->DrawBitmap(picture, RectF{0, 0, width, height}, 1.0f, nullptr);
        return;
    }
    const double c = std::cos(angle * 3.141592653589793 / 180);
    const double s = std::sin(angle * 3.141592653589793 / 180);
    if (!(width > 0)) return;
    const float cx = width * 0.5f, cy = height * 0.5f;
    const double f = canvas.scale * 1000.0; // the focal length
    const double z = canvas.scale * depth;
    for (float x0 = 0; x0 < width; x0 += 4.0f) {
        const float x1 = std::min(x0 + 4.0f, width);
        const double d0 = x0 - cx, d1 = x1 - cx;
        // Each strip edge's perspective factor; the strip takes their mean height.
        const auto p0 = static_cast<float>(f / (f - (z - s * d0)));
        const auto p1 = static_cast<float>(f / (f - (z - s * d1)));
        const auto left = static_cast<float>(c * d0 * p0 + cx);
        const auto right = static_cast<float>(c * d1 * p1 + cx);
        const float half = (p0 + p1) * 0.5f * cy;
        // Half a pixel more on each side lets neighbouring strips overlap without seams.
        const RectF destination{std::min(left, right) - 0.5f, cy - half,
                                std::max(left, right) + 0.5f, cy + half};
        const RectF strip{x0, 0, x1, height};
        canvas.target->DrawBitmap(picture, destination, 1.0f, &strip);
    }
}

namespace {

// The photo upside down under the frame, fading out downward from its top line.
void DrawMirrorImage(const Canvas& canvas, const SurfaceBitmap& photo, const RectF& photoRect,
                     const RectF& frame, float frameHeight) {
    const float y0 = 20 * canvas.scale + frame.bottom;
    const GradientStop stops[3] = {
        {0.0f, ColorF{1, 1, 1, 1.0f}}, {0.5f, ColorF{1, 1, 1, 0.5f}}, {1.0f, ColorF{1, 1, 1, 0}}};
    const auto fade = canvas.target->CreateLinearGradientBrush(
        PointF{0, y0}, PointF{0, y0 + frameHeight}, stops, 3);
    if (!fade) return;
    const auto layer = canvas.target->CreateLayer();
    if (!layer) return;
    canvas.target->PushLayer(*layer, 1.0f, fade.get());
    // y goes to 20 x scale + 2 x frame bottom - y: the frame's bottom edge lands on y0.
    canvas.target->SetTransform(MultiplyTransforms(
        Matrix3x2F{1, 0, 0, -1, 0, 0}, Translation(0, 20 * canvas.scale + 2 * frame.bottom)));
    canvas.target->DrawBitmap(photo, photoRect, 1.0f, nullptr);
    canvas.target->SetTransform(Matrix3x2F{});
    canvas.target->PopLayer();
}

// The photo's caption, centred in a band of 50 x scale under the frame, over the reflection.
void DrawTitleLine(const Canvas& canvas, const std::wstring& title, const RectF& frame) {
    const auto format = MakeTextFormat(canvas, static_cast<float>(canvas.scale * 18.0),
                                       TextAlignment::Center, false);
    if (!format || title.empty()) return;
    const auto brush = canvas.target->CreateSolidColorBrush(ColorF{1, 1, 1, 0.8f});
    if (!brush) return;
    format->SetParagraphAlignment(ParagraphAlignment::Far);
    canvas.target->DrawString(
        title, *format, RectF{0, frame.bottom, canvas.width, frame.bottom + 50 * canvas.scale},
        *brush);
}

} // namespace

void SingleEffect::BuildComposite(const Canvas& canvas) {
    const float w = canvas.width, h = canvas.height;
    auto offscreen = canvas.target->CreateCompatibleRenderTarget(
        SizeF{w, h}, static_cast<uint32_t>(w), static_cast<uint32_t>(h));
    if (!offscreen) return;
    Canvas picture = canvas;
    picture.target = offscreen.get();
    picture.layer = nullptr;
    offscreen->UseGrayscaleTextAntialiasing();
    offscreen->BeginDraw();
    offscreen->Clear(ColorF{0, 0, 0, 0});

    // The frame keeps 80% of the canvas for every photo, whatever its proportions.
    const float fw = 0.8f * w, fh = 0.8f * h;
    const RectF frame{(w - fw) * 0.5f, (h - fh) * 0.5f, (w + fw) * 0.5f, (h + fh) * 0.5f};
    Shadow shadow;
    BuildShadow(fw, fh, 60 * canvas.scale, 0.8f, shadow);
    DrawShadow(picture, shadow, frame, 20 * canvas.scale);
    FillSolid(picture, frame, ColorF{0, 0, 0, 1});

    const SurfaceBitmap* photo = slot.Bitmap(*offscreen);
    const auto pw = static_cast<float>(slot.current.width);
    const auto ph = static_cast<float>(slot.current.height);
    const RectF photoRect{(w - pw) * 0.5f, (h - ph) * 0.5f, (w + pw) * 0.5f, (h + ph) * 0.5f};
    if (photo) {
        offscreen->DrawBitmap(*photo, photoRect, 1.0f, nullptr);
        DrawMirrorImage(picture, *photo, photoRect, frame, fh);
    }
    DrawTitleLine(picture, slot.current.title, frame);
    if (offscreen->EndDraw() == EndDrawResult::Ok) composite = offscreen->GetBitmap();
}
