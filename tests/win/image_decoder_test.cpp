// Decoding real files through WIC: sizes, bars, crop, proportions, the DIB of the crossfade and
// files that aren't what their names say. The plans behind them are host tests.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "photos/image_decoder.h"
#include "platform/win_handles.h"
#include "platform/window_thread_win.h"
#include "win/image_test_files.h"
#include "win/pixel_near.h"

namespace {

// Opaque colours, 0xAARRGGBB as a decoded photo holds them.
constexpr uint32_t kBlack = 0xFF000000, kRed = 0xFFFF0000, kWhite = 0xFFFFFFFF, kBlue = 0xFF0000FF;

// 400 x 300: rows 0 to 79 red, 220 to 299 blue, white between. The bands survive JPEG and
// scaling, so placement and crop can be read back from decoded pixels.
uint32_t Bands(int, int y) { return y < 80 ? kRed : y >= 220 ? kBlue : kWhite; }

enum class Way { Letterbox, Cover, Exact, Dib };

struct Decode {
    const wchar_t* file;
    Way way;
    int width, height;       // asked for
    int gotWidth, gotHeight; // 0: the decoding fails
    std::vector<std::array<uint32_t, 3>> probes; // x, y, 0xAARRGGBB
};

// 400 x 300 into 160 x 90: letterboxed 120 x 90 at x = 20; covering 160 x 120 with 15 rows cut
// at the top and the bottom, so 17 red rows remain; exactly into 100 x 100 it is 100 x 75.
const Decode kDecodes[] = {
    {L"bands.jpg", Way::Letterbox, 160, 90, 160, 90,
     {{19, 45, kBlack}, {20, 45, kWhite}, {140, 45, kBlack}, {80, 5, kRed}, {80, 85, kBlue}}},
    {L"bands.jpg", Way::Cover, 160, 90, 160, 90,
     {{0, 8, kRed}, {0, 22, kWhite}, {159, 67, kWhite}, {159, 81, kBlue}}},
    {L"bands.jpg", Way::Exact, 100, 100, 100, 75, {{0, 0, kRed}, {99, 74, kBlue}}},
    {L"png.jpg", Way::Cover, 160, 90, 160, 90, {{0, 8, kRed}}}, // the content decides
    // Top-down, the photo's top row first, with zero bytes beside the photo.
    {L"bands.jpg", Way::Dib, 160, 90, 160, 90, {{10, 45, 0}, {80, 5, kRed}, {80, 85, kBlue}}},
    {L"text.jpg", Way::Dib, 160, 90, 0, 0, {}},
};

TEST(ImageDecoding, EachWayGivesItsSizeAndPlacementAndTheContentDecides) {
    namespace fs = std::filesystem;
    ComApartment apartment;
    const std::wstring folder = (fs::temp_directory_path() / "lumivane-image-test").wstring();
    fs::create_directories(folder);
    using image_test::WriteImage;
    ASSERT_TRUE(WriteImage(folder + L"\\bands.jpg", GUID_ContainerFormatJpeg, 400, 300, Bands));
    ASSERT_TRUE(WriteImage(folder + L"\\png.jpg", GUID_ContainerFormatPng, 400, 300, Bands));
    std::ofstream(fs::path(folder + L"\\text.jpg")) << "not a photo at all\r\n";
    Win32WindowThread thread;
    for (const Decode& d : kDecodes) {
        SCOPED_TRACE("row " + std::to_string(&d - kDecodes));
        const std::wstring path = folder + L"\\" + d.file;
        PhotoSource::Photo photo;
        bool decoded = false;
        if (d.way == Way::Dib) {
            // LoadDib through the window thread's bridge to the window's bitmap holder: the old
            // bitmap is replaced and deleted exactly when the decoding succeeds.
            PlatformObject bitmap(CreateBitmap(1, 1, 1, 32, nullptr), DeleteGdiObject);
            const HGDIOBJ old = bitmap.get();
            decoded = thread.DecodeBitmap(path, d.width, d.height, false, bitmap);
            EXPECT_EQ(bitmap.get() == old, !decoded);
            EXPECT_EQ(GetObjectType(old) == 0, decoded);
            BITMAP bm{};
            if (decoded && GetObjectW(bitmap.get(), sizeof bm, &bm) == sizeof bm) {
                // Read back as GDI draws it, top row first, with the fourth byte of each pixel.
                BITMAPINFO info{{sizeof(BITMAPINFOHEADER), bm.bmWidth, -bm.bmHeight, 1, 32}};
                photo = {bm.bmWidth, bm.bmHeight, std::vector<uint32_t>(bm.bmWidth * bm.bmHeight)};
                GetDIBits(WindowDc(nullptr).Get(), static_cast<HBITMAP>(bitmap.get()), 0,
                          bm.bmHeight, photo.pixels.data(), &info, DIB_RGB_COLORS);
            }
        } else if (d.way == Way::Exact) {
            decoded = LoadPhotoExact(path, d.width, d.height, photo);
        } else {
            decoded = LoadPhotoSized(path, d.width, d.height, d.way == Way::Cover, photo);
        }
        ASSERT_EQ(decoded, d.gotWidth > 0);
        if (!decoded) continue;
        ASSERT_TRUE(photo.width == d.gotWidth && photo.height == d.gotHeight &&
                    photo.pixels.size() == size_t(d.gotWidth) * d.gotHeight);
        for (const auto& [x, y, argb] : d.probes)
            EXPECT_TRUE(Near(photo.pixels[y * photo.width + x], argb, 48)) << x << "," << y;
    }
}

// No case of an Exif orientation here: Wine 8's JPEG metadata reader is a stub. A JPEG with an
// orientation of 3 in its APP1 segment (read as such by other tools) decodes unrotated under
// Wine, so only the orientation arithmetic is tested, on the host.

} // namespace
