// The start-up decisions of a session (the photos and their order, the options, the windows' start
// indices and scale) and what it makes of its command line, of window messages and of the mouse.
#include <gtest/gtest.h>

#include <array>
#include <tuple>

#include "effects/recording_surface.h"
#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/photo_listing.h"
#include "session/command_line.h"
#include "session/crossfade.h"
#include "session/frame_wait.h"
#include "session/saver_session.h"
#include "session/window_messages.h"
#include "support/fake_window_thread.h"

namespace {

using Paths = std::vector<std::wstring>;

// The platform's own choice: the first folder's photos as ListPhotos gives them, else the second's.
TEST(SessionStartup, PhotosOptionsAndWindowsStartsAndScale) {
    MemoryTree& tree = TestTree() = MemoryTree();
    tree.Add(L"C:\\a\\sub", kDirectoryBit); // a folder is no photo
    tree.Add(L"C:\\b\\one.jpg", 0x06);      // a hidden system file is
    const Paths b{L"C:\\b\\one.jpg"};
    EXPECT_EQ(ChoosePhotos(ListPhotos, L"C:\\a", L"C:\\b"), b);
    EXPECT_EQ(ChoosePhotos(ListPhotos, L"C:\\b", L"C:\\a"), b);
    EXPECT_EQ(ChoosePhotos(ListPhotos, L"C:\\missing", L"C:\\a"), Paths{});

    // They are sorted by file name folding only A to Z, stably, or shuffled from the top.
    Paths photos{L"C:\\x\\b.jpg",      L"C:\\z\\A.jpg",    L"C:\\y\\Same.jpg",
                 L"C:\\a\\\u00C9.jpg", L"C:\\a\\same.JPG", L"noslash.jpg"};
    OrderPhotos(photos, 0, {}); // a sort draws no numbers
    EXPECT_EQ(photos, (Paths{L"C:\\z\\A.jpg", L"C:\\x\\b.jpg", L"noslash.jpg", L"C:\\y\\Same.jpg",
                             L"C:\\a\\same.JPG", L"C:\\a\\\u00C9.jpg"}));
    // One number per step from the top: n=3: 0 swaps 2 with 0; n=2: 3 gives 1, its own place.
    photos = {L"a", L"b", L"c"};
    size_t drawn = 0;
    OrderPhotos(photos, -1, [&] { return std::vector<uint32_t>{0, 3}.at(drawn++); });
    EXPECT_EQ(photos, (Paths{L"c", L"b", L"a"}));
    EXPECT_EQ(drawn, 2u);

    // What a run takes from the options key, with the fallbacks of missing or mistyped values.
    // SaverShow, SaverPause, SaverFit, SaverTitle, SaverImportedTitle (-1: not there), then
    // the effect kind, the pause index, fit, title and importedTitle.
    const std::tuple<const wchar_t*, const wchar_t*, std::array<int, 3>, EffectKind, int32_t,
                     std::array<bool, 3>>
        cases[] = {{nullptr, nullptr, {-1, -1, -1}, EffectKind::Fader, 2, {false, true, true}},
                   {L"kber", L"0", {7, 0, 0}, EffectKind::Panner, 0, {true, false, false}},
                   {L"Slider", L"5", {-1, -1, 0}, EffectKind::Fader, 5, {false, true, false}},
                   {L"faller", L"6", {0, 1, -1}, EffectKind::Faller, 2, {false, true, true}}};
    for (const auto& [show, pause, dwords, kind, pauseIndex, flags] : cases) {
        TestRegistry() = {};
        if (show) TestRegistry().PutString(L"SaverShow", show);
        if (pause) TestRegistry().PutString(L"SaverPause", pause);
        const wchar_t* names[] = {L"SaverFit", L"SaverTitle", L"SaverImportedTitle"};
        for (int i = 0; i < 3; ++i)
            if (dwords[i] >= 0) TestRegistry().Put(names[i], 4, {uint8_t(dwords[i]), 0, 0, 0});
        SaverSession session(SaverMode::Fullscreen);
        const SaverSession::RunOptions options = session.ReadOptions();
        EXPECT_EQ((std::array{session.fit, session.title, session.importedTitle}), flags);
        EXPECT_TRUE(options.kind == kind && options.effectOptions.pauseIndex == pauseIndex &&
                    options.effectOptions.fit == flags[0]);
    }

    // 10 photos on 2 monitors, 2 on 3, none on none: at least one apart.
    for (const auto [photos, windows, share] : {std::tuple{10, 2, 5}, {2, 3, 1}, {0, 0, 1}})
        EXPECT_EQ(PhotoShare(photos, windows), uint64_t(share));
    EXPECT_FLOAT_EQ(WindowScale(SaverMode::Fullscreen, 144, 200, 1080), 1.5f);
    EXPECT_EQ(WindowScale(SaverMode::Preview, 96, 200, 0), 200.0f); // no screen height: 1
}

TEST(CommandLine, DecidesModeHandleAndSilentExits) {
    const auto settings = SaverMode::Settings, full = SaverMode::Fullscreen;
    const auto preview = SaverMode::Preview;
    // The arguments, whether the run goes on, its mode and handle; 777 is a window.
    // clang-format off
    const std::tuple<std::vector<std::wstring>, bool, SaverMode, uint64_t> cases[] = {
        // No usable switch opens the settings; unknown letters end at once.
        {{}, true, settings, 0}, {{L"/"}, true, settings, 0}, {{L"/x"}, false, settings, 0},
        // Only the letter behind the switch character counts, in any case.
        {{L"-saver", L"777"}, true, full, 0}, {{L"/C", L"777"}, true, settings, 0},
        // Preview takes its value after the colon or from the next argument.
        {{L"/p:777", L"888"}, true, preview, 777}, {{L"-P", L"777"}, true, preview, 777},
        {{L"/p:", L"777"}, true, preview, 777},
        // A missing, unreadable or foreign handle ends silently.
        {{L"/p"}, false, preview, 0}, {{L"/p:abc"}, false, preview, 0},
        {{L"/p:888"}, false, preview, 888}};
    // clang-format on
    for (const auto& [arguments, run, mode, handle] : cases) {
        SCOPED_TRACE(arguments.empty() ? L"" : arguments[0]);
        const auto choice = ParseCommandLine(arguments, [](uint64_t n) { return n == 777; });
        EXPECT_EQ(choice.run, run);
        if (run || mode == preview) EXPECT_TRUE(choice.mode == mode && choice.handle == handle);
    }
}

// The two ways a session draws: the render loop and the Direct2D start against a scripted window
// thread and recording targets, and the crossfade's timing, alpha, captions, loads and fades.
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

TEST(WindowMessages, ActByModeAndTheMouseDismissesOnce) {
    using A = MessageAction;
    namespace M = WindowMessage;
    // The message, its wParam, the actions in full screen and in a preview.
    // clang-format off
    const std::tuple<uint32_t, uint64_t, MessageAction, MessageAction> cases[] = {
        {M::MouseMove, 0, A::MouseRule, A::Swallow}, {M::Destroy, 0, A::Swallow, A::PostQuit},
        {M::ActivateApp, 0, A::DismissThenDefault, A::Default},
        {M::Timer, 2, A::FadeStep, A::FadeStep}, {M::Timer, 1, A::Swallow, A::Swallow},
        // The low four bits of a system command don't matter; SC_CLOSE is no screen saver.
        {M::SysCommand, 0xF14F, A::Swallow, A::Default},
        {M::SysCommand, 0xF060, A::Default, A::Default}};
    // clang-format on
    for (const auto& [message, wParam, fullscreen, preview] : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << message << " " << wParam);
        EXPECT_EQ(DecideMessage(SaverMode::Fullscreen, message, wParam), fullscreen);
        EXPECT_EQ(DecideMessage(SaverMode::Preview, message, wParam), preview);
    }

