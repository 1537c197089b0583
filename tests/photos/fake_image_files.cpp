#include "photos/fake_image_files.h"

#include "photos/image_decoder.h"

namespace {

const FakeImage* Open(const std::wstring& path) {
    FakeImageFiles& fake = FakeFiles();
    fake.opened.push_back(path);
    const auto found = fake.files.find(path);
    return found == fake.files.end() || found->second.damaged ? nullptr : &found->second;
}

} // namespace

bool DecodeScaled(const std::wstring& path, int32_t width, int32_t height, bool cover,
                  void* pixels, uint32_t stride) {
    if (width < 1 || height < 1) return false;
    const FakeImage* image = Open(path);
    if (!image) return false;
    const auto g = PlanDecode(image->width, image->height, image->transform, width, height, cover);
    if (!g) return false;
    for (uint32_t y = 0; y < g->copied.height; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(static_cast<char*>(pixels) +
                                                (g->destinationY + y) * size_t{stride});
        for (uint32_t x = 0; x < g->copied.width; ++x) row[g->destinationX + x] = image->colour;
    }
    return true;
}

bool ReadOrientedSize(const std::wstring& path, ImageSize& size) {
    const FakeImage* image = Open(path);
    if (!image || image->width == 0 || image->height == 0) return false;
    size = OrientedSize(image->width, image->height, image->transform);
    return true;
}
