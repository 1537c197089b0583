// The render loop against a scripted clock and message queue, with recording targets.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "effects/recording_surface.h"
#include "session/saver_session.h"
#include "support/fake_window_thread.h"

namespace {

using Op = SurfaceCall::Op;

// What every effect of a test saw, in call order: (window index, frame time).
struct Probe {
    std::vector<std::pair<int, double>> draws;
    std::vector<Canvas> canvases; // of each draw
    std::vector<int> releases;
};

// An effect that records its frames, takes `work` milliseconds of the scripted clock per frame
// and leaves a rotation on the target.
class ProbeEffect final : public Effect {
public:
    ProbeEffect(int index, Probe& probe, FakeWindowThread& thread, double work)
        : index(index), probe(probe), thread(thread), work(work) {}
    void Draw(const Canvas& canvas, double elapsed) override {
        probe.draws.emplace_back(index, elapsed);
        probe.canvases.push_back(canvas);
        canvas.target->SetTransform(Matrix3x2F{0, 1, -1, 0, 5, 5});
        thread.Advance(work);
    }
    void ReleaseTargetResources() override { probe.releases.push_back(index); }

private:
    int index;
    Probe& probe;
    FakeWindowThread& thread;
    double work;
};

// A full-screen session of `count` windows with probe effects; each window's targets record
// into a log of its own.
struct Loop {
    FakeWindowThread thread;
    SaverSession session{SaverMode::Fullscreen, &thread};
    Probe probe;
    std::vector<std::shared_ptr<SurfaceLog>> logs;
    std::set<int> refuseTargets; // windows whose CreateWindowTarget fails
    int passesBeforeQuit = 3;

