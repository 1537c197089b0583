// Decoding real files through WIC: sizes, bars, crop, proportions, the DIB of the crossfade and
// files that aren't what their names say.
#include "platform/image_decoder_win.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "photos/image_decoder.h"
#include "platform/win_handles.h"
#include "platform/window_thread_win.h"
#include "win/image_test_files.h"
#include "win/pixel_near.h"

namespace {

using namespace image_test;

class ImageDecodingTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        namespace fs = std::filesystem;
        ComApartment apartment;
        folder = TestFolder(L"lumivane-image-test");
        const fs::path bands = folder + L"bands.jpg", truncated = folder + L"truncated.jpg";
        ASSERT_TRUE(WriteImage(bands, GUID_ContainerFormatJpeg, 400, 300, Bands));
        ASSERT_TRUE(WriteImage(folder + L"png.jpg", GUID_ContainerFormatPng, 400, 300, Bands));
        fs::remove(truncated); // MinGW's copy_file won't overwrite
        fs::copy_file(bands, truncated);
        fs::resize_file(truncated, fs::file_size(bands) / 2);
        std::ofstream{fs::path(folder + L"empty.jpg")};
        std::ofstream{fs::path(folder + L"text.jpg")} << "not a photo at all\r\n";
    }

    ComApartment apartment;
    static std::wstring folder;
};

std::wstring ImageDecodingTest::folder;

TEST_F(ImageDecodingTest, LetterboxKeepsBlackBarsAndCoverCropsEvenly) {
    PhotoSource::Photo photo;
    const auto at = [&](int x, int y) { return photo.pixels[y * 160 + x]; };
    // 400 x 300 into 160 x 90: 120 x 90 at x = 20.
    ASSERT_TRUE(LoadPhotoSized(folder + L"bands.jpg", 160, 90, false, photo));
    ASSERT_EQ(photo.width, 160);
    ASSERT_EQ(photo.height, 90);
    ASSERT_EQ(photo.pixels.size(), 160u * 90u);
    for (const int x : {0, 19, 140, 159}) EXPECT_EQ(at(x, 45), 0xFF000000u) << x;
    const std::pair<int, uint32_t> middle[] = {{5, kRed}, {45, kWhite}, {85, kBlue}};
    for (const auto& [y, rgb] : middle) EXPECT_TRUE(Near(at(80, y), rgb, 48)) << y;
    EXPECT_TRUE(Near(at(20, 45), kWhite, 48));

    // Cover: 160 x 120 with 15 rows cut at the top and the bottom, so 17 red rows remain.
    ASSERT_TRUE(LoadPhotoSized(folder + L"bands.jpg", 160, 90, true, photo));
    ASSERT_EQ(photo.pixels.size(), 160u * 90u);
    const std::pair<int, uint32_t> edges[] = {{8, kRed}, {22, kWhite}, {67, kWhite}, {81, kBlue}};
    for (const int x : {0, 159}) {
        for (const auto& [y, rgb] : edges) EXPECT_TRUE(Near(at(x, y), rgb, 48)) << x << "," << y;
    }
}

TEST_F(ImageDecodingTest, ExactKeepsTheProportions) {
    PhotoSource::Photo photo;
    ASSERT_TRUE(LoadPhotoExact(folder + L"bands.jpg", 100, 100, photo));
    EXPECT_EQ(photo.width, 100);
    EXPECT_EQ(photo.height, 75);
    EXPECT_TRUE(Near(photo.pixels[0], kRed, 48));
    EXPECT_TRUE(Near(photo.pixels.back(), kBlue, 48));
}

// No case of an Exif orientation here: Wine 8's JPEG metadata reader is a stub. A JPEG with an
// orientation of 3 in its APP1 segment (read as such by other tools) decodes unrotated under
// Wine, so only the orientation arithmetic is tested, on the host.

// LoadDib through the window thread's bridge to the window's bitmap holder.
TEST_F(ImageDecodingTest, DibIsTopDownWithZeroBytesBesideThePhotoAndReplacesTheOld) {
    Win32WindowThread thread;
    PlatformObject bitmap(CreateBitmap(1, 1, 1, 32, nullptr), DeleteGdiObject);
    const HGDIOBJ old = bitmap.get();
    ASSERT_TRUE(thread.DecodeBitmap(folder + L"bands.jpg", 160, 90, false, bitmap));
    EXPECT_NE(bitmap.get(), old);
    EXPECT_EQ(GetObjectType(old), 0u); // deleted

    DIBSECTION dib{};
    ASSERT_EQ(GetObjectW(bitmap.get(), sizeof dib, &dib), static_cast<int>(sizeof dib));
    EXPECT_EQ(dib.dsBmih.biWidth, 160);
    EXPECT_EQ(dib.dsBm.bmHeight, 90);
    const auto* bits = static_cast<const uint32_t*>(dib.dsBm.bmBits);
    EXPECT_EQ(bits[45 * 160 + 10], 0u);
    EXPECT_TRUE(Near(bits[5 * 160 + 80], kRed, 48)); // top-down: the first row is the photo's top
    EXPECT_TRUE(Near(bits[85 * 160 + 80], kBlue, 48));

    const HGDIOBJ kept = bitmap.get();
    EXPECT_FALSE(thread.DecodeBitmap(folder + L"text.jpg", 160, 90, false, bitmap));
    EXPECT_EQ(bitmap.get(), kept);
}

TEST_F(ImageDecodingTest, TheContentDecidesAndBadFilesFailCleanly) {
    PhotoSource::Photo photo;
    EXPECT_TRUE(LoadPhotoSized(folder + L"png.jpg", 160, 90, true, photo));
    EXPECT_TRUE(Near(photo.pixels[8 * 160], kRed, 48));

    const PhotoSource::Photo before = photo;
    for (const wchar_t* name : {L"empty.jpg", L"text.jpg", L"missing.jpg"}) {
        EXPECT_FALSE(LoadPhotoSized(folder + name, 160, 90, false, photo)) << name;
        EXPECT_FALSE(LoadPhotoExact(folder + name, 160, 90, photo)) << name;
        EXPECT_EQ(photo.pixels, before.pixels) << name;
    }
    // A truncated photo may decode partly or fail, but a failure leaves the Photo alone.
    const bool decoded = LoadPhotoSized(folder + L"truncated.jpg", 160, 90, false, photo);
    EXPECT_EQ(photo.pixels.size(), 160u * 90u);
    if (!decoded) EXPECT_EQ(photo.pixels, before.pixels);
}

} // namespace
