// The two ways a session draws: the render loop and the Direct2D start against a scripted window
// thread and recording targets, and the crossfade's timing, alpha, captions, loads and fades.
#include <gtest/gtest.h>

#include <array>

#include "effects/recording_surface.h"
#include "session/crossfade.h"
#include "session/window_messages.h"
#include "support/fake_window_thread.h"

namespace {

using Op = SurfaceCall::Op;

// A session of 10 photos and `count` windows opened as the session opens them: window i is
// 640 + 160 i by 480 pixels at the scale 1 + i / 4, has the handle i + 1, and its targets record
// into logs[i].
struct Loop {
    // An effect that hands its draws and releases to the test. Each draw takes `work`
    // milliseconds of the scripted clock and leaves a rotation on the target.
    struct Probe final : Effect {
        Probe(Loop* loop, int i) : loop(loop), i(i) {}
        void Draw(const Canvas& canvas, double elapsed) override {
            const ScreenWindow& window = *loop->session.windows[i];
            EXPECT_TRUE(canvas.target == window.target.get() && canvas.layer == window.layer.get());
            loop->draws.emplace_back(i, elapsed, canvas);
            canvas.target->SetTransform(Matrix3x2F{0, 1, -1, 0, 5, 5});
            loop->thread.Advance(loop->work);
        }
        void ReleaseTargetResources() override { loop->releases.push_back(i); }
        Loop* loop;
        int i;
    };

    FakeWindowThread thread;
    SaverSession session{SaverMode::Fullscreen, &thread};
    std::vector<std::shared_ptr<SurfaceLog>> logs;
    std::vector<std::tuple<int, double, Canvas>> draws; // window, frame time, canvas
    std::vector<int> releases;
    double work = 0;

