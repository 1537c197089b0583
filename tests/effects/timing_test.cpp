// The shared curves, holds and shadow against their reference numbers (the opacity timeline is
// checked through the Fader's).
#include <gtest/gtest.h>

#include "effects/painting.h"
#include "effects/timing.h"

namespace {

TEST(Curves, MatchTheReferenceValuesAndClampOutsideZeroToOne) {
    const struct {
        double (*curve)(double);
        double at25, at50, at75;
    } cases[] = {
        {Ease, 0.408511, 0.802403, 0.960459},
        {EaseIn, 0.093465, 0.315357, 0.621862},
        {EaseOut, 0.378138, 0.684643, 0.906535},
    };
    for (const auto& c : cases) {
        EXPECT_NEAR(c.curve(0.25), c.at25, 1e-6);
        EXPECT_NEAR(c.curve(0.5), c.at50, 1e-6);
        EXPECT_NEAR(c.curve(0.75), c.at75, 1e-6);
        EXPECT_EQ(c.curve(1.0), 1.0); // exactly, so that tests against 1.0 fire
        EXPECT_EQ(c.curve(7.0), 1.0);
        EXPECT_EQ(c.curve(-3.0), c.curve(0.0));
    }
    // Thirty halvings end just above 0, at 2^-30, not at it.
    EXPECT_NEAR(Ease(0), 2.79e-10, 0.01e-10);
}

TEST(Curves, HoldsFollowTheirColumnAndClampTheIndex) {
    const struct {
        int32_t index;
        int32_t fader, panner, fourUp;
    } rows[] = {
        {-1, 3, 3, 6}, {0, 3, 3, 6}, {1, 5, 5, 10}, {2, 10, 10, 20},
        {3, 20, 15, 40}, {4, 30, 20, 60}, {5, 60, 60, 120}, {9, 60, 60, 120},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.index);
        for (const EffectKind kind : {EffectKind::Fader, EffectKind::Slider, EffectKind::Reflections})
            EXPECT_EQ(HoldSeconds(kind, r.index), r.fader);
        EXPECT_EQ(HoldSeconds(EffectKind::Panner, r.index), r.panner);
        EXPECT_EQ(HoldSeconds(EffectKind::FourUp, r.index), r.fourUp);
    }
}

TEST(Shadow, IsAGaussianBlurOfTheRectangleAtReducedResolution) {
    Shadow shadow;
    shadow.image.bitmap = std::make_unique<SurfaceBitmap>(); // any old bitmap goes
    BuildShadow(300, 200, 50, 0.65f, shadow);
    EXPECT_EQ(shadow.pad, 75.0f);
    ASSERT_EQ(shadow.image.width, 113);
    ASSERT_EQ(shadow.image.height, 88);
    EXPECT_EQ(shadow.image.bitmap, nullptr);
    const auto alpha = [&](int i, int j) { return shadow.image.pixels[size_t(j * 113 + i)] >> 24; };
    EXPECT_EQ(alpha(56, 44), 166u);
    EXPECT_EQ(shadow.image.pixels[size_t(44 * 113 + 56)] & 0xFFFFFF, 0u); // black
    for (const auto& [i, j] : {std::pair{0, 0}, {112, 0}, {0, 87}, {112, 87}}) EXPECT_EQ(alpha(i, j), 0u);
    // The blur reaches across the edge: half strength where the rectangle begins.
    EXPECT_NEAR(alpha(18, 44), 166 / 2, 4);

    BuildShadow(10, 10, 0, 1.0f, shadow); // no size: sigma 1
    EXPECT_EQ(shadow.pad, 3.0f);
    EXPECT_EQ(shadow.image.width, 4); // ceil(16 / 4)
}

} // namespace
