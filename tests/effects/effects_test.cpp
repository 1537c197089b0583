// The presentations frame by frame on a recording target, fed by a real PhotoSource with scripted
// photo arrivals and random numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>

#include "effects/effect.h"
#include "effects/painting.h"
#include "effects/recording_surface.h"
#include "effects/timing.h"
#include "photos/fake_image_files.h"
#include "photos/photo_source.h"
#include "support/random_fake.h"
#include "support/scripted_queue.h"

namespace {

using Op = SurfaceCall::Op;
constexpr auto kFader = EffectKind::Fader, kSlider = EffectKind::Slider;
constexpr auto kPanner = EffectKind::Panner, kReflections = EffectKind::Reflections;
constexpr uint32_t kColours[4] = {0xFF0000C0, 0xFF00C000, 0xFFC00000, 0xFF808080};

// Two records of floats (rectangles, transforms) that agree to within 0.001.
template <class T> bool Near(const T& a, const T& b) {
    float x[sizeof(T) / sizeof(float)], y[sizeof(T) / sizeof(float)];
    std::memcpy(x, &a, sizeof a);
    std::memcpy(y, &b, sizeof b);
    for (size_t i = 0; i < std::size(x); ++i)
        if (std::abs(x[i] - y[i]) > 1e-3f) return false;
    return true;
}

// One window's effect on a recording target; jobs run only when the test delivers them. Photo i
// of the list is a 400 x 300 file in colour kColours[i].
struct Rig {
    Rig(EffectKind kind, EffectOptions options, float width = 640, float height = 480,
        float scale = 1) {
        FakeFiles() = {};
        for (const wchar_t* title : {L"Alpha", L"Beta", L"Gamma", L"Delta"}) {
            photos.push_back(L"C:\\p\\" + std::wstring(title) + L"-a0000000.jpg");
            FakeFiles().files[photos.back()] = {400, 300, 0, kColours[photos.size() - 1]};
        }
        queue.Start(reinterpret_cast<WindowHandle>(1), 0x8001);
        canvas = {nullptr, nullptr, width, height, scale, nullptr};
        effect = MakeEffect(kind, options, source);
        LoseTarget();
    }
    // The target is lost: the effect drops every device object, and draws on a new target.
    void LoseTarget() {
        effect->ReleaseTargetResources();
        layer.reset();
        EXPECT_EQ(log->bitmapsAlive, 0);
        target = MakeRecordingSurface(log);
        layer = target->CreateLayer();
        canvas.target = target.get();
        canvas.layer = layer.get();
    }
    // One frame at `elapsed` as the render loop draws it; its calls on the window target.
    SurfaceLog Frame(double elapsed) {
        const size_t first = log->calls.size();
        target->BeginDraw();
        effect->Draw(canvas, elapsed);
        target->SetTransform(Matrix3x2F{});
        target->EndDraw();
        SurfaceLog frame;
        for (size_t i = first; i < log->calls.size(); ++i)
            if (log->calls[i].target == log->calls[first].target)
                frame.calls.push_back(log->calls[i]);
        return frame;
    }
    std::vector<SurfaceCall> Draws(double elapsed) { return Frame(elapsed).Calls(Op::DrawBitmap); }
    // The upload of the bitmap that `draw` painted.
    SurfaceCall UploadOf(const SurfaceCall& draw) const {
        for (const auto& call : log->Calls(Op::CreateBitmap))
            if (call.object == draw.object) return call;
        return {};
    }

