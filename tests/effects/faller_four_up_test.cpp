// Faller and FourUp frame by frame on a recording target, with scripted photos and random numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "effects/effect_rig.h"
#include "effects/timing.h"
#include "support/random_fake.h"

namespace {

using Op = SurfaceCall::Op;

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
    const float cases[][5] = {{640, 1, 4, 5000, .942f}, {640, 2, 8, 7000, .058f},
                              {1920, 1, 8.64f, 7000, .058f}, {3840, 1, 10, 5000, .942f}};
    const double lead[] = {7000, 6000, 3300, 0}, duration[] = {10000, 12000, 11000, 9000};
    for (const auto& [width, scale, border, start, x] : cases) {
        EffectRig rig(EffectKind::Faller, {}, width, 480, scale);
        SetNextRandom(0);
        rig.Frame(0);
        rig.Deliver(3);
        EXPECT_TRUE(OfOp(rig.Frame(100), Op::FillRectangle).empty()); // black while one is missing
        rig.Deliver();
        SetNextRandom(0xFFFFFFFF - 34);
        // The first painted frame lies under an opaque veil; there the last print is at q 0.
        EXPECT_EQ(OfOp(rig.Frame(start), Op::CreateSolidColorBrush).back().color,
                  (ColorF{0, 0, 0, 1}));
        // The gradient, then each print's paper; its photo comes after its shadow. The veil lifts.
        const auto frame = rig.Frame(start + 450);
        const auto fills = OfOp(frame, Op::FillRectangle), photos = OfOp(frame, Op::DrawBitmap);
        EXPECT_EQ(OfOp(frame, Op::CreateSolidColorBrush).back().color.a,
                  static_cast<float>(1 - EaseOut(0.125)));
        for (size_t i = 0; i < 4; ++i) {
            const double q = (450 + lead[i]) / duration[i];
            const SurfaceCall& photo = photos.at(2 * i + 1);
            const RectF& paper = fills.at(i + 1).rect;
            EXPECT_NEAR(photo.transform.dy, 480 * (q * 1.4 - 0.3) + paper.bottom, 1e-3);
            EXPECT_FLOAT_EQ(photo.layerOpacity, static_cast<float>(std::min(q / 0.08, 1.0)));
            EXPECT_NEAR(paper.right - photo.rect.right, border, 1e-4);
            EXPECT_NEAR(paper.bottom - photo.rect.bottom, border, 1e-4);
        }
        const Matrix3x2F& m = photos.at(3).transform; // print 1 at q 0.5375
        EXPECT_NEAR(m.dx, width * x, 1e-3);
        EXPECT_NEAR(std::atan2(m.m12, m.m11) * 57.29577951308232, 1.5 - 2.5 * 0.5375, 1e-4);
        rig.LoseTarget(); // the prints come back from kept pixels
        EXPECT_EQ(OfOp(rig.Frame(start + 450), Op::DrawBitmap).size(), 8u);
        EXPECT_TRUE(rig.log->misuses.empty());
    }
}

TEST(FourUp, StartsFourSecondsApartInTwoColumnsWithTheBottomRowUnderTheTallerTopPhoto) {
    // On 1920 x 200 with files of 800 x 100; file 1, slot 0's second photo, comes on at 13401.
    // Scale, file 1's size, the layout of the others (left, right column, cell, row height), and
    // the bottom row's top under file 1: four canvases high bound file 1 to 80 x 800; 944 x 59
    // is lower than slot 1's photo; at scale 2 file 1 is 800 x 800.
    const float cases[][8] = {{1, 100, 1000, 8, 976, 944, 118, 816},
                              {1, 800, 50, 8, 976, 944, 118, 134},
                              {2, 400, 400, 16, 992, 928, 116, 832}};
    // Each photo is delivered at once: slot i asks at 4000 i, comes on 1 ms later, dark for 1300.
    const std::pair<double, size_t> shown[] = {{0, 0}, {1, 0}, {1301, 1}, {3999, 1}, {4000, 1},
        {4001, 1}, {5300, 1}, {5301, 2}, {8000, 2}, {8001, 2}, {9300, 2}, {9301, 3}, {12000, 3},
        {12001, 3}, {13300, 3}};
    for (const auto& [scale, width, height, left, column, cell, row, bottom] : cases) {
        EffectRig rig(EffectKind::FourUp, {1, false}, 1920, 200, scale);
        for (const auto& photo : rig.photos) FakeFiles().files[photo] = {800, 100};
        FakeFiles().files[rig.photos[1]] = {static_cast<uint32_t>(width),
                                            static_cast<uint32_t>(height)};
        // Draws 3 to 6 pick rows 0, 1, 2 and 0 around pause index 1: rests of 6, 10, 20 and 6 s.
        SetNextRandom(3);
        for (const auto& [at, count] : shown) {
            EXPECT_EQ(OfOp(rig.Frame(at), Op::DrawBitmap).size(), count) << at;
            rig.Deliver();
        }
        // Slot 0 has faded out; slot 2 stands in the left column under the taller top photo.
        const float second = left + row + 8 * scale;
        EXPECT_EQ(OfOp(rig.Frame(13400), Op::DrawBitmap).at(1).rect,
                  (RectF{left, second, left + cell, second + row}));
        rig.LoseTarget(); // the photos come back from kept pixels
        EXPECT_EQ(OfOp(rig.Frame(13400), Op::DrawBitmap).at(2).rect.left, column);
        EXPECT_EQ(OfOp(rig.Frame(13401), Op::DrawBitmap).back().rect.top, bottom);
        EXPECT_TRUE(rig.log->misuses.empty());
    }
}

TEST(Faller, PlacesAPrintFarthestFromThoseOnStageAndKeepsTheEarlierOfATie) {
    // Four prints of 25% (margins 5, span 90). Print 0 counts for print 1 once it has left the
    // top (an opening at 7000); all its candidates stand at 50. Print 1's first two candidates
    // stand at 27.5 and 72.5, both 22.5 from it, the others at 50: the first of the tie wins.
    constexpr uint32_t kHalf = 0x80000000, kQuarter = 0x40000000, kThreeQuarters = 0xC0000000;
    std::vector<uint32_t> draws{0, 0, 0, 0, kHalf};
    for (int i = 0; i < 8; ++i) draws.insert(draws.end(), {kHalf, 0});
    draws.insert(draws.end(), {0, 0, 0, 0, kQuarter, 0, kThreeQuarters, 0});
    for (int i = 0; i < 6; ++i) draws.insert(draws.end(), {kHalf, 0});
    EffectRig rig(EffectKind::Faller, {}, 640, 480);
    ScriptRandoms(draws);
    rig.Frame(0);
    rig.Deliver();
    const auto photos = OfOp(rig.Frame(7000), Op::DrawBitmap);
    EXPECT_FLOAT_EQ(photos.at(1).transform.dx, 320);
    EXPECT_FLOAT_EQ(photos.at(3).transform.dx, 640 * 0.275f);
}

} // namespace