    // The mouse: the first move records, and nine pixels from there hide every window and quit
    // once. The moves, and whether they dismiss.
    const std::pair<std::vector<std::pair<int32_t, int32_t>>, bool> mice[] = {
        {{{100, 100}, {108, 92}}, false},             // 8 along both
        {{{100, 100}, {109, 100}, {109, 100}}, true}, // 9 along x, then again
        {{{100, 100}, {100, 91}}, true},
        {{{100, 100}, {105, 100}, {110, 100}}, true},                  // drifting adds up
        {{{-1920, -5}, {-1914, -5}, {-1926, -5}, {-1920, 3}}, false}}; // the record stays put
    for (const auto& [moves, dismissed] : mice) {
        Loop loop(3);
        std::vector<WindowHandle> windows;
        for (const auto& window : loop.session.windows) windows.push_back(window->hwnd);
        for (const auto& [x, y] : moves) loop.session.MouseMoved(x, y);
        // A dismissal hides every window, in order, and posts one quit message however often.
        EXPECT_EQ(loop.thread.hidden, dismissed ? windows : std::vector<WindowHandle>{});
        EXPECT_EQ(loop.thread.messages.size(), dismissed ? 1u : 0u);
    }
}

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

// A high-resolution timer, where there is one, ends the frame's wait at its due time, relative and
// in 100 ns units; the wait's own time-out comes a tick later. Without one, or with nothing to
// wait for, the time-out alone.
TEST(FrameWait, TheTimerEndsTheWaitOnTimeAndItsTimeoutOnlyGuards) {
    const std::tuple<uint32_t, bool, FrameWait> cases[] = {
        {8, true, {true, -80000, 24}},
        {12, true, {true, -120000, 28}},
        {8, false, {false, 0, 8}},
        {0, true, {false, 0, 0}},
    };
    for (const auto& [ms, timer, expected] : cases) {
        const FrameWait wait = PlanFrameWait(ms, timer);
        EXPECT_EQ(std::tuple(wait.onTimer, wait.timerDue, wait.timeoutMs),
                  std::tuple(expected.onTimer, expected.timerDue, expected.timeoutMs))
            << ms << " " << timer;
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

// The one window of a session of the first `photos` photos.
struct Fixture : Loop {
    explicit Fixture(size_t photos) : Loop(1), window(*session.windows[0]) {
        session.photos.clear();
        for (size_t n = 0; n < photos; ++n) session.photos.push_back(PhotoPath(n));
    }
    ScreenWindow& window;
};

TEST(Crossfade, LoadTriesTenPhotosEachOnceAndTheFadeSwitchesCaptionAtStep51) {
    // Photos, cursor, the photos tried in order, how many of the first ones tried fail.
    // clang-format off
    const std::tuple<size_t, uint64_t, std::vector<size_t>, size_t> cases[] = {
        {1, 0, {0}, 1}, {2, 3, {1, 0}, 1}, {25, 0, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 9},
        {25, 20, {20, 21, 22, 23, 24, 0, 1, 2, 3, 4}, 10}};
    // clang-format on
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

    Fixture f(2), one(1);
    EXPECT_FALSE(one.window.StartFade()) << "one photo never fades";
    Fixture unreadable(2);
    unreadable.thread.unreadable = {PhotoPath(0), PhotoPath(1)};
    EXPECT_FALSE(unreadable.window.StartFade()) << "a failed load waits for the next tick";
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
    // Its shadow lies 2 pixels right of and below the text.
    for (auto [height, font] : {std::pair{100, 12}, {240, 20}}) {
        const CaptionLayout caption = LayOutCaption(SaverMode::Preview, 320, height);
        EXPECT_EQ(caption.fontHeight, font);
        EXPECT_TRUE(caption.shadow.left == caption.text.left + 2 &&
                    caption.shadow.bottom == caption.text.bottom + 2);
    }
}

} // namespace
