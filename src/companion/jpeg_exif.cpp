#include "companion/jpeg_exif.h"

#include <vector>

namespace {

constexpr uint32_t kOrientationTag = 0x0112;
constexpr uint32_t kExifIfdTag = 0x8769;
constexpr uint32_t kDateTakenTag = 0x9003;
constexpr uint32_t kShortType = 3;
constexpr uint32_t kAsciiType = 2;
constexpr size_t kEntrySize = 12;

// The TIFF structure inside the segment, in its own byte order; reads outside it give 0.
struct Tiff {
    const std::vector<uint8_t>& bytes;
    size_t base; // where the TIFF header starts
    bool little;

    uint32_t Byte(size_t at) const { return base + at < bytes.size() ? bytes[base + at] : 0; }
    uint32_t U16(size_t at) const {
        return little ? Byte(at) | Byte(at + 1) << 8 : Byte(at) << 8 | Byte(at + 1);
    }
    uint32_t U32(size_t at) const {
        return little ? U16(at) | U16(at + 2) << 16 : U16(at) << 16 | U16(at + 2);
    }
    bool Holds(size_t at, size_t size) const {
        return base + at <= bytes.size() && size <= bytes.size() - base - at;
    }
};

// Calls `found(tag, type, count, entry)` for each entry of the directory at `offset`.
template <typename Found> void WalkDirectory(const Tiff& tiff, uint32_t offset, Found found) {
    if (!tiff.Holds(offset, 2)) return;
    const uint32_t count = tiff.U16(offset);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t entry = offset + 2 + size_t{i} * kEntrySize;
        if (!tiff.Holds(entry, kEntrySize)) return;
        found(tiff.U16(entry), tiff.U16(entry + 2), tiff.U32(entry + 4), entry);
    }
}

JpegExif ParseSegment(const std::vector<uint8_t>& segment) {
    JpegExif exif;
    static const uint8_t kExifMark[] = {'E', 'x', 'i', 'f', 0, 0};
    if (segment.size() < 14 ||
        !std::equal(std::begin(kExifMark), std::end(kExifMark), segment.begin()))
        return exif;
    const bool little = segment[6] == 'I' && segment[7] == 'I';
    if (!little && !(segment[6] == 'M' && segment[7] == 'M')) return exif;
    const Tiff tiff{segment, 6, little};
    if (tiff.U16(2) != 42) return exif;
    uint32_t exifDirectory = 0;
    WalkDirectory(tiff, tiff.U32(4), [&](uint32_t tag, uint32_t type, uint32_t, size_t entry) {
        if (tag == kOrientationTag && type == kShortType) {
            const uint32_t value = tiff.U16(entry + 8);
            if (value >= 1 && value <= 8) exif.orientation = value;
        }
        if (tag == kExifIfdTag) exifDirectory = tiff.U32(entry + 8);
    });
    if (exifDirectory == 0) return exif;
    WalkDirectory(tiff, exifDirectory,
                  [&](uint32_t tag, uint32_t type, uint32_t count, size_t entry) {
                      // Text of more than four bytes lies elsewhere, at the offset the entry holds.
                      const size_t at = count <= 4 ? entry + 8 : tiff.U32(entry + 8);
                      if (tag != kDateTakenTag || type != kAsciiType || !tiff.Holds(at, count))
                          return;
                      for (size_t i = 0; i < count && tiff.Byte(at + i) != 0; ++i)
                          exif.dateTaken.push_back(static_cast<char>(tiff.Byte(at + i)));
                  });
    return exif;
}

} // namespace

JpegExif ReadJpegExif(const ReadAt& read) {
    uint8_t start[2] = {};
    if (read(0, start, 2) < 2 || start[0] != 0xFF || start[1] != 0xD8) return {};
    // The segments before the frame: markers and their lengths, at most a few dozen in practice.
    uint64_t at = 2;
    for (int i = 0; i < 64; ++i) {
        uint8_t head[4];
        if (read(at, head, sizeof head) < sizeof head || head[0] != 0xFF) return {};
        const uint8_t marker = head[1];
        if (marker == 0xDA || marker == 0xD9 || (marker >= 0xC0 && marker <= 0xCF)) return {};
        const uint32_t length = uint32_t{head[2]} << 8 | head[3];
        if (length < 2) return {};
        if (marker == 0xE1) {
            std::vector<uint8_t> segment(length - 2);
            if (read(at + 4, segment.data(), segment.size()) == segment.size()) {
                const JpegExif exif = ParseSegment(segment);
                if (exif.orientation || !exif.dateTaken.empty()) return exif;
            }
        }
        at += 2 + length;
    }
    return {};
}
