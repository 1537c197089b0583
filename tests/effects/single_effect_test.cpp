// Fader, Slider and Panner frame by frame on a recording target, with scripted photo arrivals.
#include <gtest/gtest.h>

#include "effects/timing.h"
#include "effects/effect_rig.h"
#include "support/random_fake.h"

namespace {

using Op = SurfaceCall::Op;
constexpr double kHold = 3000; // pause index 0
constexpr double kShown = 500; // when the first photo takes the stage in these tests

// A rig whose first photo took the stage at kShown, with random row `row`.
struct Staged : EffectRig {
    Staged(EffectKind kind, EffectOptions options = {0, false}, uint32_t row = 2)
        : EffectRig(kind, options) {
        Frame(0); // the first request
        Deliver(1);
        SetNextRandom(row);
        Frame(kShown);
    }
};

// What one frame shows of the photo: nothing, or the photo's draw with its caption.
struct Seen {
    bool drawn = false;
    SurfaceCall photo;
    std::vector<SurfaceCall> captions;
};
Seen Look(const std::vector<SurfaceCall>& frame) {
    Seen seen;
    const auto photos = OfOp(frame, Op::DrawBitmap);
    seen.drawn = !photos.empty();
    if (seen.drawn) seen.photo = photos.front();
    seen.captions = OfOp(frame, Op::DrawString);
    EXPECT_LE(photos.size(), 1u);
    for (const auto& caption : seen.captions) {
        // The caption fades and moves with the photo.
        EXPECT_EQ(caption.layerOpacity, seen.photo.layerOpacity);
        EXPECT_EQ(caption.transform, seen.photo.transform);
    }
    return seen;
}

TEST(SingleEffect, FaderFadesInPlaceAndSliderSlidesThroughWithTheirCaptions) {
    constexpr auto kFader = EffectKind::Fader, kSlider = EffectKind::Slider;
    const struct {
        EffectKind kind;
        double at;      // after shownAt
        double x;       // the photo's shift to the right
        double opacity; // -1: nothing drawn
    } cases[] = {
        {kFader, 0, 0, -1}, {kFader, 1299, 0, -1}, {kFader, 1300, 0, Ease(0)},
        {kFader, 2800, 0, Ease(0.5)}, {kFader, 4300, 0, 1}, {kFader, 4299 + kHold, 0, 1},
        {kFader, 4300 + kHold, 0, 1 - EaseIn(0)}, {kFader, 5800 + kHold, 0, 1 - EaseIn(0.5)},
        {kFader, 7300 + kHold, 0, -1}, {kFader, 7399 + kHold, 0, -1},
        {kSlider, 99, 0, -1}, {kSlider, 100, -640 * (1 - Ease(0)), Ease(0)},
        {kSlider, 1600, -640 * (1 - Ease(0.5)), Ease(0.5)}, {kSlider, 3100, 0, 1},
        {kSlider, 3099 + kHold, 0, 1}, {kSlider, 4600 + kHold, 1280 * EaseIn(0.5), 1 - EaseIn(0.5)},
        {kSlider, 6100 + kHold, 0, -1},
    };
    Staged fader(kFader), slider(kSlider);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << int(c.kind) << " at " << c.at);
        Staged& rig = c.kind == kFader ? fader : slider;
        const auto frame = rig.Frame(kShown + c.at);
        const Seen seen = Look(frame);
        ASSERT_EQ(seen.drawn, c.opacity >= 0);
        if (!seen.drawn) continue;
        EXPECT_FLOAT_EQ(seen.photo.layerOpacity, static_cast<float>(c.opacity));
        EXPECT_EQ(OfOp(frame, Op::PushLayer).empty(), c.opacity >= 1); // full strength: no layer
        EXPECT_EQ(seen.photo.transform, (Matrix3x2F{1, 0, 0, 1, static_cast<float>(c.x), 0}));
        EXPECT_EQ(seen.photo.rect, (RectF{0, 0, 640, 480}));
        ASSERT_EQ(seen.captions.size(), 2u);
        EXPECT_EQ(seen.captions[1].text, L"Alpha");
        EXPECT_EQ(rig.ColourOf(seen.photo), EffectRig::kColours[0]);
    }
    EXPECT_EQ(fader.log->bitmapsCreated, 1); // one upload for the whole turn
    // Without a layer the photo is drawn at full strength, still on its way in.
    slider.canvas.layer = nullptr;
    const Seen seen = Look(slider.Frame(kShown + 1600));
    EXPECT_EQ(seen.photo.layerOpacity, 1.0f);
    EXPECT_FLOAT_EQ(seen.photo.transform.dx, static_cast<float>(-640 * (1 - Ease(0.5))));
}

