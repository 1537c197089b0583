#pragma once

// Photo files for the Windows tests and the benchmark, written through WIC.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "support/wic_image_writer.h"

namespace image_test {

// Writes a `width` x `height` picture in `container` (GUID_ContainerFormatJpeg or ...Png) whose
// pixel (x, y) has the colour paint(x, y), 0xRRGGBB (alpha ignored). The calling thread has a
// COM apartment.
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

} // namespace image_test