    ScriptedQueueSystem system;
    WorkQueue queue{system};
    std::vector<std::wstring> photos;
    PhotoSource source{&queue, &photos, 0, {true, true}};
    std::shared_ptr<SurfaceLog> log = std::make_shared<SurfaceLog>();
    std::unique_ptr<DrawingSurface> target;
    std::unique_ptr<SurfaceLayer> layer;
    Canvas canvas;
    std::unique_ptr<Effect> effect;
};

Matrix3x2F Shift(double x) { return {1, 0, 0, 1, static_cast<float>(x), 0}; }
// The Panner's camera of `row` on 640 x 480: scaled by z about the middle, then moved right by
// progress x pan x width.
Matrix3x2F Camera(uint32_t row, double progress) {
    const double pans[] = {0.1, 0.05, 0.0, -0.05, -0.1}, zooms[] = {1.2, 1.1, 1.1, 1.1, 1.2};
    const double z = (zooms[row] - 1) * progress + 1;
    const auto dx = static_cast<float>(320 * (1 - z) + progress * pans[row] * 640);
    return {float(z), 0, 0, float(z), dx, float(240 * (1 - z))};
}

TEST(SingleEffect, EachKindRunsItsTimelineWithCaptionsThroughAChangeAndALostTarget) {
    constexpr double kHold = 3000; // pause index 0
    const struct {
        EffectKind kind;
        uint32_t row;   // the random row drawn for the first photo: the Panner's camera move
        double at;      // after the first photo took the stage
        double opacity; // -1: nothing drawn
        Matrix3x2F transform;
        size_t draws = 1; // Reflections: strips while the picture turns
        size_t photo = 0;
    } cases[] = {
        // Each kind ends on a change: one frame short of its cycle, the cycle's end (the second
        // photo takes the stage at its time 0) and into the second photo's fade-in.
        // clang-format off
        {kFader, 0, 1299, -1}, {kFader, 0, 1300, Ease(0)}, {kFader, 0, 2800, Ease(0.5)},
        {kFader, 0, 4300, 1}, {kFader, 0, 5800 + kHold, 1 - EaseIn(0.5)},
        {kFader, 0, 7399 + kHold, -1}, {kFader, 0, 7400 + kHold, -1},
        {kFader, 0, 10200 + kHold, Ease(0.5), {}, 1, 1},
        {kSlider, 0, 99, -1}, {kSlider, 0, 100, Ease(0), Shift(-640 * (1 - Ease(0)))},
        {kSlider, 0, 1600, Ease(0.5), Shift(-640 * (1 - Ease(0.5)))}, {kSlider, 0, 3100, 1},
        {kSlider, 0, 4600 + kHold, 1 - EaseIn(0.5), Shift(1280 * EaseIn(0.5))},
        {kSlider, 0, 6199 + kHold, -1}, {kSlider, 0, 6200 + kHold, -1},
        {kSlider, 0, 7800 + kHold, Ease(0.5), Shift(-640 * (1 - Ease(0.5))), 1, 1},
        {kPanner, 0, 99, -1}, {kPanner, 0, 100, Ease(0)},
        {kPanner, 0, 3100 + 0.5 * kHold, 1, Camera(0, EaseIn(0.5 / 0.85) * 0.85)},
        {kPanner, 0, 3199 + kHold, -1}, {kPanner, 0, 3200 + kHold, -1},
        {kPanner, 0, 4800 + kHold, Ease(0.5), {}, 1, 1},
        {kPanner, 4, 3100 + 0.85 * kHold, 1 - EaseIn(0), Camera(4, 0.85)},
        {kPanner, 1, 3100 + 0.925 * kHold, 1 - EaseIn(0.5), Camera(1, EaseIn(0.5) * 0.15 + 0.85)},
        {kReflections, 0, 99, -1}, {kReflections, 0, 100, EaseOut(0), {}, 160},
        {kReflections, 0, 1100, EaseOut(0.5), {}, 160}, {kReflections, 0, 2100, 1},
        {kReflections, 0, 2100 + kHold, 1, {}, 160}, // the turn away starts at once
        {kReflections, 0, 3100 + kHold, 1 - EaseIn(0.5), {}, 160},
        {kReflections, 0, 4199 + kHold, -1}, {kReflections, 0, 4200 + kHold, -1},
        {kReflections, 0, 5300 + kHold, EaseOut(0.5), {}, 160, 1}}; // clang-format on
    std::map<std::pair<EffectKind, uint32_t>, std::unique_ptr<Rig>> rigs;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << int(c.kind) << " row " << c.row << " at " << c.at);
        auto& rig = rigs[{c.kind, c.row}];
        if (!rig) { // the first photo takes the stage at 0 in a Panner of fit 1; the next waits
            rig = std::make_unique<Rig>(c.kind, EffectOptions{0, c.kind == kPanner}, 640, 480, 2);
            rig->Frame(-500);
            RunJobs(rig->queue, 1);
            SetNextRandom(c.row);
            rig->Frame(0);
            RunJobs(rig->queue, 1);
        }
        const auto frame = rig->Frame(c.at);
        const auto photos = frame.Calls(Op::DrawBitmap);
        if (c.kind == kReflections) // the stage comes first, on every frame
            EXPECT_EQ(frame.Calls(Op::FillRectangle).at(0).rect, (RectF{0, 0, 640, 480}));
        ASSERT_EQ(photos.size(), c.opacity < 0 ? 0 : c.draws);
        if (photos.empty()) continue;
        const SurfaceCall& photo = photos[0];
        EXPECT_NEAR(photo.opacity, c.opacity, 1e-6);
        EXPECT_EQ(frame.Calls(Op::PushLayer).empty(), c.opacity >= 1); // full: no layer
        EXPECT_TRUE(Near(photo.transform, c.transform));
        rig->LoseTarget(); // the same picture comes back from kept pixels
        const auto again = rig->Draws(c.at);
        ASSERT_EQ(again.size(), c.draws); // the next row of this rig checks where it lands
        const size_t uploads = rig->log->Calls(Op::CreateBitmap).size();
        rig->Frame(c.at); // the upload lasts the photo's whole turn
        EXPECT_EQ(rig->log->Calls(Op::CreateBitmap).size(), uploads);
        if (c.kind == kReflections) continue;
        const SurfaceCall upload = rig->UploadOf(again[0]);
        EXPECT_EQ(upload.pixels[upload.pixels.size() / 2], kColours[c.photo]);
        EXPECT_EQ(upload.rect.right, c.kind == kPanner ? 768 : 640); // the Panner's up to 1.2
        EXPECT_EQ(photo.rect, (RectF{0, 0, 640, 480}));
        const auto captions = frame.Calls(Op::DrawString); // they fade and move with the photo
        ASSERT_EQ(captions.size(), 2u);
        EXPECT_EQ(captions[0].rect, (RectF{66, 66, 578, 482})); // the black copy, at scale 2
        EXPECT_EQ(captions[1].rect, (RectF{64, 64, 576, 480}));
        EXPECT_EQ(captions[1].text, c.photo ? L"Beta" : L"Alpha");
        for (const auto& caption : captions)
            EXPECT_TRUE(caption.opacity == photo.opacity && caption.transform == photo.transform);
    }
    // Captions: light Segoe UI from one brush, black for the copy, then white; the text wraps from
    // the leading edge.
    const SurfaceLog& log = *rigs[{kFader, 0}]->log;
    const SurfaceCall format = log.Calls(Op::CreateTextFormat).back();
    EXPECT_TRUE(format.font.family == L"Segoe UI" && format.font.weight == 300);
    EXPECT_FLOAT_EQ(format.font.size, 38.4f);
    EXPECT_EQ(log.Calls(Op::CreateSolidColorBrush).back().color, (ColorF{0, 0, 0, 1}));
    EXPECT_EQ(log.Calls(Op::SetColor).back().color, (ColorF{1, 1, 1, 1}));
    EXPECT_EQ(log.Calls(Op::SetTextAlignment).back().value, int(TextAlignment::Leading));
    EXPECT_EQ(log.Calls(Op::SetWordWrapping).back().value, int(WordWrapping::Wrap));
}