TEST(Panner, RestsWhileFadingInThenDriftsAndZoomsByItsRow) {
    constexpr double kPannerHold = 3000;
    const struct {
        uint32_t row;
        double at;
        double opacity; // -1: nothing drawn
        double progress;
    } cases[] = {
        {0, 99, -1, 0},
        {0, 100, Ease(0), 0},
        {0, 3099, Ease(2999.0 / 3000), 0},
        {0, 3100 + 0.5 * kPannerHold, 1, EaseIn(0.5 / 0.85) * 0.85},
        {4, 3100 + 0.85 * kPannerHold, 1 - EaseIn(0), 0.85},
        {1, 3100 + 0.925 * kPannerHold, 1 - EaseIn(0.5), EaseIn(0.5) * 0.15 + 0.85},
        {2, 3100 + 0.925 * kPannerHold, 1 - EaseIn(0.5), EaseIn(0.5) * 0.15 + 0.85},
        {3, 3100 + 0.99 * kPannerHold, 1 - EaseIn(0.14 / 0.15), EaseIn(0.14 / 0.15) * 0.15 + 0.85},
        {3, 3100 + kPannerHold, -1, 0},
    };
    const double pans[] = {0.1, 0.05, 0.0, -0.05, -0.1};
    const double zooms[] = {1.2, 1.1, 1.1, 1.1, 1.2};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "row " << c.row << " at " << c.at);
        Staged rig(EffectKind::Panner, {0, true}, c.row);
        const Seen seen = Look(rig.Frame(kShown + c.at));
        ASSERT_EQ(seen.drawn, c.opacity >= 0);
        if (!seen.drawn) continue;
        EXPECT_NEAR(seen.photo.layerOpacity, c.opacity, 1e-5);
        // Scaled by z about the middle, then moved right by progress x pan x width.
        const double z = (zooms[c.row] - 1) * c.progress + 1;
        const Matrix3x2F& m = seen.photo.transform;
        EXPECT_NEAR(m.m11, z, 1e-5);
        EXPECT_NEAR(m.m22, z, 1e-5);
        EXPECT_EQ(m.m12, 0.0f);
        EXPECT_NEAR(m.dx, 320 * (1 - z) + c.progress * pans[c.row] * 640, 1e-3);
        EXPECT_NEAR(m.dy, 240 * (1 - z), 1e-3);
    }
}

TEST(SingleEffect, AsksForTheShapeAndSizeOfItsKind) {
    const struct {
        EffectKind kind;
        bool fit;
        uint32_t maximumBitmap;
        uint32_t width, height;
        bool bars; // the 4:3 photo on a 16:9 canvas leaves black beside it
    } cases[] = {
        {EffectKind::Fader, false, 16384, 320, 180, true},
        {EffectKind::Fader, true, 16384, 320, 180, false},
        {EffectKind::Slider, true, 16384, 320, 180, false},
        {EffectKind::Panner, true, 16384, 384, 216, true}, // up to 1.2 times, never cropped
        {EffectKind::Panner, false, 300, 300, 168, true},  // within the device's largest bitmap
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << int(c.kind) << " fit " << c.fit);
        EffectRig rig(c.kind, {0, c.fit}, 320, 180);
        rig.log->maximumBitmapSize = c.maximumBitmap;
        rig.Frame(0);
        rig.Deliver();
        rig.Frame(10);
        rig.Frame(10 + 3500);
        const auto uploads = rig.log->Calls(Op::CreateBitmap);
        ASSERT_EQ(uploads.size(), 1u);
        EXPECT_EQ(uploads[0].width, c.width);
        EXPECT_EQ(uploads[0].height, c.height);
        EXPECT_EQ(uploads[0].pixels[0] == 0xFF000000, c.bars);
    }
}

TEST(SingleEffect, ChangesAtTheCycleEndOnlyWhenTheNextPhotoIsThere) {
    Staged rig(EffectKind::Fader);
    const double cycle = kHold + 7400;
    rig.Deliver(); // the second photo waits from the first frame on
    // One frame short of the cycle nothing changes; exactly at its end the next photo is on at
    // its time 0, so that 2800 later it is half faded in.
    EXPECT_FALSE(Look(rig.Frame(kShown + cycle - 1)).drawn);
    rig.Frame(kShown + cycle);
    Seen seen = Look(rig.Frame(kShown + cycle + 2800));
    ASSERT_TRUE(seen.drawn);
    EXPECT_EQ(rig.ColourOf(seen.photo), EffectRig::kColours[1]);
    EXPECT_FLOAT_EQ(seen.photo.layerOpacity, static_cast<float>(Ease(0.5)));

    // The third photo is late: the dark gap grows until it comes, and its timeline starts then.
    const double second = kShown + cycle;
    EXPECT_FALSE(Look(rig.Frame(second + cycle + 5000)).drawn);
    rig.Deliver();
    rig.Frame(second + cycle + 6000);
    EXPECT_FALSE(Look(rig.Frame(second + cycle + 7299)).drawn);
    seen = Look(rig.Frame(second + cycle + 8800));
    EXPECT_EQ(rig.ColourOf(seen.photo), EffectRig::kColours[2]);
    EXPECT_FLOAT_EQ(seen.photo.layerOpacity, static_cast<float>(Ease(0.5)));
}

