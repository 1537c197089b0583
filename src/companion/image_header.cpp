#include "companion/image_header.h"

#include <cstring>

namespace {

// A JPEG's markers for the start of a frame, whatever its coding: C0 to CF but for the tables
// (C4 Huffman, CC arithmetic) and the reserved C8.
bool FrameMarker(uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

uint32_t Big16(const uint8_t* at) { return (at[0] << 8) | at[1]; }
uint32_t Big32(const uint8_t* at) { return (Big16(at) << 16) | Big16(at + 2); }
uint32_t Little16(const uint8_t* at) { return at[0] | (at[1] << 8); }
int32_t Little32(const uint8_t* at) {
    return static_cast<int32_t>(Little16(at) | (Little16(at + 2) << 16));
}

// Walks the segments after the start of image; each step moves on by at least four bytes, and
// a file has at most so many of them worth reading.
std::optional<ImageSize> JpegFrameSize(const ReadAt& read) {
    constexpr int kMostSegments = 4096;
    uint64_t at = 2;
    for (int i = 0; i < kMostSegments; ++i) {
        uint8_t head[9];
        if (read(at, head, sizeof head) < sizeof head || head[0] != 0xFF) return std::nullopt;
        const uint8_t marker = head[1];
        if (FrameMarker(marker)) {
            // A height of 0 is given later in the file (a DNL segment), if at all.
            if (Big16(head + 5) == 0) return std::nullopt;
            return ImageSize{Big16(head + 7), Big16(head + 5)};
        }
        if (marker == 0xDA || marker == 0xD9) return std::nullopt; // scan or end before a frame
        if (marker == 0xFF) {                                      // a fill byte before the marker
            ++at;
            continue;
        }
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) { // markers without a length
            at += 2;
            continue;
        }
        const uint32_t length = Big16(head + 2);
        if (length < 2) return std::nullopt;
        at += 2 + length;
    }
    return std::nullopt;
}

} // namespace

bool AbsurdSize(ImageSize size) {
    return size.width == 0 || size.height == 0 || size.width > kImportMaxSide ||
           size.height > kImportMaxSide ||
           static_cast<uint64_t>(size.width) * size.height > kImportMaxPixels;
}

std::optional<ImageSize> ReadClaimedSize(const ReadAt& read) {
    uint8_t head[26] = {};
    const size_t got = read(0, head, sizeof head);
    if (got >= 3 && head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF)
        return JpegFrameSize(read);
    if (got >= 24 && std::memcmp(head, "\x89PNG\r\n\x1a\n", 8) == 0 &&
        std::memcmp(head + 12, "IHDR", 4) == 0) {
        return ImageSize{Big32(head + 16), Big32(head + 20)};
    }
    if (got >= 10 && (std::memcmp(head, "GIF87a", 6) == 0 || std::memcmp(head, "GIF89a", 6) == 0))
        return ImageSize{Little16(head + 6), Little16(head + 8)};
    if (got >= 26 && head[0] == 'B' && head[1] == 'M') {
        const int32_t header = Little32(head + 14);
        // A negative height says the rows run top-down.
        const int64_t width = Little32(head + 18), height = Little32(head + 22);
        if (header >= 40 && width >= 0)
            return ImageSize{static_cast<uint32_t>(width),
                             static_cast<uint32_t>(height < 0 ? -height : height)};
    }
    return std::nullopt;
}
