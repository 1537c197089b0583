#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Photo files for host tests: the host build's DecodeScaled and ReadOrientedSize read these
// instead of the disk. A decode paints the placed rectangle in the file's colour with the real
// geometry, so tests see bars, crops and which file was delivered.
struct FakeImage {
    uint32_t width = 0, height = 0, transform = 0;
    uint32_t colour = 0xFF808080;
    bool damaged = false; // opens, but fails to decode
};

struct FakeImageFiles {
    std::map<std::wstring, FakeImage> files; // a path not here is a missing file
    std::vector<std::wstring> opened;        // every opening of a file, in order
};

// The one set of files; tests reset it. Written by the test thread before a job is posted and by
// the background thread before its completion, so the queue's lock orders every access.
inline FakeImageFiles& FakeFiles() {
    static FakeImageFiles files;
    return files;
}
