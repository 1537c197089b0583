#include "companion/pixel_orientation.h"

#include <cstring>

namespace {

struct Point {
    int64_t x, y;
};

// Where the source pixel (x, y) of a width x height picture lands.
Point Place(int64_t x, int64_t y, int64_t width, int64_t height, uint32_t transform) {
    Point to{x, y};
    switch (transform & 3) {
    case 1: to = {height - 1 - y, x}; break;
    case 2: to = {width - 1 - x, height - 1 - y}; break;
    case 3: to = {y, width - 1 - x}; break;
    default: break;
    }
    const bool swapped = transform & 1;
    if (transform & 8) to.x = (swapped ? height : width) - 1 - to.x;
    if (transform & 16) to.y = (swapped ? width : height) - 1 - to.y;
    return to;
}

} // namespace

bool OrientPixels(const PixelImage& source, uint32_t transform, PixelImage& upright) {
    const ImageSize size = OrientedSize(source.size.width, source.size.height, transform);
    if (!source.bytes || !upright.Allocate(size, source.channels)) return false;
    // The placement is affine: the offsets of one step along a source row and down a column
    // are the same everywhere.
    const int64_t channels = source.channels;
    const int64_t stride = static_cast<int64_t>(upright.Stride());
    const auto offset = [&](int64_t x, int64_t y) {
        const Point at = Place(x, y, source.size.width, source.size.height, transform);
        return at.y * stride + at.x * channels;
    };
    const int64_t origin = offset(0, 0);
    const int64_t stepX = offset(1, 0) - origin;
    const int64_t stepY = offset(0, 1) - origin;
    for (uint32_t y = 0; y < source.size.height; ++y) {
        const uint8_t* from = source.Row(y);
        int64_t at = origin + stepY * y;
        for (uint32_t x = 0; x < source.size.width; ++x, from += channels, at += stepX)
            std::memcpy(upright.bytes.get() + at, from, static_cast<size_t>(channels));
    }
    return true;
}
