// The host build's definitions of the functions that src/platform/ defines for Windows, but for
// WorkQueue::DefaultSystem (photos/std_work_queue_system.cpp). Each hands the call to an
// in-memory stand-in that the tests set up and read back.
#include <algorithm>
#include <cwctype>

#include "diagnostics/log.h"
#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/random.h"
#include "library/system_text.h"
#include "photos/fake_image_files.h"
#include "photos/image_decoder.h"
#include "support/random_fake.h"

namespace {

uint32_t nextRandom = 0;

const FakeImage* Open(const std::wstring& path) {
    FakeImageFiles& fake = FakeFiles();
    fake.opened.push_back(path);
    const auto found = fake.files.find(path);
    return found == fake.files.end() || found->second.damaged ? nullptr : &found->second;
}

} // namespace

// Consecutive numbers from the one the test set.
uint32_t RandomU32() { return nextRandom++; }
void SetNextRandom(uint32_t value) { nextRandom = value; }

std::unique_ptr<SettingsKey> OpenSettingsKey(KeyAccess access) {
    return TestRegistry().OpenKey(access);
}

FileTree& SystemFileTree() { return TestTree(); }

// The system's text rules, as far as the host tests need them (they use ASCII only).
std::wstring LowerCase(std::wstring text) {
    for (wchar_t& c : text) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return text;
}
std::wstring WideFromUtf8(const std::string& text) { return {text.begin(), text.end()}; }

// Decoding paints the placed rectangle of a FakeFiles() entry in its colour, with the real
// geometry.
bool DecodeScaled(const std::wstring& path, int32_t width, int32_t height, bool cover, void* pixels,
                  uint32_t stride) {
    const FakeImage* image = Open(path);
    if (!image) return false;
    const auto g = PlanDecode(image->width, image->height, image->transform, width, height, cover);
    if (!g) return false;
    for (uint32_t y = 0; y < g->copied.height; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(static_cast<char*>(pixels) +
                                                (g->destinationY + y) * size_t{stride});
        std::fill_n(row + g->destinationX, g->copied.width, image->colour);
    }
    return true;
}

bool ReadOrientedSize(const std::wstring& path, ImageSize& size) {
    const FakeImage* image = Open(path);
    if (!image || image->width == 0 || image->height == 0) return false;
    size = OrientedSize(image->width, image->height, image->transform);
    return true;
}

// The host has no log file: lines are dropped, as when log.txt can't be opened.
void Log::Write(const std::wstring&) {}
