#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include "photos/image_decoder.h"

// The largest picture that the import decodes; a file that claims more is passed over.
constexpr uint32_t kImportMaxSide = 65535;
constexpr uint64_t kImportMaxPixels = 200'000'000;

// Whether a picture of `size` is beyond what the import decodes (or has a side of 0).
bool AbsurdSize(ImageSize size);

// Reads up to `size` bytes of the file at `offset` into `buffer`; gives how many it read.
using ReadAt = std::function<size_t(uint64_t offset, uint8_t* buffer, size_t size)>;

// The size that a JPEG, PNG, GIF or BMP file's header claims, read before any decoder sees the
// file: some decoders (Wine's JPEG decoder among them) set out to decode a frame of whatever size
// the header says the moment they open it. Nothing for other formats and for headers that don't
// say; the decoder's own answer is checked as well. A JPEG's segments are walked until its frame
// header, however many segments of metadata come first.
std::optional<ImageSize> ReadClaimedSize(const ReadAt& read);
