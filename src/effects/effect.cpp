#include "effects/effect.h"

#include "effects/faller_effect.h"
#include "effects/four_up_effect.h"
#include "effects/single_effect.h"
#include "library/options.h"
#include "library/random.h"
#include "photos/photo_source.h"

EffectKind ParseEffectKind(const std::wstring& text) {
    // Exact, case-sensitive comparisons: "Random" and "KBER" are Fader.
    if (text == kShowRandom) return static_cast<EffectKind>(RandomU32() % 6);
    if (text == kShowFaller) return EffectKind::Faller;
    if (text == kShowFourUp) return EffectKind::FourUp;
    if (text == kShowPanner) return EffectKind::Panner;
    if (text == kShowSlider) return EffectKind::Slider;
    if (text == kShowReflections) return EffectKind::Reflections;
    return EffectKind::Fader;
}

std::unique_ptr<Effect> MakeEffect(EffectKind kind, EffectOptions options, PhotoSource& source) {
    switch (kind) {
    case EffectKind::Faller: return std::make_unique<FallerEffect>(source);
    case EffectKind::FourUp: return std::make_unique<FourUpEffect>(options.pauseIndex, source);
    // Fader, Slider, Panner and Reflections show one photo at a time.
    default: return std::make_unique<SingleEffect>(kind, options, source);
    }
}
