#include "effects/faller_effect.h"

#include <algorithm>
#include <cmath>

#include "effects/timing.h"
#include "library/random.h"
#include "photos/photo_source.h"

namespace {

// A random number in [0, 1).
double Unit() { return RandomU32() * (1.0 / 4294967296.0); }

// A random position from `margin` to `margin` + `span`, in percent of the width.
float Position(float span, float margin) { return static_cast<float>(Unit()) * span + margin; }

} // namespace

FallerEffect::FallerEffect(PhotoSource& photoSource) : source(&photoSource) {}

void FallerEffect::Draw(const Canvas& canvas, double elapsed) {
    if (startedAt < 0) {
        for (Print& print : prints) RequestPrint(canvas, print);
        for (const Print& print : prints) {
            if (!print.slot.ready) return; // a full stage or none: black until all four are there
        }
        // The stage opens full: the prints stand at 70, 50, 30 and 0% of their falls.
        static constexpr struct {
            double duration, lead;
        } kOpening[4] = {{10000, -7000}, {12000, -6000}, {11000, -3300}, {9000, 0}};
        startedAt = elapsed;
        for (int i = 0; i < 4; ++i) {
            prints[i].slot.Advance(elapsed + kOpening[i].lead);
            PlacePrint(canvas, i, kOpening[i].duration);
        }
    }
    FillVerticalGradient(canvas, 0x050608, 0x12151C);
    for (int i = 0; i < 4; ++i) {
        Print& print = prints[i];
        if (elapsed - print.slot.shownAt >= print.duration) {
            if (!print.slot.Advance(elapsed)) {
                // The next photo is late: a gap on the stage until it comes.
                RequestPrint(canvas, print);
                continue;
            }
            PlacePrint(canvas, i, Unit() * 3000.0 + 9000.0);
        }
        RequestPrint(canvas, print);
        DrawPrint(canvas, print, elapsed);
    }
    canvas.target->SetTransform(Matrix3x2F{});
    // The veil lifts quickly at first, by the clock alone.
    const double a = elapsed - startedAt;
    if (a < 3600) {
        FillSolid(canvas, RectF{0, 0, canvas.width, canvas.height},
                  ColorF{0, 0, 0, static_cast<float>(1 - EaseOut(a / 3600))});
    }
}

void FallerEffect::RequestPrint(const Canvas& canvas, Print& print) {
    if (print.slot.pending || print.slot.ready) return; // drawn only for a request really made
    static constexpr float kSizes[5] = {25, 29, 32, 35, 44};
    print.sizePercent = kSizes[RandomU32() % 5];
    // A box of that share of the width and 92% of the height: a portrait photo stays narrower.
    print.slot.Request(*source, static_cast<int32_t>(print.sizePercent * canvas.width / 100),
                       static_cast<int32_t>(canvas.height * 0.92f), PhotoSource::Shape::Exact);
}

void FallerEffect::PlacePrint(const Canvas& canvas, int index, double duration) {
    Print& print = prints[index];
    print.duration = duration;
    // A centre may come within a fifth of the print's largest width of an edge, so up to three
    // tenths of it can hang off the canvas.
    const float margin = print.sizePercent * 0.2f;
    const float span = 100 - (margin + margin);
    float others[3];
    int count = 0;
    for (int i = 0; i < 4; ++i) {
        // A print counts once it has left the top; one still waiting for the opening has not.
        if (i != index && prints[i].slot.shownAt >= 0) others[count++] = prints[i].x * 100;
    }
    // Best of eight candidates: the one farthest from the prints on the stage, or with none
    // there, the one with the largest of eight further random numbers. Ties keep the earlier.
    float best = Position(span, margin);
    double bestDistance = -1.0;
    for (int attempt = 0; attempt < 8; ++attempt) {
        const float candidate = Position(span, margin);
        double distance = Unit();
        if (count > 0) {
            float nearest = std::fabs(others[0] - candidate);
            for (int i = 1; i < count; ++i) {
                nearest = std::min(nearest, std::fabs(others[i] - candidate));
            }
            distance = nearest;
        }
        if (distance > bestDistance) {
            best = candidate;
            bestDistance = distance;
        }
    }
    print.x = best / 100;
    const double side = Unit() < 0.5 ? 1.0 : -1.0;
    print.rotationStart = static_cast<float>((Unit() * 2.5 + 1.5) * side); // 1.5 to 4 degrees
    print.rotationEnd = static_cast<float>((Unit() * 2.5 + 1.0) * -side);  // 1 to 3.5, other way
    print.border = std::min(std::max(canvas.width * 0.0045f, 4 * canvas.scale), 10 * canvas.scale);
    const float paper = 2 * print.border;
    BuildShadow(static_cast<float>(print.slot.current.width) + paper,
                static_cast<float>(print.slot.current.height) + paper, 50 * canvas.scale, 0.65f,
                print.shadow);
}

void FallerEffect::DrawPrint(const Canvas& canvas, Print& print, double elapsed) {
    const SurfaceBitmap* bitmap = print.slot.Bitmap(*canvas.target);
    if (!bitmap) return; // a photo that failed to decode leaves its place empty for the fall
    const double q = (elapsed - print.slot.shownAt) / print.duration;
    if (q < 0) return;
    // It fades up over the first 8% of the fall and leaves by the bottom without fading.
    const auto fade = static_cast<float>(q < 0.08 ? q / 0.08 : 1.0);
    const float w = static_cast<float>(print.slot.current.width) + 2 * print.border;
    const float h = static_cast<float>(print.slot.current.height) + 2 * print.border;
    // The paper's top edge runs at constant speed from 30% of the height above the canvas to 10%
    // below it.
    const float tx = canvas.width * print.x;
    const float ty = static_cast<float>(canvas.height * (q * 1.4 - 0.3)) + h * 0.5f;
    const auto angle = static_cast<float>(
        (static_cast<double>(print.rotationEnd) - print.rotationStart) * q + print.rotationStart);
    const auto radians = static_cast<float>(angle * 3.141592653589793 / 180);
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    // The paper turns about its own centre.
    canvas.target->SetTransform(
        MultiplyTransforms(Matrix3x2F{c, s, -s, c, 0, 0}, Translation(tx, ty)));
    const RectF paper{-w * 0.5f, -h * 0.5f, w * 0.5f, h * 0.5f};
    const float b = print.border;
    DrawWithOpacity(canvas, fade, [&] {
        DrawShadow(canvas, print.shadow, paper, 18 * canvas.scale);
        FillSolid(canvas, paper, ColorF{251 / 255.0f, 250 / 255.0f, 247 / 255.0f, 1.0f});
        canvas.target->DrawBitmap(
            *bitmap, RectF{paper.left + b, paper.top + b, paper.right - b, paper.bottom - b}, 1.0f,
            nullptr);
    });
}

void FallerEffect::ReleaseTargetResources() {
    // The shadows keep their pixels, and DrawShadow uploads them again.
    for (Print& print : prints) {
        print.slot.ReleaseBitmaps();
        print.shadow.image.bitmap.reset();
    }
}
