#include "companion/import_size.h"

#include <algorithm>
#include <cstdint>

namespace {

// The copy never falls below what covers a full-HD monitor, however small the monitors are.
constexpr ImageSize kLeastBox{1920, 1080};

// `side` * `numerator` / `denominator`, rounded half up; the product stays within 64 bits.
uint32_t ScaleSide(uint32_t side, uint32_t numerator, uint32_t denominator) {
    const uint64_t product = uint64_t{side} * numerator;
    const uint64_t quotient = product / denominator;
    const uint64_t remainder = product % denominator;
    return static_cast<uint32_t>(quotient + (remainder >= denominator - remainder ? 1 : 0));
}

} // namespace

ImageSize CopyTargetBox(const std::vector<ImageSize>& monitors) {
    ImageSize box = kLeastBox;
    for (const ImageSize& monitor : monitors) {
        box.width = std::max(box.width, monitor.width);
        box.height = std::max(box.height, monitor.height);
    }
    return box;
}

ImageSize CopySize(ImageSize photo, ImageSize box) {
    const uint32_t w = std::max(photo.width, 1u);
    const uint32_t h = std::max(photo.height, 1u);
    const uint32_t boxWidth = std::max(box.width, 1u);
    const uint32_t boxHeight = std::max(box.height, 1u);
    // The larger of the two factors boxWidth / w and boxHeight / h covers the box.
    const bool widthRules = uint64_t{boxWidth} * h >= uint64_t{boxHeight} * w;
    if (widthRules ? boxWidth >= w : boxHeight >= h) return {w, h};
    if (widthRules) return {boxWidth, ScaleSide(h, boxWidth, w)};
    return {ScaleSide(w, boxHeight, h), boxHeight};
}