    explicit Loop(int count, double workPerFrame = 0) {
        thread.makeTarget = [this](WindowHandle window, bool) -> std::unique_ptr<DrawingSurface> {
            const int index = static_cast<int>(reinterpret_cast<uintptr_t>(window)) - 1;
            if (refuseTargets.count(index)) return nullptr;
            return MakeRecordingSurface(logs[index]);
        };
        // Every pass ends in a wait or straight away; the quit comes after the chosen number of
        // passes, counted by frame-time reads.
        for (int i = 0; i < count; ++i) {
            logs.push_back(std::make_shared<SurfaceLog>());
            // Every window differs in size, scale and start in the list.
            auto window = std::make_unique<ScreenWindow>(&session, i * 5u, 640 + 160 * i, 480 + 90 * i);
            window->scale = 1.0f + 0.25f * static_cast<float>(i);
            window->hwnd = reinterpret_cast<WindowHandle>(static_cast<uintptr_t>(i + 1));
            window->effect = std::make_unique<ProbeEffect>(i, probe, thread, workPerFrame);
            session.windows.push_back(std::move(window));
        }
    }
    int32_t Run() {
        for (auto& window : session.windows) window->CreateTarget();
        int reads = 0;
        thread.onCounter = [this, &reads] {
            // Reads: the start, then two per pass. Queue the quit after the last pass.
            if (++reads == 1 + 2 * passesBeforeQuit) thread.messages.push_back(nullptr);
        };
        return session.RenderLoop();
    }
    int BeginDraws(int window) const { return static_cast<int>(logs[window]->Calls(Op::BeginDraw).size()); }
};

TEST(RenderLoop, PacesShortPassesToSixteenMilliseconds) {
    const std::pair<double, std::vector<uint32_t>> cases[] = {
        {0.0, {16}}, {3.7, {12}}, {7.9, {8}}, {8.0, {}}, {12.5, {}},
    };
    for (const auto& [work, waits] : cases) {
        SCOPED_TRACE(work);
        Loop loop(1, work);
        loop.passesBeforeQuit = 1;
        EXPECT_EQ(loop.Run(), 0);
        EXPECT_EQ(loop.thread.waits, waits);
    }
}

TEST(RenderLoop, GivesEachWindowItsCanvasAndAllOneTimePerPassOnAClearedTarget) {
    Loop loop(2, 5.0);
    loop.Run();
    // Each frame takes 5 ms, yet both windows get the time of the pass; a pass of 10 ms runs
    // straight on.
    const std::vector<std::pair<int, double>> expected{{0, 0.0}, {1, 0.0}, {0, 10.0}, {1, 10.0},
                                                       {0, 20.0}, {1, 20.0}};
    ASSERT_EQ(loop.probe.draws.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(loop.probe.draws[i].first, expected[i].first);
        EXPECT_NEAR(loop.probe.draws[i].second, expected[i].second, 1e-6);
        // The canvas is that of the window drawn: its target, layer, size and scale.
        const Canvas& canvas = loop.probe.canvases[i];
        const ScreenWindow& window = *loop.session.windows[size_t(expected[i].first)];
        EXPECT_EQ(canvas.target, window.target.get());
        EXPECT_EQ(canvas.layer, window.layer.get());
        EXPECT_EQ(canvas.width, static_cast<float>(window.width));
        EXPECT_EQ(canvas.height, static_cast<float>(window.height));
        EXPECT_EQ(canvas.scale, window.scale);
    }
    for (const auto& log : loop.logs) {
        // Each frame starts cleared to opaque black and ends with the effect's rotation undone.
        EXPECT_EQ(log->Calls(Op::Clear).size(), 3u);
        EXPECT_EQ(log->Calls(Op::Clear).front().color, (ColorF{0, 0, 0, 1}));
        const auto ops = log->Ops();
        const auto end = std::find(ops.begin(), ops.end(), Op::EndDraw);
        ASSERT_NE(end, ops.begin());
        EXPECT_EQ(log->Calls(Op::SetTransform)[1].transform, Matrix3x2F{});
        EXPECT_EQ(*(end - 1), Op::SetTransform);
        EXPECT_TRUE(log->misuses.empty());
    }
}

TEST(RenderLoop, LostTargetIsRemadeWhileTheOtherWindowDrawsOn) {
    Loop loop(2);
    loop.logs[0]->endDrawResults = {EndDrawResult::Ok, EndDrawResult::RecreateTarget};
    loop.logs[1]->endDrawResults = {EndDrawResult::Failed}; // other failures change nothing
    loop.passesBeforeQuit = 4;
    loop.Run();
    EXPECT_EQ(loop.probe.releases, std::vector<int>{0});
    EXPECT_EQ(loop.BeginDraws(0), 4); // lost after pass 2, remade and drawn in pass 3
    EXPECT_EQ(loop.BeginDraws(1), 4);
    EXPECT_EQ(loop.thread.targetsRequested, 3);
    EXPECT_EQ(loop.logs[0]->targetsAlive, 1);
    EXPECT_EQ(loop.logs[0]->layersAlive, 1);
    // The frame time runs on from the start of the loop across the loss.
    EXPECT_NEAR(loop.probe.draws.back().second, 3 * 16.0, 1e-6);
}

TEST(RenderLoop, CoveredAndTargetlessWindowsAreSkippedAndRetried) {
    Loop loop(3);
    loop.logs[0]->occluded = true;
    loop.refuseTargets = {1};
    loop.session.windows[2]->effect.reset();
    loop.Run();
    EXPECT_EQ(loop.BeginDraws(0), 0);
    EXPECT_TRUE(loop.probe.draws.empty());
    // Window 2 asks for a target at start-up and then once in each of the three passes; the
    // window without an effect never asks again.
    EXPECT_EQ(loop.thread.targetsRequested, 3 + 3);
    EXPECT_EQ(loop.thread.waits, (std::vector<uint32_t>{16, 16, 16}));
}

TEST(RenderLoop, QuitBehindOtherMessagesEndsAfterThemAndDrawsNothing) {
    Loop loop(1);
    std::vector<int> dispatched;
    loop.thread.messages = {[&] { dispatched.push_back(1); }, [&] { dispatched.push_back(2); },
                            nullptr, [&] { dispatched.push_back(3); }};
    loop.session.windows[0]->CreateTarget();
    EXPECT_EQ(loop.session.RenderLoop(), 0);
    EXPECT_EQ(dispatched, (std::vector<int>{1, 2}));
    EXPECT_EQ(loop.BeginDraws(0), 0);
}

TEST(RenderLoop, CreateTargetReplacesTargetAndLayerOrLeavesNone) {
    Loop loop(1);
    ScreenWindow& window = *loop.session.windows[0];
    ASSERT_TRUE(window.CreateTarget());
    ASSERT_TRUE(window.CreateTarget());
    EXPECT_EQ(loop.logs[0]->targetsAlive, 1);
    EXPECT_EQ(loop.logs[0]->layersAlive, 1);
    loop.logs[0]->failing = {Op::CreateLayer};
    EXPECT_FALSE(window.CreateTarget());
    EXPECT_EQ(window.target, nullptr);
    EXPECT_EQ(loop.logs[0]->targetsAlive, 0);
}

TEST(SessionDirect2D, OneFailedTargetSendsEveryWindowToTheCrossfade) {
    for (const bool secondFails : {false, true}) {
        SCOPED_TRACE(secondFails);
        Loop loop(2);
        loop.session.mode = SaverMode::Preview;
        loop.thread.dpi = 96;
        loop.session.windows[0]->height = 200;
        for (auto& window : loop.session.windows) window->effect.reset();
        if (secondFails) loop.refuseTargets = {1};
        loop.session.title = false;
        EXPECT_EQ(loop.session.StartDirect2D({}), !secondFails);
        EXPECT_EQ(loop.session.queue.window, loop.session.windows[0]->hwnd);
        EXPECT_EQ(loop.session.queue.message, 0x8001u);
        const ScreenWindow& first = *loop.session.windows[0];
        EXPECT_TRUE(first.primary);
        EXPECT_FALSE(loop.session.windows[1]->primary);
        EXPECT_EQ(first.scale, 200.0f / 1080.0f);
        for (const auto& window : loop.session.windows) {
            EXPECT_EQ(window->effect != nullptr, !secondFails);
            EXPECT_EQ(window->source != nullptr, !secondFails);
            EXPECT_EQ(window->target != nullptr, !secondFails);
            EXPECT_EQ(window->layer != nullptr, !secondFails);
        }
        EXPECT_EQ(loop.thread.invalidated.size(), secondFails ? 2u : 0u);
        // Each target has its window's size; only the first waits for the display's refresh.
        for (size_t i = 0; i < loop.thread.targetRequests.size(); ++i) {
            const auto& request = loop.thread.targetRequests[i];
            EXPECT_EQ(request.window, loop.session.windows[i]->hwnd);
            EXPECT_EQ(request.width, loop.session.windows[i]->width);
            EXPECT_EQ(request.height, loop.session.windows[i]->height);
            EXPECT_EQ(request.primary, i == 0);
        }
        if (secondFails) continue;
        // Each window's photos start at its own place, with the session's caption flags.
        for (size_t i = 0; i < 2; ++i) {
            EXPECT_EQ(loop.session.windows[i]->source->cursor, i * 5);
            EXPECT_EQ(loop.session.windows[i]->source->titleFlags, (TitleFlags{false, true}));
        }
    }
}

} // namespace
