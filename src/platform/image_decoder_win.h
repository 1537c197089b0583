#pragma once

#include <windows.h>

#include <wincodec.h>
#include <wrl/client.h>

#include <cstdint>
#include <string>

#include "photos/image_decoder.h"

// The imaging component's side of decoding (the front ends are in photos/image_decoder.h).

// The flip-rotator's transform for the orientation tag of `frame` (in a JPEG's or a TIFF's EXIF,
// else as the property system names it); 0 when the frame has none, the query fails or the value
// isn't an unsigned 16-bit number.
uint32_t ReadOrientation(IWICBitmapFrameDecode* frame);

// The chain that pulls the pixels of `frame` through, as `geometry` plans them: the scaler in the
// frame's own axes, then, when `transform` turns or flips, the scaled photo held in memory and the
// flip-rotator, then the converter to premultiplied BGRA. The frame is read once, from its top
// down, whatever the transform. Null on any failure.
Microsoft::WRL::ComPtr<IWICBitmapSource> BuildDecodeChain(IWICImagingFactory* factory,
                                                          IWICBitmapSource* frame,
                                                          uint32_t transform,
                                                          const DecodeGeometry& geometry);

// The crossfade's decoding: on success `bitmap` is a new top-down 32-bit DIB section of exactly
// `width` x `height` (zero bytes where the photo doesn't reach) and the bitmap it held before is
// deleted. On failure `bitmap` is unchanged.
bool LoadDib(const std::wstring& path, int32_t width, int32_t height, bool cover, HBITMAP& bitmap);
