#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "photos/image_decoder.h"

// A picture of 8-bit channels in memory, rows top-down without gaps: what the import holds between
// decoding a photo and encoding its copy. Its memory comes from a request that may fail, so that a
// photo too large for the moment is passed over rather than ending the program.
struct PixelImage {
    ImageSize size;
    uint32_t channels = 0; // bytes per pixel
    std::unique_ptr<uint8_t[]> bytes;

    size_t Stride() const { return static_cast<size_t>(size.width) * channels; }
    uint8_t* Row(uint32_t y) { return bytes.get() + y * Stride(); }
    const uint8_t* Row(uint32_t y) const { return bytes.get() + y * Stride(); }

    // Makes room for `imageSize` with `pixelBytes` per pixel, its content undefined. False, with
    // the picture left empty, when a side is 0 or memory is short.
    bool Allocate(ImageSize imageSize, uint32_t pixelBytes);
};

// An array of `count` values, or null when memory is short.
template <class T> std::unique_ptr<T[]> TryAllocate(size_t count) {
    return std::unique_ptr<T[]>(new (std::nothrow) T[count]);
}
