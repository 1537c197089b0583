#include "photos/image_decoder.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

// The flip-rotator's numbers: rotations 90, 180 and 270 are 1, 2, 3; the flips 8 and 16.
constexpr uint32_t kRotate90 = 1;
constexpr uint32_t kRotate180 = 2;
constexpr uint32_t kRotate270 = 3;
constexpr uint32_t kFlipHorizontal = 8;
constexpr uint32_t kFlipVertical = 16;

constexpr uint32_t kOpaqueBlack = 0xFF000000;

// A side after scaling: rounded half up, never 0, and held inside 32 bits for absurd ratios.
uint32_t ScaledSide(uint32_t side, double scale) {
    const double value = std::trunc(side * scale + 0.5);
    return static_cast<uint32_t>(std::clamp(value, 1.0, 4294967295.0));
}

} // namespace

uint32_t OrientationTransform(uint32_t tag) {
    switch (tag) {
    case 2: return kFlipHorizontal;
    case 3: return kRotate180;
    case 4: return kFlipVertical;
    case 5: return kRotate90 | kFlipHorizontal;
    case 6: return kRotate90;
    case 7: return kRotate270 | kFlipHorizontal;
    case 8: return kRotate270;
    default: return 0;
    }
}

ImageSize OrientedSize(uint32_t frameWidth, uint32_t frameHeight, uint32_t transform) {
    if (transform & 1) return {frameHeight, frameWidth};
    return {frameWidth, frameHeight};
}

std::optional<DecodeGeometry> PlanDecode(uint32_t frameWidth, uint32_t frameHeight,
                                         uint32_t transform, int32_t width, int32_t height,
                                         bool cover) {
    if (width < 1 || height < 1 || frameWidth == 0 || frameHeight == 0) return std::nullopt;
    const ImageSize shown = OrientedSize(frameWidth, frameHeight, transform);
    const double rx = static_cast<double>(width) / shown.width;
    const double ry = static_cast<double>(height) / shown.height;
    const double scale = cover ? std::max(rx, ry) : std::min(rx, ry);

    DecodeGeometry g;
    g.scaled = {ScaledSide(shown.width, scale), ScaledSide(shown.height, scale)};
    g.scaler = OrientedSize(g.scaled.width, g.scaled.height, transform);
    g.copied = {std::min(static_cast<uint32_t>(width), g.scaled.width),
                std::min(static_cast<uint32_t>(height), g.scaled.height)};
    g.sourceX = (g.scaled.width - g.copied.width) / 2;
    g.sourceY = (g.scaled.height - g.copied.height) / 2;
    g.destinationX = (static_cast<uint32_t>(width) - g.copied.width) / 2;
    g.destinationY = (static_cast<uint32_t>(height) - g.copied.height) / 2;
    return g;
}

ImageSize ExactSize(ImageSize oriented, int32_t width, int32_t height) {
    const double scale = std::min(static_cast<double>(width) / oriented.width,
                                  static_cast<double>(height) / oriented.height);
    return {ScaledSide(oriented.width, scale), ScaledSide(oriented.height, scale)};
}

bool LoadPhotoSized(const std::wstring& path, int32_t width, int32_t height, bool cover,
                    PhotoSource::Photo& photo) {
    if (width < 1 || height < 1) return false;
    std::vector<uint32_t> pixels(static_cast<uint64_t>(width) * static_cast<uint64_t>(height),
                                 kOpaqueBlack);
    if (!DecodeScaled(path, width, height, cover, pixels.data(),
                      static_cast<uint32_t>(width) * 4)) {
        return false;
    }
    photo.width = width;
    photo.height = height;
    photo.pixels = std::move(pixels);
    return true;
}

bool LoadPhotoExact(const std::wstring& path, int32_t width, int32_t height,
                    PhotoSource::Photo& photo) {
    if (width < 1 || height < 1) return false;
    ImageSize oriented;
    if (!ReadOrientedSize(path, oriented)) return false;
    const ImageSize exact = ExactSize(oriented, width, height);
    // Cover on a target of nearly the photo's own proportions: a rounding difference is cut
    // off rather than left as a black line. Both sides are at most the caller's.
    return LoadPhotoSized(path, static_cast<int32_t>(exact.width),
                          static_cast<int32_t>(exact.height), true, photo);
}
