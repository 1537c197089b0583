#pragma once

#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <functional>
#include <string>

#include "companion/image_header.h"
#include "companion/imported_photo.h"

// The size of a photo's copy for the photo's upright size. A side larger than the photo's keeps
// the photo's: a copy is never enlarged.
using CopySizeFor = std::function<ImageSize(ImageSize upright)>;

// Writes an upright JPEG copy (quality 0.9, no metadata) of frame 0 of the image file `source` to
// `destination`, replacing a file of that name, at the size `copySize` gives; fills `info`. The
// source is opened read-only and shared with every other use, and decoded by whichever decoder
// the imaging component has for its content. Its orientation tag is applied to the pixels and it
// is shrunk with the import's own filter, never the imaging component's scaler. False on any
// failure (no decoder, a damaged file, one that claims more than kImportMaxPixels or
// kImportMaxSide, too little memory, a destination that can't be written), with nothing left
// under the name `destination`. The calling thread needs a COM apartment;
// `factory` may be passed to be shared between imports, or is made for this one.
bool ImportPhoto(const std::wstring& source, const std::wstring& destination,
                 const CopySizeFor& copySize, ImportedPhotoInfo& info,
                 IWICImagingFactory* factory = nullptr);