TEST(Reflections, CompositeFramesThePhotoAndMirrorsOnlyThePhotoOncePerPhoto) {
    Rig rig(kReflections, {0, false}, 640, 360); // a portrait photo on a wide canvas
    FakeFiles().files[rig.photos[0]] = {300, 400, 0, kColours[0]};
    rig.Frame(0);
    RunJobs(rig.queue, 1);
    rig.Frame(10);
    rig.Frame(10 + 3000);
    rig.Frame(10 + 3100);
    const auto made = rig.log->Calls(Op::CreateCompatibleRenderTarget);
    ASSERT_EQ(made.size(), 1u); // once per photo
    EXPECT_EQ(made[0].rect, (RectF{0, 0, 640, 360}));
    const auto of = [&](Op op) { return rig.log->Calls(op, made[0].object); };
    // The photo was asked for at 80% of the canvas and fits its height: 216 x 288.
    const RectF photo{212, 36, 428, 324};
    ASSERT_EQ(of(Op::FillRectangle).size(), 1u);
    EXPECT_EQ(of(Op::FillRectangle)[0].rect, (RectF{64, 36, 576, 324})); // the frame
    const auto draws = of(Op::DrawBitmap);
    ASSERT_EQ(draws.size(), 3u);                   // shadow, photo, mirror image
    EXPECT_EQ(draws[0].rect.top, 36 - 90 + 20.0f); // the shadow: pad 90, dropped by 20
    EXPECT_TRUE(draws[1].rect == photo && draws[1].transform == Matrix3x2F{});
    EXPECT_TRUE(draws[2].rect == photo && draws[2].transform == (Matrix3x2F{1, 0, 0, -1, 0, 668}));
    const auto gradient = of(Op::CreateLinearGradientBrush).at(0);
    EXPECT_EQ(gradient.rect, (RectF{0, 344, 0, 344 + 288}));
    const float alphas[] = {1.0f, 0.5f, 0.0f};
    ASSERT_EQ(gradient.stops.size(), 3u);
    for (size_t i = 0; i < 3; ++i) EXPECT_EQ(gradient.stops[i].color, (ColorF{1, 1, 1, alphas[i]}));
    EXPECT_EQ(of(Op::Clear).at(0).color, (ColorF{0, 0, 0, 0})); // transparent around
    const auto pushes = of(Op::PushLayer), titles = of(Op::DrawString);
    ASSERT_TRUE(pushes.size() == 1 && titles.size() == 1);
    EXPECT_TRUE(pushes[0].object == gradient.object && pushes[0].opacity == 1);
    EXPECT_TRUE(titles[0].text == L"Alpha" && titles[0].rect == (RectF{0, 324, 640, 374}));
    EXPECT_EQ(of(Op::SetParagraphAlignment).at(0).value, int(ParagraphAlignment::Far)); // bottom
    EXPECT_EQ(of(Op::CreateSolidColorBrush).back().color, (ColorF{1, 1, 1, 0.8f}));
    RunJobs(rig.queue);
    rig.Frame(10 + 7200); // the next photo takes the stage, and gets a picture of its own
    rig.Frame(10 + 7200 + 1100);
    EXPECT_EQ(rig.log->Calls(Op::CreateCompatibleRenderTarget).size(), 2u);
}

