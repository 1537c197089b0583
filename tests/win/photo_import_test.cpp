// The photo import through the real imaging component: a real JPEG and a made PNG come out as
// JPEG copies of the asked size, never larger, without metadata, the PNG's transparent half
// black; files that aren't pictures, or whose header claims 60000 x 60000 pixels, fail and leave
// nothing under the copy's name.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "photos/image_decoder.h"
#include "platform/companion/photo_import_win.h"
#include "platform/win_handles.h"
#include "support/wic_image_writer.h"

namespace {

namespace fs = std::filesystem;

std::string Read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void Write(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// A PNG's signature and header chunk (its CRC right) that claim 60000 x 60000 pixels, then an
// empty data chunk.
const std::string kHugePng("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\xea\x60\0\0\xea\x60\x08\x02\0\0\0"
                           "\x0f\xb0\xe2\x15\0\0\0\0IDAT\0\0\0\0",
                           45);

TEST(PhotoImport, PhotosAreCopiedAtTheirSizeAndOtherFilesLeaveNoCopy) {
    ComApartment apartment;
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::string jpeg = Read(fs::path(self).parent_path() / "photo.jpg");
    const fs::path folder = fs::temp_directory_path() / "lumivane-import";
    fs::remove_all(folder);
    fs::create_directories(folder);
    Write(folder / "photo.jpg", jpeg);
    // 301 x 151, its left half transparent.
    std::vector<uint32_t> pixels(301 * 151, 0xFF2050C0);
    for (size_t i = 0; i < pixels.size(); ++i)
        if (i % 301 < 150) pixels[i] = 0x00FFFFFF;
    ASSERT_TRUE(WriteWicImage(folder / "made.png", GUID_ContainerFormatPng,
                              GUID_WICPixelFormat32bppBGRA, 301, 151, 301 * 4, pixels.data()));
    Write(folder / "text.jpg", "not a picture");
    Write(folder / "empty.png", "");
    Write(folder / "cut.jpg", jpeg.substr(0, 600));
    Write(folder / "huge.png", kHugePng);
    std::string huge = jpeg; // its frame header's height and width set to 60000
    Write(folder / "huge.jpg", huge.replace(huge.find("\xFF\xC0") + 5, 4, "\xEA\x60\xEA\x60"));

    struct Case {
        const char* name;
        ImageSize asked, written; // written 0 x 0: the import fails
    };
    const Case cases[] = {
        {"photo.jpg", {320, 240}, {320, 240}}, {"made.png", {1000, 1000}, {301, 151}},
        {"text.jpg", {320, 240}, {}},          {"empty.png", {320, 240}, {}},
        {"cut.jpg", {320, 240}, {}},           {"huge.png", {1920, 1080}, {}},
        {"huge.jpg", {1920, 1080}, {}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const fs::path copy = folder / (std::string(c.name) + ".part");
        Write(copy, "an earlier attempt");
        ImportedPhotoInfo info;
        const bool imported = ImportPhoto((folder / c.name).wstring(), copy.wstring(),
                                          [&](ImageSize) { return c.asked; }, info);
        EXPECT_EQ(imported, c.written.width != 0);
        EXPECT_EQ(fs::exists(copy), imported); // the earlier attempt replaced, or gone
        if (!imported) continue;
        EXPECT_TRUE(info.written.width == c.written.width &&
                    info.written.height == c.written.height);
        const std::string written = Read(copy);
        EXPECT_EQ(info.writtenBytes, written.size());
        EXPECT_EQ(written.find("Exif"), std::string::npos);
        PhotoSource::Photo photo;
        ASSERT_TRUE(LoadPhotoSized(copy.wstring(), static_cast<int32_t>(c.written.width),
                                   static_cast<int32_t>(c.written.height), false, photo));
        for (const auto [x, colour] : {std::pair{20, 0xFF000000u}, {280, 0xFF2050C0u}}) {
            if (c.written.width != 301) break; // the transparent half black, the other its colour
            for (int shift = 0; shift < 24; shift += 8)
                EXPECT_NEAR(photo.pixels[75 * 301 + x] >> shift & 0xFF, colour >> shift & 0xFF, 12);
        }
    }
}

} // namespace
