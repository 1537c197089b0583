#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "photos/photo_titles.h"

class WorkQueue;

// One window's supply of decoded photos. Each request takes up to 10 paths of the run's list from
// the window's own place in it and sends a decoding job to the background thread; the answer
// comes back to the window thread through the work queue.
class PhotoSource {
public:
    // What a delivered photo looks like for a target of width x height.
    enum class Shape : int32_t {
        Letterbox = 0, // exactly the target; the whole photo, centred on opaque black
        Cover = 1,     // exactly the target; covered by the photo, the overhang cut off evenly
        Exact = 2,     // the photo's own proportions, as large as fits, at least 1 by 1
    };

    // A decoded photo; width and height 0, no pixels and no title when every candidate failed.
    struct Photo {
        int32_t width = 0;
        int32_t height = 0;
        std::vector<uint32_t> pixels; // premultiplied BGRA (0xAARRGGBB), rows without gaps
        std::wstring title;           // the caption to show, or empty
    };

    // The caller's answer; it may move out of the Photo.
    using Done = std::function<void(Photo& photo)>;

    // `queue` is started and outlives every request; `photos` doesn't change during the run.
    PhotoSource(WorkQueue* queue, const std::vector<std::wstring>* photos, uint64_t cursor,
                TitleFlags titleFlags);

    // Window thread: asks for the next photo as `width` x `height` pixels in `shape`, and returns
    // at once. `done` runs later on the window thread, exactly once unless the run ends first.
    void Next(int32_t width, int32_t height, Shape shape, Done done);

    WorkQueue* queue;                        // the session's; not owned
    const std::vector<std::wstring>* photos; // the session's list of full paths; not owned
    uint64_t cursor;       // list position of the next request; grows by 1 per request, never wraps
    TitleFlags titleFlags; // the session's title and importedTitle
};
