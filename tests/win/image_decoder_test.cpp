// Decoding real files through WIC: sizes, bars, crop, proportions, the DIB of the crossfade and
// files that aren't what their names say.
#include "platform/image_decoder_win.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "photos/image_decoder.h"
#include "platform/win_handles.h"
#include "win/image_test_files.h"

namespace {

using namespace image_test;

// Close to `rgb` (0xRRGGBB) and opaque: JPEG and the scaler move colours a little.
::testing::AssertionResult Near(uint32_t pixel, uint32_t rgb) {
    for (int shift = 0; shift <= 16; shift += 8) {
        const int a = static_cast<int>((pixel >> shift) & 0xFF);
        const int b = static_cast<int>((rgb >> shift) & 0xFF);
        if (std::abs(a - b) > 48 || (pixel >> 24) != 0xFF) {
            return ::testing::AssertionFailure() << std::hex << pixel << " is not near " << rgb;
        }
    }
    return ::testing::AssertionSuccess();
}

class ImageDecodingTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        ComApartment apartment;
        folder = TestFolder(L"lumivane-image-test");
        ASSERT_TRUE(WriteImage(folder + L"bands.jpg", GUID_ContainerFormatJpeg, 400, 300, Bands));
        ASSERT_TRUE(WriteImage(folder + L"png.jpg", GUID_ContainerFormatPng, 400, 300, Bands));
        const std::string bytes = ReadBytes(folder + L"bands.jpg");
        ASSERT_TRUE(WriteBytes(folder + L"truncated.jpg", bytes.substr(0, bytes.size() / 2)));
        ASSERT_TRUE(WriteBytes(folder + L"empty.jpg", ""));
        ASSERT_TRUE(WriteBytes(folder + L"text.jpg", "not a photo at all\r\n"));
    }

    ComApartment apartment;
    static std::wstring folder;
};

std::wstring ImageDecodingTest::folder;

TEST_F(ImageDecodingTest, LetterboxKeepsBlackBarsAndCoverCropsEvenly) {
    PhotoSource::Photo photo;
    // 400 x 300 into 160 x 90: 120 x 90 at x = 20.
    ASSERT_TRUE(LoadPhotoSized(folder + L"bands.jpg", 160, 90, false, photo));
    ASSERT_EQ(photo.width, 160);
    ASSERT_EQ(photo.height, 90);
    ASSERT_EQ(photo.pixels.size(), 160u * 90u);
    const auto at = [&](int x, int y) { return photo.pixels[y * 160 + x]; };
    for (const int x : {0, 19, 140, 159}) EXPECT_EQ(at(x, 45), 0xFF000000u) << x;
    EXPECT_TRUE(Near(at(20, 45), kWhite));
    EXPECT_TRUE(Near(at(80, 5), kRed));
    EXPECT_TRUE(Near(at(80, 45), kWhite));
    EXPECT_TRUE(Near(at(80, 85), kBlue));

    // Cover: 160 x 120 with 15 rows cut at the top and the bottom, so 17 red rows remain.
    ASSERT_TRUE(LoadPhotoSized(folder + L"bands.jpg", 160, 90, true, photo));
    ASSERT_EQ(photo.pixels.size(), 160u * 90u);
    for (const int x : {0, 159}) {
        EXPECT_TRUE(Near(at(x, 8), kRed)) << x;
        EXPECT_TRUE(Near(at(x, 22), kWhite)) << x;
        EXPECT_TRUE(Near(at(x, 67), kWhite)) << x;
        EXPECT_TRUE(Near(at(x, 81), kBlue)) << x;
    }
}

TEST_F(ImageDecodingTest, ExactKeepsTheProportions) {
    PhotoSource::Photo photo;
    ASSERT_TRUE(LoadPhotoExact(folder + L"bands.jpg", 1536, 864, photo));
    EXPECT_EQ(photo.width, 1152);
    EXPECT_EQ(photo.height, 864);
    ASSERT_TRUE(LoadPhotoExact(folder + L"bands.jpg", 100, 100, photo));
    EXPECT_EQ(photo.width, 100);
    EXPECT_EQ(photo.height, 75);
    EXPECT_TRUE(Near(photo.pixels[0], kRed));
    EXPECT_TRUE(Near(photo.pixels.back(), kBlue));
}

TEST_F(ImageDecodingTest, DibIsTopDownWithZeroBytesBesideThePhotoAndReplacesTheOld) {
    HBITMAP bitmap = CreateBitmap(1, 1, 1, 32, nullptr);
    const HBITMAP old = bitmap;
    ASSERT_TRUE(LoadDib(folder + L"bands.jpg", 160, 90, false, bitmap));
    EXPECT_NE(bitmap, old);
    EXPECT_EQ(GetObjectType(old), 0u); // deleted

    DIBSECTION dib{};
    ASSERT_EQ(GetObjectW(bitmap, sizeof dib, &dib), static_cast<int>(sizeof dib));
    EXPECT_EQ(dib.dsBmih.biWidth, 160);
    EXPECT_EQ(dib.dsBm.bmHeight, 90);
    const auto* bits = static_cast<const uint32_t*>(dib.dsBm.bmBits);
    EXPECT_EQ(bits[45 * 160 + 10], 0u);
    EXPECT_TRUE(Near(bits[5 * 160 + 80], kRed)); // top-down: the first row is the photo's top
    EXPECT_TRUE(Near(bits[85 * 160 + 80], kBlue));

    const HBITMAP kept = bitmap;
    EXPECT_FALSE(LoadDib(folder + L"text.jpg", 160, 90, false, bitmap));
    EXPECT_EQ(bitmap, kept);
    DeleteObject(bitmap);
}

TEST_F(ImageDecodingTest, TheContentDecidesAndBadFilesFailCleanly) {
    PhotoSource::Photo photo;
    EXPECT_TRUE(LoadPhotoSized(folder + L"png.jpg", 160, 90, true, photo));
    EXPECT_TRUE(Near(photo.pixels[8 * 160], kRed));

    const PhotoSource::Photo before = photo;
    for (const wchar_t* name : {L"empty.jpg", L"text.jpg", L"missing.jpg"}) {
        EXPECT_FALSE(LoadPhotoSized(folder + name, 160, 90, false, photo)) << name;
        EXPECT_FALSE(LoadPhotoExact(folder + name, 160, 90, photo)) << name;
        EXPECT_EQ(photo.pixels, before.pixels) << name;
    }
    // A truncated photo may decode partly or fail, but a failure leaves the Photo alone.
    if (!LoadPhotoSized(folder + L"truncated.jpg", 160, 90, false, photo)) {
        EXPECT_EQ(photo.pixels, before.pixels);
    } else {
        EXPECT_EQ(photo.pixels.size(), 160u * 90u);
    }
}

} // namespace
