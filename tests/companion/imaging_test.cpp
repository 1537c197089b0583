// The import's own imaging work: the size a file's header claims, turning a photo upright by its
// orientation tag, shrinking it, and reading the camera's date.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "companion/downscaler.h"
#include "companion/image_header.h"
#include "companion/imported_photo.h"
#include "companion/jpeg_exif.h"
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

// A file's first bytes, from pieces of text and of big-endian 16-bit numbers.
std::string File(std::initializer_list<std::string> pieces) {
    std::string bytes;
    for (const auto& piece : pieces) bytes += piece;
    return bytes;
}
std::string Be16(uint32_t value) { return {char(value >> 8), char(value & 0xFF)}; }
std::string Le16(uint32_t value) { return {char(value & 0xFF), char(value >> 8)}; }
std::string Segment(uint8_t marker, const std::string& body) {
    return File({"\xFF", std::string(1, char(marker)), Be16(body.size() + 2), body});
}
std::string Frame(uint8_t marker, uint32_t width, uint32_t height) {
    return Segment(marker, File({"\x08", Be16(height), Be16(width), "\x03"}));
}

TEST(ImageHeader, ClaimedSizesOfEachKnownFormat) {
    const std::string soi = "\xFF\xD8", app1 = Segment(0xE1, "Exif" + std::string(3000, 'x'));
    const std::string bmp = File({"BM", std::string(12, '\0'), "\x28", std::string(3, '\0'),
                                  Le16(640), Le16(0), Le16(0xFE20), Le16(0xFFFF)}); // -480
    using Size = std::pair<uint32_t, uint32_t>;                                     // 0 x 0: none
    // clang-format off
    const std::pair<std::string, Size> cases[] = {
        {File({"\x89PNG\r\n\x1a\n", std::string(3, '\0'), "\x0dIHDR", Be16(0), Be16(60000), Be16(0), Be16(60000)}),
         {60000, 60000}},
        {File({soi, app1, Segment(0xE2, "ICC"), Frame(0xC0, 5640, 3172)}), {5640, 3172}},
        {File({soi, "\xFF", Frame(0xC2, 60000, 60000)}), {60000, 60000}}, // after a fill byte
        {File({soi, Segment(0xC4, "tables"), Frame(0xC1, 7, 9)}), {7, 9}},
        {File({soi, Segment(0xDA, "scan"), Frame(0xC0, 7, 9)}), {}},      // a scan before the frame
        {File({soi, Frame(0xC0, 640, 0)}), {}},                           // height given later
        {File({soi, app1}).substr(0, 2000), {}},                          // cut short
        {File({"GIF89a", Le16(300), Le16(200)}), {300, 200}},
        {bmp, {640, 480}},
        {File({"II*", std::string(23, '\0')}), {}},                       // TIFF: the decoder says
        {"", {}},
    };
    // clang-format on
    for (const auto& [bytes, size] : cases) {
        const auto claimed = ReadClaimedSize([&](uint64_t offset, uint8_t* buffer, size_t count) {
            count = offset < bytes.size() ? std::min<size_t>(count, bytes.size() - offset) : 0;
            std::copy_n(bytes.data() + offset, count, buffer);
            return count;
        });
        EXPECT_EQ(claimed ? Size(claimed->width, claimed->height) : Size(), size) << bytes.size();
    }
}

