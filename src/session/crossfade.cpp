#include "session/crossfade.h"

#include <algorithm>

#include "diagnostics/string_table.h"
#include "library/options.h"
#include "photos/photo_titles.h"

namespace {

// The fade's 3 seconds come on top of the seconds that a photo stands still.
constexpr uint32_t kFadeMs = 3000;
// The last step that still shows the current caption; a caption changes at once, unfaded.
constexpr int32_t kLastCurrentCaptionStep = 50;
constexpr int32_t kMaxAttempts = 10;
constexpr int32_t kMinFontHeight = 12;
constexpr int32_t kShadowOffset = 2;

} // namespace

uint32_t CrossfadePeriodMs(int32_t pauseIndex) {
    if (pauseIndex < 0 || pauseIndex >= kPauseCount) pauseIndex = kDefaultPauseIndex;
    return static_cast<uint32_t>(kPauseSeconds[pauseIndex]) * 1000 + kFadeMs;
}

uint8_t FadeAlpha(int32_t fadeStep) {
    return static_cast<uint8_t>(std::clamp(fadeStep, 0, kFadeSteps) * 255 / kFadeSteps);
}

CaptionLayout LayOutCaption(SaverMode mode, int32_t width, int32_t height) {
    CaptionLayout layout;
    // A preview pane is small: its text is set relatively larger, to stay readable.
    const int32_t h = std::max(height / (mode == SaverMode::Preview ? 12 : 45), kMinFontHeight);
    layout.fontHeight = h;
    layout.text = {h, 0, width - h, height - h};
    layout.shadow = {h + kShadowOffset, kShadowOffset, width - h + kShadowOffset,
                     height - h + kShadowOffset};
    return layout;
}

bool ScreenWindow::LoadNext(PlatformObject& bitmap, std::wstring& caption) {
    const std::vector<std::wstring>& photos = session->photos;
    if (photos.empty()) return false;
    for (int32_t attempts = 0; attempts < kMaxAttempts;) {
        const std::wstring& path = photos[cursor % photos.size()];
        ++cursor; // a photo that fails has used its turn
        if (session->thread->DecodeBitmap(path, width, height, session->fit, bitmap)) {
            caption = PhotoCaption(path, {session->title, session->importedTitle});
            return true;
        }
        if (static_cast<size_t>(++attempts) >= photos.size()) return false;
    }
    return false;
}

bool ScreenWindow::StartFade() {
    // A window that is fading lets the tick pass, and its cursor stays where it is.
    if (session->photos.size() < 2 || fadeStep != 0) return false;
    if (!LoadNext(nextBitmap, nextCaption)) return false; // tried again at the next tick
    fadeStep = 1;
    return true;
}

bool ScreenWindow::AdvanceFade() {
    if (++fadeStep <= kFadeSteps) return false;
    currentBitmap = std::move(nextBitmap); // frees the old current one; next is left empty
    currentCaption = nextCaption;
    fadeStep = 0;
    return true;
}

std::wstring ScreenWindow::CrossfadeCaption() const {
    if (session->photos.empty()) return StringTable::Get(kNoPhotosText);
    return fadeStep <= kLastCurrentCaptionStep ? currentCaption : nextCaption;
}