TEST(Faller, OpensFullUnderAVeilWithPrintsPlacedApartAndBordersByTheWidth) {
    // The first four prints take 25, 29, 32 and 35% of the width. The opening draws from 35
    // below 2^32 on, so that print 0's numbers all come out as 1.0 in 32-bit float and it stands
    // at 95 percent. Print 1's first seven candidates stand at 94.2, its eighth, drawn as 0, at
    // 5.8. With no other print on stage the largest further number, 2^32 - 1, picks the seventh;
    // with print 0 counted, the eighth is farther from it. Then print 1 turns from 1.5 degrees
    // to -1 as its side, its start and its end come out of numbers close to 0.
    //
    // Width, scale, border (0.45% of the width, within 4 and 10 x scale), the opening (print 0
    // counts for print 1 once it has left the top, from 7000 on), and print 1's centre.
    // clang-format off
    const float cases[][5] = {{640, 1, 4, 5000, .942f}, {640, 2, 8, 7000, .058f},
                              {1920, 1, 8.64f, 7000, .058f}, {3840, 1, 10, 5000, .942f}};
    // clang-format on
    const double lead[] = {7000, 6000, 3300, 0}, duration[] = {10000, 12000, 11000, 9000};
    for (const auto& [width, scale, border, start, x] : cases) {
        Rig rig(EffectKind::Faller, {}, width, 480, scale);
        SetNextRandom(0);
        rig.Frame(0);
        RunJobs(rig.queue, 3);
        EXPECT_TRUE(rig.Frame(100).Calls(Op::FillRectangle).empty()); // black while one is missing
        RunJobs(rig.queue);
        SetNextRandom(0xFFFFFFFF - 34);
        // The first painted frame lies under an opaque veil; there the last print is at q 0.
        EXPECT_EQ(rig.Frame(start).Calls(Op::FillRectangle).back().rect, (RectF{0, 0, width, 480}));
        // The gradient, then each print's paper; its photo comes after its shadow. The veil lifts.
        const auto frame = rig.Frame(start + 450);
        const auto fills = frame.Calls(Op::FillRectangle), photos = frame.Calls(Op::DrawBitmap);
        EXPECT_EQ(frame.Calls(Op::CreateSolidColorBrush).back().color,
                  (ColorF{0, 0, 0, static_cast<float>(1 - EaseOut(0.125))}));
        for (size_t i = 0; i < 4; ++i) {
            const double q = (450 + lead[i]) / duration[i];
            const SurfaceCall& photo = photos.at(2 * i + 1);
            const RectF& paper = fills.at(i + 1).rect;
            EXPECT_NEAR(photo.transform.dy, 480 * (q * 1.4 - 0.3) + paper.bottom, 1e-3);
            EXPECT_FLOAT_EQ(photo.opacity, static_cast<float>(std::min(q / 0.08, 1.0)));
            const RectF size = rig.UploadOf(photo).rect; // the photo inside its border
            EXPECT_TRUE(Near(photo.rect, RectF{paper.left + border, paper.top + border,
                                               paper.left + border + size.right,
                                               paper.top + border + size.bottom}));
        }
        const Matrix3x2F& m = photos.at(3).transform; // print 1 at q 0.5375
        EXPECT_NEAR(m.dx, width * x, 1e-3);
        EXPECT_NEAR(std::atan2(m.m12, m.m11) * 57.29577951308232, 1.5 - 2.5 * 0.5375, 1e-4);
        rig.LoseTarget(); // the prints come back from kept pixels
        EXPECT_EQ(rig.Draws(start + 450).size(), 8u);
    }
}