// The orientation and the date come from the file's own EXIF segment, in either byte order, with
// every offset checked: Wine's metadata reader finds neither.
TEST(JpegExif, OrientationAndDateReadInEitherByteOrderWithinTheSegment) {
    const std::string date = "2024:08:12 10:30:00";
    // IFD0 at 8: the orientation and the EXIF directory at 38; there, the date's text at 56.
    const auto Tiff = [&](bool little, uint32_t orientation, uint32_t dateAt) {
        const auto u16 = little ? Le16 : Be16;
        const auto u32 = [&](uint32_t v) { return little ? u16(v) + u16(0) : u16(0) + u16(v); };
        return File({little ? "II" : "MM",
                     u16(42),
                     u32(8),
                     u16(2),
                     u16(0x0112),
                     u16(3),
                     u32(1),
                     u16(orientation),
                     u16(0),
                     u16(0x8769),
                     u16(4),
                     u32(1),
                     u32(38),
                     u32(0),
                     u16(1),
                     u16(0x9003),
                     u16(2),
                     u32(20),
                     u32(dateAt),
                     u32(0),
                     date,
                     std::string(1, '\0')});
    };
    const std::string soi = "\xFF\xD8", exif = std::string("Exif") + std::string(2, '\0');
    std::string lost = Tiff(true, 6, 56);
    lost[4] = '\xF0'; // the first directory past the segment's end
    // clang-format off
    const std::tuple<std::string, uint32_t, std::string> cases[] = {
        {File({soi, Segment(0xE1, exif + Tiff(true, 6, 56)), Frame(0xC0, 8, 8)}), 6, date},
        {File({soi, Segment(0xE0, "JFIF"), Segment(0xE1, exif + Tiff(false, 8, 56))}), 8, date},
        {File({soi, Segment(0xE1, exif + Tiff(true, 9, 56))}), 0, date},        // no such tag
        {File({soi, Segment(0xE1, exif + Tiff(true, 3, 500))}), 3, ""},         // date outside
        {File({soi, Segment(0xE1, "XMP" + Tiff(true, 6, 56))}), 0, ""},         // not EXIF
        {File({soi, Segment(0xE1, exif + lost)}), 0, ""},
        {File({soi, Frame(0xC0, 8, 8), Segment(0xE1, exif + Tiff(true, 6, 56))}), 0, ""},
        {File({soi, Segment(0xE1, exif + Tiff(true, 6, 56))}).substr(0, 30), 0, ""},
        {File({"\x89PNG", Segment(0xE1, exif + Tiff(true, 6, 56))}), 0, ""},
    };
    // clang-format on
    for (const auto& [bytes, orientation, taken] : cases) {
        const JpegExif read = ReadJpegExif([&](uint64_t offset, uint8_t* buffer, size_t count) {
            count = offset < bytes.size() ? std::min<size_t>(count, bytes.size() - offset) : 0;
            std::copy_n(bytes.data() + offset, count, buffer);
            return count;
        });
        EXPECT_EQ(read.orientation, orientation) << bytes.size();
        EXPECT_EQ(read.dateTaken, taken) << bytes.size();
    }
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
            const auto plain = [&](ImageSize size) {
                std::vector<uint8_t> bytes(size_t{size.width} * size.height * channels);
                for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = 40 + 70 * (i % channels);
                return bytes;
            };
            PixelImage result;
            ASSERT_TRUE(Downscale(Picture(from, channels, plain(from)), to, result, kernel));
            EXPECT_EQ(Bytes(result), plain(to)) << to.width << "x" << to.height << ", " << channels;
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
        int wrong = 0;
        for (uint32_t y = 0; y < to.height; ++y) {
            for (uint32_t x = 0; x < to.width; ++x) {
                const uint8_t* pixel = result.Row(y) + x * 3;
                wrong += std::abs(pixel[0] - ramp(x + 0.5, to.width)) > 2 ||
                         std::abs(pixel[1] - ramp(y + 0.5, to.height)) > 2 || pixel[2] != 200;
            }
        }
        EXPECT_EQ(wrong, 0) << to.width << "x" << to.height;
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
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"2024:08:12 17:05:59", "2024-8-12 17:5:59"},
        {"2024-08-12T17:05:59", "2024-8-12 17:5:59"},
        {"2019:12:31", "2019-12-31 0:0:0"},           // no time: midnight
        {"2019:12:31 25:00:00", "2019-12-31 0:0:0"},  // a time out of range: midnight
        {"0000:00:00 00:00:00", "0-0-0 0:0:0"},       // a camera without a clock
        {"2024:13:01 10:00:00", "0-0-0 0:0:0"},
        {"2024:8:12 10:00:00", "0-0-0 0:0:0"},
    };
    // clang-format on
    for (const auto& [text, expected] : cases) {
        const TakenDate d = ParseExifDate(text);
        EXPECT_EQ(std::to_string(d.year) + "-" + std::to_string(d.month) + "-" +
                      std::to_string(d.day) + " " + std::to_string(d.hour) + ":" +
                      std::to_string(d.minute) + ":" + std::to_string(d.second),
                  expected);
    }
}

} // namespace