    explicit Loop(int count) {
        thread.makeTarget = [this](WindowHandle window) {
            return MakeRecordingSurface(logs[reinterpret_cast<uintptr_t>(window) - 1]);
        };
        session.photos.assign(10, L"p.jpg");
        std::vector<SaverSession::Rectangle> rectangles;
        for (int i = 0; i < count; ++i) rectangles.push_back({2000 * i, -9, 2160 * i + 640, 471});
        session.OpenWindows(rectangles, [this](ScreenWindow& window, const auto&) {
            const int i = static_cast<int>(logs.size());
            logs.push_back(std::make_shared<SurfaceLog>());
            window.hwnd = reinterpret_cast<WindowHandle>(static_cast<uintptr_t>(i + 1));
            window.scale = 1.0f + 0.25f * static_cast<float>(i);
            window.effect = std::make_unique<Probe>(this, i);
            return true;
        });
    }
};

TEST(RenderLoop, WindowsDrawTheirCanvasAtThePassTimeShortPassesWaitAndLostTargetsAreRemade) {
    // Each frame takes `work`: a pass of 7.9 ms waits for 8 more, one of 8 ms runs straight on.
    // Windows 0 and 1 draw, 1 losing its target in passes 2 and 4; 2 is covered, 3 gets no
    // target and 4 has no effect.
    for (const auto& [work, wait] : {std::pair{3.95, 8u}, {4.0, 0u}}) {
        Loop loop(5);
        loop.work = work;
        const auto ok = EndDrawResult::Ok, lost = EndDrawResult::RecreateTarget;
        loop.logs[1]->endDrawResults = {ok, lost, ok, lost};
        loop.logs[2]->occluded = true;
        loop.logs[3]->failing = {Op::CreateLayer}; // its targets go again at once
        loop.session.windows[4]->effect.reset();
        std::vector<size_t> drawnBefore; // by the messages waiting at the start
        for (int i = 0; i < 2; ++i)
            loop.thread.messages.push_back([&] { drawnBefore.push_back(loop.draws.size()); });
        for (auto& window : loop.session.windows) window->CreateTarget();
        int reads = 0; // the start, then two per pass: the quit message comes after pass 4
        loop.thread.onCounter = [&] {
            if (++reads == 9) loop.thread.messages.push_back(nullptr);
        };
        EXPECT_EQ(loop.session.RenderLoop(), 0);
        EXPECT_EQ(drawnBefore, (std::vector<size_t>{0, 0}));
        EXPECT_EQ(loop.thread.waits, std::vector<uint32_t>(wait ? 4 : 0, wait));
        ASSERT_EQ(loop.draws.size(), 8u); // and none after the quit message
        for (size_t i = 0; i < 8; ++i) {
            const auto& [index, elapsed, c] = loop.draws[i];
            // One time for the pass, running on from the start of the loop across a loss.
            EXPECT_NEAR(elapsed, (2 * work + wait) * double(i / 2), 1e-6);
            EXPECT_EQ((std::array{c.width, c.height, c.scale}),
                      (std::array{640.0f + 160 * index, 480.0f, 1.0f + 0.25f * index}));
        }
        // Each frame starts cleared to opaque black and ends with the rotation undone.
        const auto& calls = loop.logs[0]->calls;
        EXPECT_EQ(loop.logs[0]->Calls(Op::Clear).at(2).color, (ColorF{0, 0, 0, 1}));
        EXPECT_TRUE(calls[4].op == Op::SetTransform && calls[4].transform == Matrix3x2F{});
        EXPECT_EQ(calls[5].op, Op::EndDraw);
        // Each loss takes only the device's objects, at once: none is left after the last.
        EXPECT_EQ(loop.releases, (std::vector<int>{1, 1}));
        EXPECT_EQ(loop.logs[1]->targetsAlive + loop.logs[1]->layersAlive, 0);
        EXPECT_TRUE(loop.logs[2]->Calls(Op::BeginDraw).empty());
        EXPECT_TRUE(loop.session.windows[3]->target == nullptr && loop.logs[3]->targetsAlive == 0);
        // Five targets at start-up, window 3's in every pass and window 1's again; the window
        // without an effect never asks again.
        EXPECT_EQ(loop.thread.targetRequests.size(), 5u + 4 + 1);
    }
}

TEST(SessionDirect2D, EachWindowGetsItsTargetScaleAndPhotosOrAllGoToTheCrossfade) {
    for (const bool secondFails : {false, true}) {
        Loop loop(2);
        loop.session.mode = SaverMode::Preview;
        loop.thread.dpi = 192;
        if (secondFails) loop.logs[1]->failing = {Op::CreateLayer};
        loop.session.title = false;
        EXPECT_EQ(loop.session.StartDirect2D({}), !secondFails);
        // Every result reaches the user interface through the first window.
        EXPECT_TRUE(loop.session.queue.window == loop.session.windows[0]->hwnd &&
                    loop.session.queue.message == WindowMessage::WorkDone);
        for (size_t i = 0; i < 2; ++i) {
            const ScreenWindow& window = *loop.session.windows[i];
            EXPECT_EQ(window.scale, 480.0f / 1080.0f * 2.0f); // a pane 480 high, at 192 DPI
            // Each target has its window's size; only the first window's waits for the display.
            EXPECT_EQ(loop.thread.targetRequests[i],
                      std::tuple(window.hwnd, 640 + 160 * int(i), 480, i == 0));
            const int parts = !!window.effect + !!window.source + !!window.target + !!window.layer;
            EXPECT_EQ(parts, secondFails ? 0 : 4);
            // Each window's photos start at its own place, with the session's caption flags.
            if (!secondFails)
                EXPECT_TRUE(window.source->cursor == i * 5 &&
                            window.source->titleFlags == (TitleFlags{false, true}));
        }
        EXPECT_EQ(loop.thread.invalidated.size(), secondFails ? 2u : 0u);
    }
}

// Photo n, whose caption is "Photo n", and the path that the fake loaded into a bitmap.
std::wstring PhotoPath(size_t n) {
    return L"C:\\p\\Photo " + std::to_wstring(n) + L"_abcdefgh.jpg";
}
std::wstring Loaded(const PlatformObject& bitmap) {
    return bitmap ? *static_cast<std::wstring*>(bitmap.get()) : L"";
}

struct Fixture {
    FakeWindowThread thread;
    SaverSession session{SaverMode::Fullscreen, &thread};
    ScreenWindow window{&session, 0, 1920, 1080};
    explicit Fixture(size_t photos) {
        for (size_t n = 0; n < photos; ++n) session.photos.push_back(PhotoPath(n));
    }
};

TEST(Crossfade, LoadTriesAtMostTenPhotosAndEachOnceMovingOnOverFailures) {
    // Photos, cursor, the photos tried in order, how many of the first ones tried fail.
    const std::tuple<size_t, uint64_t, std::vector<size_t>, size_t> cases[] = {
        {1, 0, {0}, 1}, {2, 3, {1, 0}, 1}, {25, 0, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 9},
        {25, 20, {20, 21, 22, 23, 24, 0, 1, 2, 3, 4}, 10}};
    for (const auto& [photos, cursor, indices, failures] : cases) {
        Fixture f(photos);
        f.window.cursor = cursor;
        std::vector<std::wstring> tried;
        for (size_t n : indices) tried.push_back(PhotoPath(n));
        f.thread.unreadable.insert(tried.begin(), tried.begin() + failures);
        const bool loaded = failures < tried.size();
        std::wstring caption = L"old";
        EXPECT_EQ(f.window.LoadNext(f.window.currentBitmap, caption), loaded);
        EXPECT_EQ(f.thread.loads, tried);
        EXPECT_EQ(f.window.cursor, cursor + tried.size());
        EXPECT_EQ(Loaded(f.window.currentBitmap) + L"|" + caption,
                  loaded ? tried.back() + L"|Photo " + std::to_wstring(indices.back()) : L"|old");
    }
}

TEST(Crossfade, FadeSwitchesCaptionAtStep51EndsWithTheNextPhotoAndFollowsPeriodAndAlpha) {
    Fixture f(2), one(1);
    EXPECT_FALSE(one.window.StartFade()) << "one photo never fades";
    ASSERT_TRUE(f.window.LoadNext(f.window.currentBitmap, f.window.currentCaption) &&
                f.window.StartFade());
    EXPECT_FALSE(f.window.StartFade()) << "a period tick passes a fading window by";
    EXPECT_EQ(f.window.cursor, 2u);
    std::wstring captions; // at steps 50 and 51
    for (int32_t step = 2; step <= 100; ++step)
        if (!f.window.AdvanceFade() && (step == 50 || step == 51))
            captions += f.window.CrossfadeCaption() + L";";
    EXPECT_EQ(captions, L"Photo 0;Photo 1;");
    EXPECT_TRUE(f.window.AdvanceFade());
    EXPECT_EQ(Loaded(f.window.currentBitmap) + Loaded(f.window.nextBitmap), PhotoPath(1));
    EXPECT_TRUE(f.window.StartFade() && f.window.fadeStep == 1 &&
                Loaded(f.window.nextBitmap) == PhotoPath(0));

    // The period follows the pause index, the alpha the step and the caption the height.
    const uint32_t periods[] = {13000, 6000, 8000, 13000, 23000, 33000, 63000, 13000};
    for (int32_t i = -1; i <= 6; ++i) EXPECT_EQ(CrossfadePeriodMs(i), periods[i + 1]) << i;
    for (auto [step, alpha] : {std::pair{0, 0}, {1, 2}, {50, 127}, {100, 255}, {101, 255}})
        EXPECT_EQ(FadeAlpha(step), alpha) << step;
    // The caption's place on a monitor is seen end to end; a preview's pane sets larger text.
    for (auto [height, font] : {std::pair{100, 12}, {240, 20}})
        EXPECT_EQ(LayOutCaption(SaverMode::Preview, 320, height).fontHeight, font);
}

} // namespace
