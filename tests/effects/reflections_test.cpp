// Reflections: the strips of the turning picture, the composite's layout, and its timeline.
#include <gtest/gtest.h>

#include "effects/effect_rig.h"
#include "effects/single_effect.h"
#include "effects/timing.h"

namespace {

using Op = SurfaceCall::Op;

void ExpectRectNear(const RectF& actual, const RectF& expected) {
    EXPECT_NEAR(actual.left, expected.left, 0.01);
    EXPECT_NEAR(actual.top, expected.top, 0.01);
    EXPECT_NEAR(actual.right, expected.right, 0.01);
    EXPECT_NEAR(actual.bottom, expected.bottom, 0.01);
}

TEST(Reflections, PerspectiveCutsThePictureIntoOverlappingStrips) {
    const auto log = std::make_shared<SurfaceLog>();
    const auto target = MakeRecordingSurface(log);
    const uint32_t pixel = 0;
    const auto picture = target->CreateBitmap(1, 1, &pixel);
    const Canvas canvas{target.get(), nullptr, 1000, 800, 1, nullptr};
    target->BeginDraw();
    DrawPerspective(canvas, *picture, -500, 45);
    auto strips = log->Calls(Op::DrawBitmap);
    ASSERT_EQ(strips.size(), 250u);
    // The left edge stands nearer, the right edge farther.
    const std::pair<size_t, RectF> references[] = {
        {0, {191.11f, 51.53f, 195.33f, 748.47f}},
        {125, {499.5f, 133.58f, 502.38f, 666.42f}},
        {249, {689.01f, 184.03f, 691.24f, 615.97f}},
    };
    for (const auto& [index, destination] : references) {
        SCOPED_TRACE(index);
        ExpectRectNear(strips[index].rect, destination);
        const float x0 = 4.0f * static_cast<float>(index);
        EXPECT_EQ(strips[index].source, (RectF{x0, 0, x0 + 4, 800}));
    }

    log->calls.clear(); // a width that isn't a multiple of 4 ends in a narrower strip
    DrawPerspective({target.get(), nullptr, 1002, 800, 1, nullptr}, *picture, -100, -10);
    strips = log->Calls(Op::DrawBitmap);
    ASSERT_EQ(strips.size(), 251u);
    EXPECT_EQ(strips.back().source, (RectF{1000, 0, 1002, 800}));

    log->calls.clear(); // flat: the whole picture at once
    DrawPerspective(canvas, *picture, 0, 0);
    strips = log->Calls(Op::DrawBitmap);
    ASSERT_EQ(strips.size(), 1u);
    EXPECT_EQ(strips[0].rect, (RectF{0, 0, 1000, 800}));
    EXPECT_FALSE(strips[0].source.has_value());
}

// A portrait photo on a wide canvas, on stage from time 10.
struct Portrait : EffectRig {
    Portrait() : EffectRig(EffectKind::Reflections, {0, false}, 640, 360) {
        FakeFiles().files[photos[0]] = {300, 400, 0, kColours[0]};
        Frame(0);
        Deliver(1);
        Frame(10);
    }
    // The calls on the offscreen target `offscreen`.
    std::vector<SurfaceCall> OffscreenCalls(int offscreen) const {
        std::vector<SurfaceCall> result;
        for (const auto& call : log->calls)
            if (call.target == offscreen) result.push_back(call);
        return result;
    }
};

TEST(Reflections, CompositeFramesThePhotoAndMirrorsOnlyThePhoto) {
    Portrait rig;
    rig.Frame(10 + 3000);
    const auto made = rig.log->Calls(Op::CreateCompatibleRenderTarget);
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].size.width, 640.0f);
    EXPECT_EQ(made[0].width, 640u);
    EXPECT_EQ(made[0].height, 360u);
    const auto calls = rig.OffscreenCalls(made[0].object);
    // The photo was asked for at 80% of the canvas and fits its height: 216 x 288.
    const RectF frame{64, 36, 576, 324};
    const RectF photo{212, 36, 428, 324};
    const auto fills = OfOp(calls, Op::FillRectangle);
    ASSERT_EQ(fills.size(), 1u);
    EXPECT_EQ(fills[0].rect, frame);
    const auto draws = OfOp(calls, Op::DrawBitmap);
    ASSERT_EQ(draws.size(), 3u); // shadow, photo, mirror image
    EXPECT_EQ(draws[0].rect.top, 36 - 90 + 20.0f); // the shadow: pad 90, dropped by 20
    EXPECT_EQ(draws[1].rect, photo);
    EXPECT_EQ(draws[1].transform, Matrix3x2F{});
    EXPECT_EQ(draws[2].rect, photo);
    EXPECT_EQ(draws[2].transform, (Matrix3x2F{1, 0, 0, -1, 0, 668}));
    const auto gradients = OfOp(calls, Op::CreateLinearGradientBrush);
    ASSERT_EQ(gradients.size(), 1u);
    EXPECT_EQ(gradients[0].start.y, 344.0f);
    EXPECT_EQ(gradients[0].end.y, 344.0f + 288);
    const std::vector<float> alphas{1.0f, 0.5f, 0.0f};
    ASSERT_EQ(gradients[0].stops.size(), 3u);
    for (size_t i = 0; i < 3; ++i) EXPECT_EQ(gradients[0].stops[i].color, (ColorF{1, 1, 1, alphas[i]}));
    EXPECT_EQ(OfOp(calls, Op::Clear).at(0).color, (ColorF{0, 0, 0, 0})); // transparent around
    const auto pushes = OfOp(calls, Op::PushLayer);
    ASSERT_EQ(pushes.size(), 1u);
    EXPECT_EQ(pushes[0].brush, gradients[0].object);
    EXPECT_EQ(pushes[0].opacity, 1.0f);
    const auto titles = OfOp(calls, Op::DrawString);
    ASSERT_EQ(titles.size(), 1u);
    EXPECT_EQ(titles[0].text, L"Alpha");
    EXPECT_EQ(titles[0].rect, (RectF{0, 324, 640, 374}));
    EXPECT_EQ(OfOp(calls, Op::CreateSolidColorBrush).back().color, (ColorF{1, 1, 1, 0.8f}));
    EXPECT_EQ(calls.back().op, Op::GetBitmap);
    EXPECT_TRUE(rig.log->misuses.empty());
}