TEST(FourUp, StartsFourSecondsApartInTwoColumnsWithTheBottomRowUnderTheTallerTopPhoto) {
    // On 1920 x 200 with files of 800 x 100; file 1, slot 0's second photo, comes on at 13401.
    // Scale, file 1's size, the layout of the others (left, right column, cell, row height), and
    // the bottom row's top under file 1: four canvases high bound file 1 to 80 x 800; 944 x 59
    // is lower than slot 1's photo; at scale 2 file 1 is 800 x 800.
    // clang-format off
    const float cases[][8] = {{1, 100, 1000, 8, 976, 944, 118, 816},
                              {1, 800, 50, 8, 976, 944, 118, 134},
                              {2, 400, 400, 16, 992, 928, 116, 832}};
    // clang-format on
    // Each photo is delivered at once: slot i asks at 4000 i, comes on 1 ms later, dark for 1300.
    // clang-format off
    const std::pair<double, size_t> shown[] = {{0, 0}, {1, 0}, {1301, 1}, {3999, 1}, {4000, 1},
        {4001, 1}, {5300, 1}, {5301, 2}, {8000, 2}, {8001, 2}, {9300, 2}, {9301, 3}, {12000, 3},
        {12001, 3}, {13300, 3}};
    // clang-format on
    for (const auto& [scale, width, height, left, column, cell, row, bottom] : cases) {
        Rig rig(EffectKind::FourUp, {1, false}, 1920, 200, scale);
        for (const auto& photo : rig.photos) FakeFiles().files[photo] = {800, 100};
        FakeFiles().files[rig.photos[1]] = {uint32_t(width), uint32_t(height)};
        // Draws 3 to 6 pick rows 0, 1, 2 and 0 around pause index 1: rests of 6, 10, 20 and 6 s.
        SetNextRandom(3);
        for (const auto& [at, count] : shown) {
            EXPECT_EQ(rig.Draws(at).size(), count) << at;
            RunJobs(rig.queue);
        }
        // Slot 0 has faded out; slot 2 stands in the left column under the taller top photo.
        const float second = left + row + 8 * scale;
        EXPECT_EQ(rig.Draws(13400).at(1).rect, (RectF{left, second, left + cell, second + row}));
        rig.LoseTarget(); // the photos come back from kept pixels
        EXPECT_EQ(rig.Draws(13400).at(2).rect.left, column);
        EXPECT_EQ(rig.Draws(13401).back().rect.top, bottom);
    }
}

