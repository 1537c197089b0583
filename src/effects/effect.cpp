#include "effects/effect.h"

#include "effects/faller_effect.h"
#include "effects/four_up_effect.h"
#include "effects/single_effect.h"
#include "library/random.h"
#include "photos/photo_source.h"

EffectKind ParseEffectKind(const std::wstring& text) {
    // Exact, case-sensitive comparisons: "Random" and "KBER" are Fader.
    if (text == L"random") return static_cast<EffectKind>(RandomU32() % 6);
    if (text == L"faller") return EffectKind::Faller;
    if (text == L"fourup") return EffectKind::FourUp;
    if (text == L"kber") return EffectKind::Panner;
    if (text == L"slider") return EffectKind::Slider;
    if (text == L"reflections") return EffectKind::Reflections;
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
