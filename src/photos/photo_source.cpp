#include "photos/photo_source.h"

#include <utility>

PhotoSource::PhotoSource(WorkQueue* workQueue, const std::vector<std::wstring>* list,
                         uint64_t start, TitleFlags flags)
    : queue(workQueue), photos(list), cursor(start), titleFlags(flags) {}

void PhotoSource::Next(uint32_t, uint32_t, Shape, Done done) {
    if (done) done(Photo{});
}
