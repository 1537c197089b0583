#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "photos/photo_source.h"

// Turning a photo file into premultiplied BGRA pixels of a target size. The arithmetic of
// orientation, scale, crop and placement is here and runs anywhere; the imaging component stands
// behind DecodeScaled and ReadOrientedSize (src/platform/image_decoder_win.cpp).

// A size in whole pixels.
struct ImageSize {
    uint32_t width = 0;
    uint32_t height = 0;
};

// The flip-rotator's transform for a value of the orientation tag (274), as the imaging
// component numbers it; its lowest bit says that the axes swap. 1, 0 and unknown values give 0.
uint32_t OrientationTransform(uint32_t tag);

// A frame's size as it is shown: width and height exchanged when `transform` swaps the axes.
ImageSize OrientedSize(uint32_t frameWidth, uint32_t frameHeight, uint32_t transform);

// How one decode scales, crops and places a frame in a target.
struct DecodeGeometry {
    ImageSize scaled;     // the whole photo after scaling, upright; never a side of 0
    ImageSize scaler;     // the scaler's output, in the frame's own axes (it runs before rotation)
    uint32_t sourceX = 0; // the part of the scaled photo that is copied...
    uint32_t sourceY = 0;
    ImageSize copied;          // ...and its size, at most the target's
    uint32_t destinationX = 0; // where that part lands in the target
    uint32_t destinationY = 0;
};

// The geometry of drawing a frame of `frameWidth` x `frameHeight` with `transform` into a target
// of `width` x `height`: the whole photo inside it, or covering it when `cover`, centred, with
// the odd pixel of a difference to the right or bottom. Nothing when a target side is below 1
// or a frame side is 0.
std::optional<DecodeGeometry> PlanDecode(uint32_t frameWidth, uint32_t frameHeight,
                                         uint32_t transform, int32_t width, int32_t height,
                                         bool cover);

// The largest size of the photo's own proportions that fits into `width` x `height`, at least
// 1 by 1. `oriented` has no side of 0; `width` and `height` are at least 1.
ImageSize ExactSize(ImageSize oriented, int32_t width, int32_t height);

// Decodes frame 0 of the file at `path` into the caller's buffer of `height` rows of `stride`
// bytes, as PlanDecode places it; the area outside the placed rectangle isn't touched. False on
// any failure, with the buffer perhaps partly written. The calling thread needs a COM apartment.
bool DecodeScaled(const std::wstring& path, int32_t width, int32_t height, bool cover, void* pixels,
                  uint32_t stride);

// The shown size of frame 0 of the file at `path`, its orientation applied; false on failure.
bool ReadOrientedSize(const std::wstring& path, ImageSize& size);

// Fills `photo` with exactly `width` x `height` pixels of the file, opaque black where the photo
// doesn't reach. On failure `photo` is left as it was.
bool LoadPhotoSized(const std::wstring& path, int32_t width, int32_t height, bool cover,
                    PhotoSource::Photo& photo);

// Fills `photo` with the whole file in its own proportions, as large as fits into `width` x
// `height`. Opens the file twice. On failure `photo` is left as it was.
bool LoadPhotoExact(const std::wstring& path, int32_t width, int32_t height,
                    PhotoSource::Photo& photo);
