#include "effects/effect.h"

#include "photos/photo_source.h"
#include "library/random.h"

namespace {

// Stand-in until the effects land: it asks for no photo and paints nothing, so a window shows
// the black of the cleared target. The effects issue replaces MakeEffect's body with the six
// presentations.
class BlankEffect final : public Effect {
public:
    void Draw(const Canvas&, double) override {}
    void ReleaseTargetResources() override {}
};

} // namespace

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

std::unique_ptr<Effect> MakeEffect(EffectKind, EffectOptions, PhotoSource&) {
    return std::make_unique<BlankEffect>();
}
