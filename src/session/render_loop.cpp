#include <cstdint>

#include "session/saver_session.h"

namespace {

// A pass that took at least this long runs straight on: whatever held it up (the first window's
// EndDraw waiting for the display's refresh) sets the pace.
constexpr double kFrameWorkThresholdMs = 8.0;
// A shorter pass waits for what is left of this budget, about sixty frames a second.
constexpr double kFrameBudgetMs = 16.0;
constexpr ColorF kClearColour{0.0f, 0.0f, 0.0f, 1.0f};

// One window's part of a pass: make a lost target again, skip a covered window, draw one frame,
// and drop what belongs to the device when the device is gone.
void DrawWindow(ScreenWindow& window, double elapsed) {
    if (!window.effect) return;
    if (!window.target && !window.CreateTarget()) return; // tried again on the next pass
    DrawingSurface& target = *window.target;
    if (target.IsOccluded()) return; // the effect's clock goes on regardless
    target.BeginDraw();
    target.Clear(kClearColour);
    const Canvas canvas{&target,
                        window.factories,
                        static_cast<float>(window.width),
                        static_cast<float>(window.height),
                        window.scale,
                        window.layer.get()};
    window.effect->Draw(canvas, elapsed);
    // Whatever transform the effect left must not stay on the target.
    target.SetTransform(Matrix3x2F{});
    if (target.EndDraw() == EndDrawResult::RecreateTarget) {
        // Only the device's objects go; the effect, its photos and its timing stay.
        window.effect->ReleaseTargetResources();
        window.layer.reset();
        window.target.reset();
    }
}

} // namespace

int32_t SaverSession::RenderLoop() {
    const int64_t frequency = thread->CounterFrequency();
    const auto now = [&] {
        return static_cast<double>(thread->Counter()) * 1000.0 / static_cast<double>(frequency);
    };
    const double start = now();
    for (;;) {
        // Every waiting message runs before a frame is drawn, completions of the work queue
        // among them, and nothing is drawn once the quit message has been posted.
        for (;;) {
            const auto dispatched = thread->DispatchNext();
            if (dispatched == WindowThread::Dispatched::Quit) return 0;
            if (dispatched == WindowThread::Dispatched::Nothing) break;
        }
        const double frameStart = now();
        const double elapsed = frameStart - start; // one time for every window of the pass
        for (const auto& window : windows) DrawWindow(*window, elapsed);
        const double used = now() - frameStart;
        if (used < kFrameWorkThresholdMs) {
            thread->WaitForInput(static_cast<uint32_t>(kFrameBudgetMs - used));
        }
    }
}

bool ScreenWindow::CreateTarget() {
    target.reset();
    target = session->thread->CreateWindowTarget(factories, hwnd, width, height, primary);
    if (target) {
        layer.reset();
        layer = target->CreateLayer();
        if (layer) {
            target->UseGrayscaleTextAntialiasing();
            return true;
        }
    }
    target.reset();
    return false;
}
