// The render loop against a scripted clock and message queue, with recording targets.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "effects/recording_surface.h"
#include "session/saver_session.h"
#include "support/fake_window_thread.h"

namespace {

using Op = SurfaceCall::Op;

// What the effects saw, in call order: window index, frame time and canvas of each draw.
struct Frame {
    int window;
    double elapsed;
    Canvas canvas;
};

// Records its frames, takes `work` milliseconds of the scripted clock per frame and leaves a
// rotation on the target.
class ProbeEffect final : public Effect {
public:
    ProbeEffect(int index, std::vector<Frame>& draws, std::vector<int>& releases,
                FakeWindowThread& thread, double work)
        : index(index), draws(draws), releases(releases), thread(thread), work(work) {}
    void Draw(const Canvas& canvas, double elapsed) override {
        draws.push_back({index, elapsed, canvas});
        canvas.target->SetTransform(Matrix3x2F{0, 1, -1, 0, 5, 5});
        thread.Advance(work);
    }
    void ReleaseTargetResources() override { releases.push_back(index); }

private:
    int index;
    std::vector<Frame>& draws;
    std::vector<int>& releases;
    FakeWindowThread& thread;
    double work;
};

// A full-screen session of `count` windows of different sizes and scales with probe effects;
// each window's targets record into a log of its own.
struct Loop {
    FakeWindowThread thread;
    SaverSession session{SaverMode::Fullscreen, &thread};
    std::vector<Frame> draws;
    std::vector<int> releases;
    std::vector<std::shared_ptr<SurfaceLog>> logs;
    std::set<int> refuseTargets; // windows whose CreateWindowTarget fails