TEST(SingleEffect, APhotoThatFailedToDecodeTakesItsTurnInTheDark) {
    Staged rig(EffectKind::Fader);
    for (auto& file : FakeFiles().files) file.second.damaged = true;
    rig.Deliver(); // every candidate fails: an empty photo
    for (auto& file : FakeFiles().files) file.second.damaged = false;
    const double cycle = kHold + 7400;
    rig.Frame(kShown + cycle); // the empty photo takes the stage, and asks for its successor
    rig.Deliver();
    EXPECT_FALSE(Look(rig.Frame(kShown + cycle + 5000)).drawn);
    rig.Frame(kShown + 2 * cycle);
    const Seen seen = Look(rig.Frame(kShown + 2 * cycle + 5000));
    ASSERT_TRUE(seen.drawn);
    EXPECT_EQ(rig.ColourOf(seen.photo), EffectRig::kColours[2]);
}

TEST(SingleEffect, ALostTargetBringsBackTheSamePictureFromKeptPixels) {
    for (const EffectKind kind : {EffectKind::Fader, EffectKind::Slider, EffectKind::Panner}) {
        SCOPED_TRACE(int(kind));
        Staged rig(kind, {0, false}, 0);
        const Seen before = Look(rig.Frame(kShown + 3500));
        rig.LoseTarget();
        EXPECT_EQ(rig.log->bitmapsAlive, 0);
        const Seen after = Look(rig.Frame(kShown + 3500));
        ASSERT_TRUE(before.drawn && after.drawn);
        EXPECT_NE(after.photo.object, before.photo.object);
        EXPECT_EQ(after.photo.rect, before.photo.rect);
        EXPECT_EQ(after.photo.transform, before.photo.transform);
        EXPECT_EQ(after.photo.layerOpacity, before.photo.layerOpacity);
        EXPECT_EQ(rig.ColourOf(after.photo), EffectRig::kColours[0]);
        EXPECT_TRUE(rig.log->misuses.empty());
    }
}

TEST(Captions, ScaleWithTheWindowAndVanishWithAnEmptyTitle) {
    Staged rig(EffectKind::Fader);
    rig.canvas.scale = 2;
    Seen seen = Look(rig.Frame(kShown + 5000));
    ASSERT_EQ(seen.captions.size(), 2u);
    EXPECT_EQ(seen.captions[0].rect, (RectF{66, 66, 578, 482})); // the black copy
    EXPECT_EQ(seen.captions[1].rect, (RectF{64, 64, 576, 480}));
    const auto formats = rig.log->Calls(Op::CreateTextFormat);
    ASSERT_FALSE(formats.empty());
    EXPECT_EQ(formats.back().text, L"Segoe UI");
    EXPECT_EQ(formats.back().font.weight, 300);
    EXPECT_FLOAT_EQ(formats.back().font.size, 38.4f);
    // One brush, black for the copy, then white; the text wraps from the leading edge.
    EXPECT_EQ(rig.log->Calls(Op::CreateSolidColorBrush).back().color, (ColorF{0, 0, 0, 1}));
    EXPECT_EQ(rig.log->Calls(Op::SetColor).back().color, (ColorF{1, 1, 1, 1}));
    EXPECT_EQ(rig.log->Calls(Op::SetTextAlignment).back().value, int(TextAlignment::Leading));
    EXPECT_EQ(rig.log->Calls(Op::SetWordWrapping).back().value, int(WordWrapping::Wrap));

    EffectRig plain(EffectKind::Fader, {0, false}); // photos come without captions
    plain.source.titleFlags = {false, false};
    plain.Frame(0);
    plain.Deliver();
    plain.Frame(1);
    EXPECT_TRUE(Look(plain.Frame(5001)).drawn);
    EXPECT_TRUE(plain.log->Calls(Op::CreateTextFormat).empty());
}

} // namespace
