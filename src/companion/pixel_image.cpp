#include "companion/pixel_image.h"

bool PixelImage::Allocate(ImageSize imageSize, uint32_t pixelBytes) {
    size = {};
    channels = 0;
    bytes.reset();
    if (imageSize.width == 0 || imageSize.height == 0 || pixelBytes == 0) return false;
    bytes =
        TryAllocate<uint8_t>(static_cast<size_t>(imageSize.width) * imageSize.height * pixelBytes);
    if (!bytes) return false;
    size = imageSize;
    channels = pixelBytes;
    return true;
}