// The shared curves, holds and shadow against their reference numbers (the opacity timeline is
// checked through the Fader's).
TEST(Curves, MatchTheReferenceValuesAndClampHoldsFollowTheirColumnAndShadowsBlur) {
    const struct {
        double (*curve)(double);
        double at25, at75;
    } cases[] = {
        {Ease, 0.408511, 0.960459}, {EaseIn, 0.093465, 0.621862}, {EaseOut, 0.378138, 0.906535}};
    for (const auto& c : cases) {
        EXPECT_NEAR(c.curve(0.25), c.at25, 1e-6);
        EXPECT_NEAR(c.curve(0.75), c.at75, 1e-6);
        EXPECT_EQ(c.curve(7.0), 1.0); // exactly, so that tests against 1.0 fire
        EXPECT_EQ(c.curve(-3.0), c.curve(0.0));
    }
    EXPECT_NEAR(Ease(0), 2.79e-10, 0.01e-10); // thirty halvings end just above 0, at 2^-30

    // The holds: index, then the seconds of Fader, Slider, Reflections and Faller; Panner; FourUp.
    // clang-format off
    const int32_t rows[][4] = {{-1, 3, 3, 6}, {0, 3, 3, 6}, {1, 5, 5, 10}, {2, 10, 10, 20},
                               {3, 20, 15, 40}, {4, 30, 20, 60}, {5, 60, 60, 120}, {9, 60, 60, 120}};
    // clang-format on
    for (const auto& [index, fader, panner, fourUp] : rows) {
        for (const EffectKind kind :
             {EffectKind::Fader, EffectKind::Slider, EffectKind::Reflections, EffectKind::Faller})
            EXPECT_EQ(HoldSeconds(kind, index), fader) << index;
        EXPECT_EQ(HoldSeconds(EffectKind::Panner, index), panner) << index;
        EXPECT_EQ(HoldSeconds(EffectKind::FourUp, index), fourUp) << index;
    }

    // The shadow is a Gaussian blur of the rectangle at reduced resolution.
    Shadow shadow;
    BuildShadow(300, 200, 50, 0.65f, shadow);
    ASSERT_EQ(shadow.image.width * shadow.image.height, 113 * 88); // pad 75 around, a quarter
    const auto pixel = [&](int i, int j) { return shadow.image.pixels[size_t(j * 113 + i)]; };
    EXPECT_EQ(pixel(56, 44), 166u << 24); // black at the middle
    EXPECT_EQ(pixel(0, 0) | pixel(112, 87), 0u);
    EXPECT_NEAR(pixel(18, 44) >> 24, 166 / 2, 4); // half strength where the rectangle begins
}

} // namespace
