// Our own cost of a frame: each presentation's Draw, frame after frame at 60 Hz through whole
// cycles of photos, on a 1920x1080 surface that does nothing, so that only our code is timed.
// The decoding of the next photo runs between frames, outside the measured time.
#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <vector>

#include "bench/probe_surface.h"
#include "effects/effect.h"
#include "photos/fake_image_files.h"
#include "photos/photo_source.h"
#include "support/scripted_queue.h"

namespace {

// One iteration is one frame of one window; the time is per frame, and "change_us" the mean of
// the frames on which a new photo takes the stage (the old one's pixels are freed there).
void Frames(benchmark::State& state, EffectKind kind) {
    FakeFiles() = {};
    std::vector<std::wstring> photos{L"C:\\p\\Lake-a0000000.jpg", L"C:\\p\\Hills-b0000000.jpg"};
    for (const auto& photo : photos) FakeFiles().files[photo] = {4000, 3000, 0, 0xFF406080};
    ScriptedQueueSystem system;
    WorkQueue queue{system};
    queue.Start(reinterpret_cast<WindowHandle>(1), 0x8001);
    PhotoSource source{&queue, &photos, 0, {true, true}};
    ProbeCounts counts;
    ProbeSurface surface(nullptr, counts);
    const auto layer = surface.CreateLayer();
    const Canvas canvas{&surface, nullptr, 1920, 1080, 1.0f, layer.get()};
    const auto effect = MakeEffect(kind, EffectOptions{2, false}, source);
    double elapsed = 0, changes = 0, changeTime = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        effect->Draw(canvas, elapsed);
        const std::chrono::duration<double> used = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(used.count());
        // The background thread's part, delivered at once. A photo is asked for on the first
        // frame of its predecessor, so a job here means that this frame changed photos.
        if (RunJobs(queue) > 0) {
            changes += 1;
            changeTime += used.count();
        }
        elapsed += 1000.0 / 60;
    }
    state.counters["change_us"] = changes > 0 ? changeTime / changes * 1e6 : 0;
}

} // namespace

int main(int argc, char** argv) {
    for (const auto& [name, kind] : {std::pair{"fader", EffectKind::Fader},
                                     {"slider", EffectKind::Slider},
                                     {"kber", EffectKind::Panner},
                                     {"reflections", EffectKind::Reflections},
                                     {"faller", EffectKind::Faller},
                                     {"fourup", EffectKind::FourUp}})
        benchmark::RegisterBenchmark((std::string("Frames/") + name).c_str(), Frames, kind)
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
