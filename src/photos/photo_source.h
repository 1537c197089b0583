#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "photos/photo_titles.h"

class WorkQueue;

// One window's supply of decoded photos, walking the run's list from its own start index.
//
// Stand-in until the photo pipeline lands: Next answers at once with an empty Photo, the result
// of a request whose every candidate failed to decode. The photo pipeline issue replaces it.
class PhotoSource {
public:
    enum class Shape : int32_t { Letterbox = 0, Cover = 1, Exact = 2 };

    struct Photo {
        uint32_t width = 0;
        uint32_t height = 0;
        std::vector<uint32_t> pixels; // premultiplied BGRA, rows without gaps
        std::wstring title;
    };

    using Done = std::function<void(Photo&&)>;

    PhotoSource(WorkQueue* queue, const std::vector<std::wstring>* photos, uint64_t cursor,
                TitleFlags flags);

    // Asks for the next photo scaled to `width` x `height` in `shape`; `done` runs on the window
    // thread with the result.
    void Next(uint32_t width, uint32_t height, Shape shape, Done done);

    WorkQueue* queue;
    const std::vector<std::wstring>* photos;
    uint64_t cursor;
    TitleFlags titleFlags;
};