    explicit Loop(int count, double workPerFrame = 0) {
        thread.makeTarget = [this](WindowHandle window, bool) -> std::unique_ptr<DrawingSurface> {
            const int index = static_cast<int>(reinterpret_cast<uintptr_t>(window)) - 1;
            if (refuseTargets.count(index)) return nullptr;
            return MakeRecordingSurface(logs[index]);
        };
        for (int i = 0; i < count; ++i) {
            logs.push_back(std::make_shared<SurfaceLog>());
            auto window = std::make_unique<ScreenWindow>(&session, i * 5u, 640 + 160 * i, 480);
            window->scale = 1.0f + 0.25f * static_cast<float>(i);
            window->hwnd = reinterpret_cast<WindowHandle>(static_cast<uintptr_t>(i + 1));
            window->effect =
                std::make_unique<ProbeEffect>(i, draws, releases, thread, workPerFrame);
            session.windows.push_back(std::move(window));
        }
    }
    // Runs `passes` passes, then the quit message arrives.
    int32_t Run(int passes = 3) {
        for (auto& window : session.windows) window->CreateTarget();
        int reads = 0; // the start, then two per pass
        thread.onCounter = [this, &reads, passes] {
            if (++reads == 1 + 2 * passes) thread.messages.push_back(nullptr);
        };
        return session.RenderLoop();
    }
    size_t BeginDraws(int window) const { return logs[window]->Calls(Op::BeginDraw).size(); }
};

TEST(RenderLoop, PacesShortPassesToSixteenMilliseconds) {
    const std::pair<double, std::vector<uint32_t>> cases[] = {
        {0.0, {16}}, {3.7, {12}}, {7.9, {8}}, {8.0, {}}, {12.5, {}}};
    for (const auto& [work, waits] : cases) {
        Loop loop(1, work);
        EXPECT_EQ(loop.Run(1), 0);
        EXPECT_EQ(loop.thread.waits, waits) << work;
    }
}

TEST(RenderLoop, GivesEachWindowItsCanvasAndAllOneTimePerPassOnAClearedTarget) {
    Loop loop(2, 5.0);
    loop.Run();
    // Each frame takes 5 ms, yet both windows get the time of the pass; a pass of 10 ms runs
    // straight on.
    ASSERT_EQ(loop.draws.size(), 6u);
    for (size_t i = 0; i < 6; ++i) {
        const Frame& draw = loop.draws[i];
        const ScreenWindow& window = *loop.session.windows[i % 2];
        EXPECT_EQ(draw.window, int(i % 2));
        EXPECT_NEAR(draw.elapsed, 10.0 * double(i / 2), 1e-6);
        const Canvas& c = draw.canvas;
        EXPECT_TRUE(c.target == window.target.get() && c.layer == window.layer.get()) << i;
        EXPECT_EQ(std::vector<float>({c.width, c.height, c.scale}),
                  std::vector<float>({float(window.width), float(window.height), window.scale}));
    }
    for (const auto& log : loop.logs) {
        // Each frame starts cleared to opaque black and ends with the effect's rotation undone.
        EXPECT_EQ(log->Calls(Op::Clear).size(), 3u);
        EXPECT_EQ(log->Calls(Op::Clear).front().color, (ColorF{0, 0, 0, 1}));
        const auto ops = log->Ops();
        EXPECT_EQ(*(std::find(ops.begin(), ops.end(), Op::EndDraw) - 1), Op::SetTransform);
        EXPECT_EQ(log->Calls(Op::SetTransform)[1].transform, Matrix3x2F{});
        EXPECT_TRUE(log->misuses.empty());
    }
}

TEST(RenderLoop, LostTargetIsRemadeWhileTheOtherWindowDrawsOn) {
    Loop loop(2);
    loop.logs[0]->endDrawResults = {EndDrawResult::Ok, EndDrawResult::RecreateTarget};
    loop.logs[1]->endDrawResults = {EndDrawResult::Failed}; // other failures change nothing
    loop.Run(4);
    EXPECT_EQ(loop.releases, std::vector<int>{0});
    EXPECT_EQ(loop.BeginDraws(0), 4u); // lost after pass 2, remade and drawn in pass 3
    EXPECT_EQ(loop.BeginDraws(1), 4u);
    EXPECT_EQ(loop.thread.targetsRequested, 3);
    EXPECT_EQ(loop.logs[0]->targetsAlive + loop.logs[0]->layersAlive, 2);
    // The frame time runs on from the start of the loop across the loss.
    EXPECT_NEAR(loop.draws.back().elapsed, 3 * 16.0, 1e-6);
}

TEST(RenderLoop, CoveredAndTargetlessWindowsAreSkippedAndRetried) {
    Loop loop(3);
    loop.logs[0]->occluded = true;
    loop.refuseTargets = {1};
    loop.session.windows[2]->effect.reset();
    loop.Run();
    EXPECT_EQ(loop.BeginDraws(0), 0u);
    EXPECT_TRUE(loop.draws.empty());
    // Window 1 asks at start-up and in each pass; the window without an effect only once.
    EXPECT_EQ(loop.thread.targetsRequested, 3 + 3);
    EXPECT_EQ(loop.thread.waits, (std::vector<uint32_t>{16, 16, 16}));
}

TEST(RenderLoop, QuitBehindOtherMessagesEndsAfterThemAndDrawsNothing) {
    Loop loop(1);
    std::vector<int> ran;
    loop.thread.messages = {[&] { ran.push_back(1); }, [&] { ran.push_back(2); }, nullptr,
                            [&] { ran.push_back(3); }};
    EXPECT_EQ(loop.session.RenderLoop(), 0);
    EXPECT_EQ(ran, (std::vector<int>{1, 2}));
    EXPECT_EQ(loop.BeginDraws(0), 0u);
}

TEST(RenderLoop, CreateTargetReplacesTargetAndLayerOrLeavesNone) {
    Loop loop(1);
    ScreenWindow& window = *loop.session.windows[0];
    ASSERT_TRUE(window.CreateTarget() && window.CreateTarget());
    EXPECT_EQ(loop.logs[0]->targetsAlive + loop.logs[0]->layersAlive, 2);
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
        for (auto& window : loop.session.windows) window->effect.reset();
        if (secondFails) loop.refuseTargets = {1};
        loop.session.title = false;
        EXPECT_EQ(loop.session.StartDirect2D({}), !secondFails);
        EXPECT_EQ(loop.session.queue.window, loop.session.windows[0]->hwnd);
        EXPECT_EQ(loop.session.queue.message, 0x8001u);
        EXPECT_EQ(loop.session.windows[0]->scale, 480.0f / 1080.0f);
        for (size_t i = 0; i < 2; ++i) {
            const ScreenWindow& window = *loop.session.windows[i];
            EXPECT_EQ(window.primary, i == 0);
            const int parts = !!window.effect + !!window.source + !!window.target + !!window.layer;
            EXPECT_EQ(parts, secondFails ? 0 : 4);
            // Each target has its window's size; only the first waits for the display.
            const auto& request = loop.thread.targetRequests[i];
            EXPECT_TRUE(request.window == window.hwnd && request.width == window.width &&
                        request.height == window.height && request.primary == (i == 0));
            // Each window's photos start at its own place, with the session's caption flags.
            if (secondFails) continue;
            EXPECT_EQ(window.source->cursor, i * 5);
            EXPECT_EQ(window.source->titleFlags, (TitleFlags{false, true}));
        }
        EXPECT_EQ(loop.thread.invalidated.size(), secondFails ? 2u : 0u);
    }
}

} // namespace
