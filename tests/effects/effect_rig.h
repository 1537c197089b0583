#pragma once

#include <string>
#include <vector>

#include "effects/effect.h"
#include "effects/recording_surface.h"
#include "photos/fake_image_files.h"
#include "photos/photo_source.h"
#include "support/scripted_queue.h"

// One window's effect on a recording target, fed by a real PhotoSource whose jobs run only when
// the test delivers them. Photo i of the list is a 400 x 300 file in colour kColours[i].
struct EffectRig {
    static constexpr uint32_t kColours[4] = {0xFF0000C0, 0xFF00C000, 0xFFC00000, 0xFF808080};
    static inline const std::wstring kTitles[4] = {L"Alpha", L"Beta", L"Gamma", L"Delta"};

    EffectRig(EffectKind kind, EffectOptions options, float width = 640, float height = 480,
              float scale = 1) {
        FakeFiles() = {};
        for (size_t i = 0; i < 4; ++i) {
            photos.push_back(L"C:\\p\\" + kTitles[i] + L"-a0000000.jpg");
            FakeFiles().files[photos[i]] = {400, 300, 0, kColours[i]};
        }
        queue.Start(reinterpret_cast<WindowHandle>(1), 0x8001);
        canvas = {target.get(), nullptr, width, height, scale, layer.get()};
        effect = MakeEffect(kind, options, source);
    }
    // One frame at `elapsed` as the render loop draws it; gives that frame's calls.
    std::vector<SurfaceCall> Frame(double elapsed) {
        const size_t first = log->calls.size();
        canvas.target->BeginDraw();
        canvas.target->Clear(ColorF{0, 0, 0, 1});
        effect->Draw(canvas, elapsed);
        canvas.target->SetTransform(Matrix3x2F{});
        canvas.target->EndDraw();
        return {log->calls.begin() + static_cast<long>(first), log->calls.end()};
    }
    // Runs up to `count` decoding jobs and their completions.
    size_t Deliver(size_t count = SIZE_MAX) { return RunJobs(queue, count); }
    // The colour at the middle of the photo that `draw` (a DrawBitmap) painted; 0 if unknown.
    uint32_t ColourOf(const SurfaceCall& draw) const {
        for (const auto& call : log->calls)
            if (call.op == SurfaceCall::Op::CreateBitmap && call.object == draw.object &&
                !call.pixels.empty())
                return call.pixels[call.pixels.size() / 2];
        return 0;
    }
    // The target is lost: the effect drops its device objects and gets a new target.
    void LoseTarget() {
        effect->ReleaseTargetResources();
        layer.reset();
        target = MakeRecordingSurface(log);
        layer = target->CreateLayer();
        canvas.target = target.get();
        canvas.layer = layer.get();
    }

    ScriptedQueueSystem system;
    WorkQueue queue{system};
    std::vector<std::wstring> photos;
    PhotoSource source{&queue, &photos, 0, {true, true}};
    std::shared_ptr<SurfaceLog> log = std::make_shared<SurfaceLog>();
    std::unique_ptr<DrawingSurface> target = MakeRecordingSurface(log);
    std::unique_ptr<SurfaceLayer> layer = target->CreateLayer();
    Canvas canvas;
    std::unique_ptr<Effect> effect;
};

// The calls of `op` among `calls`.
inline std::vector<SurfaceCall> OfOp(const std::vector<SurfaceCall>& calls, SurfaceCall::Op op) {
    std::vector<SurfaceCall> result;
    for (const auto& call : calls)
        if (call.op == op) result.push_back(call);
    return result;
}
