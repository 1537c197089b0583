// The import's own pixel work: turning a photo upright by its orientation tag, shrinking it, and
// reading the camera's date.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "companion/downscaler.h"
#include "companion/imported_photo.h"
#include "companion/pixel_orientation.h"

namespace {

PixelImage Picture(ImageSize size, uint32_t channels, const std::vector<uint8_t>& bytes) {
    PixelImage picture;
    EXPECT_TRUE(picture.Allocate(size, channels));
    std::copy(bytes.begin(), bytes.end(), picture.bytes.get());
    return picture;
}

std::vector<uint8_t> Bytes(const PixelImage& picture) {
    return {picture.bytes.get(), picture.bytes.get() + picture.Stride() * picture.size.height};
}

TEST(PixelOrientation, EachTagTurnsThePictureUpright) {
    // 2 x 3, one byte per pixel:  1 2 / 3 4 / 5 6. Tags 5 to 8 swap the axes: 3 x 2.
    // clang-format off
    const std::vector<uint8_t> upright[] = {
        {1, 2, 3, 4, 5, 6}, // 1: as stored
        {2, 1, 4, 3, 6, 5}, // 2: mirrored left to right
        {6, 5, 4, 3, 2, 1}, // 3: half a turn
        {5, 6, 3, 4, 1, 2}, // 4: mirrored top to bottom
        {1, 3, 5, 2, 4, 6}, // 5: mirrored along the falling diagonal
        {5, 3, 1, 6, 4, 2}, // 6: a quarter turn clockwise
        {6, 4, 2, 5, 3, 1}, // 7: mirrored along the rising diagonal
        {2, 4, 6, 1, 3, 5}, // 8: a quarter turn anticlockwise
    };
    // clang-format on
    const PixelImage stored = Picture({2, 3}, 1, upright[0]);
    for (uint32_t tag = 1; tag <= 8; ++tag) {
        PixelImage turned;
        ASSERT_TRUE(OrientPixels(stored, OrientationTransform(tag), turned));
        EXPECT_EQ(turned.size.width, tag >= 5 ? 3u : 2u) << tag;
        EXPECT_EQ(Bytes(turned), upright[tag - 1]) << tag;
    }
    // Whole pixels move: the three bytes of a pixel stay together and in order.
    PixelImage turned;
    ASSERT_TRUE(OrientPixels(Picture({2, 1}, 3, {1, 2, 3, 4, 5, 6}), 1, turned));
    EXPECT_EQ(Bytes(turned), (std::vector<uint8_t>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(turned.Stride(), 3u);
}

struct Reduction {
    ImageSize from, to;
    ResampleKernel kernel;
};

// clang-format off
const Reduction kReductions[] = {
    {{640, 480}, {213, 160}, ResampleKernel::Lanczos3},   // a factor of 3 and a bit
    {{565, 317}, {192, 108}, ResampleKernel::Lanczos3},   // odd sides
    {{400, 300}, {21, 15}, ResampleKernel::Lanczos3},     // a factor of 19 and 20
    {{999, 7}, {333, 7}, ResampleKernel::CatmullRom},     // across only
    {{1, 301}, {1, 17}, ResampleKernel::CatmullRom},      // one pixel wide, down only
    {{300, 200}, {1, 1}, ResampleKernel::Lanczos3},       // down to one pixel
    {{37, 23}, {37, 23}, ResampleKernel::Lanczos3},       // the same size: a copy
};
// clang-format on

TEST(Downscaler, PlainPictureStaysPlain) {
    for (const auto& [from, to, kernel] : kReductions) {
        for (const uint32_t channels : {3u, 4u}) {
            PixelImage source;
            ASSERT_TRUE(source.Allocate(from, channels));
            for (size_t i = 0; i < source.Stride() * from.height; ++i)
                source.bytes[i] = static_cast<uint8_t>(40 + 70 * (i % channels));
            PixelImage result;
            ASSERT_TRUE(Downscale(source, to, result, kernel));
            ASSERT_TRUE(result.size.width == to.width && result.size.height == to.height);
            std::vector<uint8_t> plain(result.Stride() * to.height);
            for (size_t i = 0; i < plain.size(); ++i)
                plain[i] = static_cast<uint8_t>(40 + 70 * (i % channels));
            EXPECT_EQ(Bytes(result), plain) << from.width << "x" << from.height << " to "
                                            << to.width << "x" << to.height << ", " << channels;
        }
    }
}

TEST(Downscaler, GradientsKeepTheirValuesAtEachPixelsCentre) {
    // Blue rises left to right, green top to bottom, red stays; a destination pixel shows the
    // value at its centre. The windows cut off at the edges cost the outer pixels a little.
    for (const auto& [from, to, kernel] : kReductions) {
        const auto ramp = [](double centre, uint32_t size) { return 255.0 * centre / size; };
        PixelImage source;
        ASSERT_TRUE(source.Allocate(from, 3));
        for (uint32_t y = 0; y < from.height; ++y) {
            for (uint32_t x = 0; x < from.width; ++x) {
                uint8_t* pixel = source.Row(y) + x * 3;
                pixel[0] = static_cast<uint8_t>(std::lround(ramp(x + 0.5, from.width)));
                pixel[1] = static_cast<uint8_t>(std::lround(ramp(y + 0.5, from.height)));
                pixel[2] = 200;
            }
        }
        PixelImage result;
        ASSERT_TRUE(Downscale(source, to, result, kernel));
        int worst = 0;
        for (uint32_t y = 0; y < to.height; ++y) {
            for (uint32_t x = 0; x < to.width; ++x) {
                const uint8_t* pixel = result.Row(y) + x * 3;
                worst = std::max({worst, std::abs(pixel[0] - ramp(x + 0.5, to.width)) > 2 ? 99 : 0,
                                  std::abs(pixel[1] - ramp(y + 0.5, to.height)) > 2 ? 99 : 0,
                                  pixel[2] != 200 ? 99 : 0});
            }
        }
        EXPECT_EQ(worst, 0) << from.width << "x" << from.height << " to " << to.width << "x"
                            << to.height;
    }
}

TEST(Downscaler, RefusesToEnlargeOrToMakeNothing) {
    const ImageSize sizes[][2] = {
        {{100, 100}, {101, 50}}, {{100, 100}, {50, 101}}, {{100, 100}, {0, 10}}, {{0, 5}, {0, 5}}};
    for (const auto& [from, to] : sizes) {
        Downscaler downscaler;
        EXPECT_FALSE(downscaler.Start(from, to, 3)) << to.width << "x" << to.height;
    }
}

TEST(ImportedPhoto, CameraDatesReadOnlyInTheirOwnForm) {
    struct Case {
        const char* text;
        int year, month, day, hour, minute, second;
    };
    // clang-format off
    const Case cases[] = {
        {"2024:08:12 17:05:59", 2024, 8, 12, 17, 5, 59},
        {"2024-08-12T17:05:59", 2024, 8, 12, 17, 5, 59},
        {"2019:12:31", 2019, 12, 31, 0, 0, 0},           // no time: midnight
        {"2019:12:31 25:00:00", 2019, 12, 31, 0, 0, 0},  // a time out of range: midnight
        {"0000:00:00 00:00:00", 0, 0, 0, 0, 0, 0},       // a camera without a clock
        {"    :  :     :  :  ", 0, 0, 0, 0, 0, 0},
        {"2024:13:01 10:00:00", 0, 0, 0, 0, 0, 0},
        {"2024:08:32 10:00:00", 0, 0, 0, 0, 0, 0},
        {"2024:8:12 10:00:00", 0, 0, 0, 0, 0, 0},
        {"", 0, 0, 0, 0, 0, 0},
    };
    // clang-format on
    for (const auto& c : cases) {
        const TakenDate date = ParseExifDate(c.text);
        EXPECT_EQ(std::vector<int>(
                      {date.year, date.month, date.day, date.hour, date.minute, date.second}),
                  std::vector<int>({c.year, c.month, c.day, c.hour, c.minute, c.second}))
            << c.text;
    }
}

} // namespace
