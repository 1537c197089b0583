#pragma once

// Photo files for the Windows tests and the benchmark, written through WIC.
#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "support/wic_image_writer.h"

namespace image_test {

// Writes a `width` x `height` picture in `container` (GUID_ContainerFormatJpeg or ...Png) whose
// pixel (x, y) has the colour paint(x, y), 0xRRGGBB (alpha ignored). The calling thread has a COM apartment.
inline bool WriteImage(const std::wstring& path, const GUID& container, int width, int height,
                       uint32_t (*paint)(int x, int y)) {
    const UINT stride = static_cast<UINT>(width) * 3;
    std::vector<BYTE> pixels(size_t{stride} * height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const uint32_t colour = paint(x, y);
            std::memcpy(&pixels[y * stride + x * 3], &colour, 3); // little-endian: B, G, R
        }
    }
    return WriteWicImage(path, container, GUID_WICPixelFormat24bppBGR, width, height, stride,
                         pixels.data());
}

// Opaque colours, 0xAARRGGBB as a decoded photo holds them.
constexpr uint32_t kRed = 0xFFFF0000;
constexpr uint32_t kWhite = 0xFFFFFFFF;
constexpr uint32_t kBlue = 0xFF0000FF;

// 400 x 300: rows 0 to 79 red, 220 to 299 blue, white between. The bands survive JPEG and
// scaling, so placement and crop can be read back from decoded pixels.
inline uint32_t Bands(int, int y) { return y < 80 ? kRed : y >= 220 ? kBlue : kWhite; }

// A folder of its own under the temporary folder, with a trailing backslash.
inline std::wstring TestFolder(const wchar_t* name) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(folder);
    return folder.wstring() + L"\\";
}

} // namespace image_test
