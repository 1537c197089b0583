// The shared curves, holds and shadow against their reference numbers (the opacity timeline is
// checked through the Fader's).
#include <gtest/gtest.h>

#include "effects/painting.h"
#include "effects/timing.h"

namespace {

TEST(Curves, MatchTheReferenceValuesAndClampAndHoldsFollowTheirColumn) {
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
}

TEST(Shadow, IsAGaussianBlurOfTheRectangleAtReducedResolution) {
    Shadow shadow;
    BuildShadow(300, 200, 50, 0.65f, shadow);
    EXPECT_EQ(shadow.pad, 75.0f);
    ASSERT_EQ(shadow.image.width * shadow.image.height, 113 * 88);
    const auto pixel = [&](int i, int j) { return shadow.image.pixels[size_t(j * 113 + i)]; };
    EXPECT_EQ(pixel(56, 44), 166u << 24); // black at the middle
    EXPECT_EQ(pixel(0, 0) | pixel(112, 87), 0u);
    EXPECT_NEAR(pixel(18, 44) >> 24, 166 / 2, 4); // half strength where the rectangle begins
    BuildShadow(10, 10, 0, 1.0f, shadow);         // no size: sigma 1
    EXPECT_EQ(shadow.image.width, 4);             // ceil(16 / 4)
}

} // namespace
