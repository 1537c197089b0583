// The arithmetic of decoding, and its front ends on the host's fake files.
#include <gtest/gtest.h>

#include <array>
#include <tuple>

#include "photos/fake_image_files.h"
#include "photos/image_decoder.h"

namespace {

TEST(ImageDecoder, OrientationTagsMapToTheFlipRotatorsTransforms) {
    // Tag values 0 to 9: only 2 to 8 transform, and 5 to 8 swap the axes.
    const uint32_t expected[] = {0, 0, 8, 2, 16, 9, 1, 11, 3, 0};
    for (uint32_t tag = 0; tag < 10; ++tag) {
        EXPECT_EQ(OrientationTransform(tag), expected[tag]) << tag;
        EXPECT_EQ(OrientedSize(40, 30, expected[tag]).width, tag >= 5 && tag <= 8 ? 30u : 40u);
    }
}

TEST(ImageDecoder, PlansScaleCropAndPlacement) {
    // The frame's width, height and transform, the target's width and height, cover, and the
    // plan: scaled w h, scaler w h, source x y, copied w h, destination x y.
    using Plan = std::array<uint32_t, 10>;
    const std::tuple<uint32_t, uint32_t, uint32_t, int32_t, int32_t, bool, Plan> cases[] = {
        {4000, 3000, 0, 1920, 1080, false, {1440, 1080, 1440, 1080, 0, 0, 1440, 1080, 240, 0}},
        {4000, 3000, 0, 1920, 1080, true, {1920, 1440, 1920, 1440, 0, 180, 1920, 1080, 0, 0}},
        // Orientation 6: the scaler works in the frame's axes, before the rotation.
        {4000, 3000, 1, 1920, 1080, false, {810, 1080, 1080, 810, 0, 0, 810, 1080, 555, 0}},
        // A half pixel rounds up: 2000 / 3 is 666.67.
        {3000, 2000, 0, 1000, 1000, false, {1000, 667, 1000, 667, 0, 0, 1000, 667, 0, 166}},
        // The second pass of an Exact 5000 x 3 photo into 1536 x 864.
        {5000, 3, 0, 1536, 1, true, {1667, 1, 1667, 1, 65, 0, 1536, 1, 0, 0}},
        // A very thin photo still gets a side of 1.
        {100000, 1, 0, 1920, 1080, false, {1920, 1, 1920, 1, 0, 0, 1920, 1, 0, 539}}};
    for (const auto& [frameWidth, frameHeight, transform, width, height, cover, plan] : cases) {
        const auto g = PlanDecode(frameWidth, frameHeight, transform, width, height, cover);
        ASSERT_TRUE(g) << frameWidth << "x" << frameHeight;
        EXPECT_EQ(
            (Plan{g->scaled.width, g->scaled.height, g->scaler.width, g->scaler.height, g->sourceX,
                  g->sourceY, g->copied.width, g->copied.height, g->destinationX, g->destinationY}),
            plan)
            << frameWidth << "x" << frameHeight << " cover " << cover;
    }
    EXPECT_FALSE(PlanDecode(4000, 3000, 0, 0, 1080, false));
    EXPECT_FALSE(PlanDecode(4000, 3000, 0, 1920, -1, true));
    EXPECT_FALSE(PlanDecode(0, 3000, 0, 1920, 1080, false));
}

TEST(LoadPhoto, ExactOpensTwiceAndAFailureLeavesThePhotoAsItWas) {
    FakeFiles() = {};
    FakeFiles().files[L"C:\\wide.jpg"] = {300, 199, 0, 0xFF445566};
    FakeFiles().files[L"C:\\bad.jpg"] = {4000, 3000, 0, 0, true};
    // 300 x 199 into 100 x 100 is 100 x 66, which only the second pass's cover fills: fitted
    // inside, the photo would be 99 wide beside a black column. 1 x 1 is the smallest target.
    PhotoSource::Photo photo;
    for (const auto& [side, height] : {std::pair{100, 66}, {1, 1}}) {
        ASSERT_TRUE(LoadPhotoExact(L"C:\\wide.jpg", side, side, photo));
        EXPECT_TRUE(photo.width == side && photo.height == height);
        EXPECT_EQ(photo.pixels, std::vector<uint32_t>(side * height, 0xFF445566));
    }
    EXPECT_EQ(FakeFiles().opened.size(), 4u);
    // A failure, or a side below one (which opens nothing), leaves the photo as it was.
    FakeFiles().opened.clear();
    photo = {2, 1, {7, 8}, L"kept"};
    EXPECT_FALSE(LoadPhotoSized(L"C:\\bad.jpg", 1920, 1080, true, photo));
    EXPECT_FALSE(LoadPhotoExact(L"C:\\missing.jpg", 1920, 1080, photo));
    EXPECT_FALSE(LoadPhotoSized(L"C:\\wide.jpg", 0, 1080, false, photo));
    EXPECT_FALSE(LoadPhotoExact(L"C:\\wide.jpg", 1536, 0, photo));
    EXPECT_EQ(FakeFiles().opened.size(), 2u);
    EXPECT_TRUE(photo.width == 2 && photo.pixels == std::vector<uint32_t>({7, 8}));
    EXPECT_EQ(photo.title, L"kept");
}

} // namespace
