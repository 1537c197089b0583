#include "photos/photo_source.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "photos/image_decoder.h"
#include "photos/work_queue.h"

namespace {

// How many list positions one request tries before it gives up.
constexpr uint64_t kCandidates = 10;

// The job's work on the background thread: the first candidate that decodes, captioned by its own
// file name; `photo` stays empty when none does.
void DecodeFirst(const std::vector<std::wstring>& candidates, int32_t width, int32_t height,
                 PhotoSource::Shape shape, TitleFlags titleFlags, PhotoSource::Photo& photo) {
    const bool cover = shape == PhotoSource::Shape::Cover;
    for (const std::wstring& path : candidates) {
        const bool decoded = shape == PhotoSource::Shape::Exact
                                 ? LoadPhotoExact(path, width, height, photo)
                                 : LoadPhotoSized(path, width, height, cover, photo);
        if (decoded) {
            photo.title = PhotoCaption(path, titleFlags);
            return;
        }
    }
}

} // namespace

PhotoSource::PhotoSource(WorkQueue* workQueue, const std::vector<std::wstring>* list,
                         uint64_t start, TitleFlags flags)
    : queue(workQueue), photos(list), cursor(start), titleFlags(flags) {}

void PhotoSource::Next(int32_t width, int32_t height, Shape shape, Done done) {
    // The job gets its own copies of the paths: the background thread never reads the list.
    std::vector<std::wstring> candidates;
    const uint64_t count = photos->size();
    for (uint64_t i = 0; i < std::min(kCandidates, count); ++i) {
        candidates.push_back((*photos)[(cursor + i) % count]);
    }
    // Once per request, however many candidates a job ends up trying: a bad file shows as its
    // neighbour twice rather than as a gap.
    ++cursor;

    // The thread that runs the job holds the queue's shared block alive, so the plain pointer
    // stays good even if the job outlasts the queue.
    WorkQueue::Shared* results = queue->shared.get();
    queue->Post([results, candidates = std::move(candidates), width, height, shape,
                 flags = titleFlags, done = std::move(done)]() mutable {
        auto photo = std::make_shared<Photo>();
        DecodeFirst(candidates, width, height, shape, flags, *photo);
        results->PostResult([photo = std::move(photo), done = std::move(done)] { done(*photo); });
    });
}