TEST(Reflections, TurnsInRestsFlatAndTurnsAwayOverTheGradientStage) {
    constexpr double kHold = 3000;
    const struct {
        double at;
        double opacity; // -1: only the stage
        size_t draws;   // strips, or 1 flat
    } cases[] = {
        {99, -1, 0}, {100, EaseOut(0), 160}, {1100, EaseOut(0.5), 160}, {2100, 1, 1},
        {2099 + kHold, 1, 1}, {3100 + kHold, 1 - EaseIn(0.5), 160}, {4100 + kHold, -1, 0},
    };
    Portrait rig;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.at);
        const auto frame = rig.Frame(10 + c.at);
        const auto fills = OfOp(frame, Op::FillRectangle);
        ASSERT_FALSE(fills.empty());
        EXPECT_EQ(fills[0].rect, (RectF{0, 0, 640, 360})); // the stage comes first
        std::vector<SurfaceCall> draws;
        for (const auto& call : OfOp(frame, Op::DrawBitmap))
            if (call.target == rig.log->calls.front().target) draws.push_back(call);
        ASSERT_EQ(draws.size(), c.draws);
        if (c.draws) EXPECT_FLOAT_EQ(draws[0].layerOpacity, static_cast<float>(c.opacity));
    }
    EXPECT_EQ(rig.log->Calls(Op::CreateCompatibleRenderTarget).size(), 1u); // once per photo

    // A lost target and a new photo each build the composite again.
    rig.LoseTarget();
    rig.Frame(10 + 2500);
    rig.Deliver();
    rig.Frame(10 + kHold + 4200);
    rig.Frame(10 + kHold + 4200 + 2500);
    EXPECT_EQ(rig.log->Calls(Op::CreateCompatibleRenderTarget).size(), 3u);
    EXPECT_TRUE(rig.log->misuses.empty());
}

} // namespace
