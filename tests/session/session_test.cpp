// The start-up decisions of a session (the photos and their order, the options, the windows' start
// indices and scale) and what it makes of its command line, of window messages and of the mouse.
#include <gtest/gtest.h>

#include <array>

#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/photo_listing.h"
#include "session/command_line.h"
#include "session/saver_session.h"
#include "session/window_messages.h"
#include "support/fake_window_thread.h"

namespace {

using Paths = std::vector<std::wstring>;

// The platform's own choice: the first folder's photos as ListPhotos gives them, else the second's.
TEST(SessionStartup, PhotosAreTheFirstFoldersFilesOrElseTheSecondsSortedOrShuffled) {
    MemoryTree& tree = TestTree() = MemoryTree();
    tree.Add(L"C:\\a\\sub", kDirectoryBit); // a folder is no photo
    tree.Add(L"C:\\b\\one.jpg", 0x06);      // a hidden system file is
    const Paths b{L"C:\\b\\one.jpg"};
    EXPECT_EQ(ChoosePhotos(ListPhotos, L"C:\\a", L"C:\\b"), b);
    EXPECT_EQ(ChoosePhotos(ListPhotos, L"C:\\b", L"C:\\a"), b);
    EXPECT_EQ(ChoosePhotos(ListPhotos, L"C:\\missing", L"C:\\a"), Paths{});

    // They are sorted by file name folding only A to Z, stably, or shuffled from the top.
    Paths photos{L"C:\\x\\b.jpg", L"C:\\z\\A.jpg", L"C:\\y\\Same.jpg", L"C:\\a\\\u00C9.jpg",
                 L"C:\\a\\same.JPG", L"noslash.jpg"};
    OrderPhotos(photos, 0, {}); // a sort draws no numbers
    EXPECT_EQ(photos, (Paths{L"C:\\z\\A.jpg", L"C:\\x\\b.jpg", L"noslash.jpg", L"C:\\y\\Same.jpg",
                             L"C:\\a\\same.JPG", L"C:\\a\\\u00C9.jpg"}));
    // One number per step from the top: n=3: 0 swaps 2 with 0; n=2: 3 gives 1, its own place.
    photos = {L"a", L"b", L"c"};
    size_t drawn = 0;
    OrderPhotos(photos, -1, [&] { return std::vector<uint32_t>{0, 3}.at(drawn++); });
    EXPECT_EQ(photos, (Paths{L"c", L"b", L"a"}));
    EXPECT_EQ(drawn, 2u);
}

// What a run takes from the options key, with the fallbacks of missing or mistyped values.
TEST(SessionStartup, ReadOptionsFallsBackPerValueAndWindowsStartApartAndScaleWithTheDpi) {
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
    for (const auto& [arguments, run, mode, handle] : cases) {
        SCOPED_TRACE(arguments.empty() ? L"" : arguments[0]);
        const auto choice = ParseCommandLine(arguments, [](uint64_t n) { return n == 777; });
        EXPECT_EQ(choice.run, run);
        if (run || mode == preview) EXPECT_TRUE(choice.mode == mode && choice.handle == handle);
    }
}

TEST(WindowMessages, ActByModeAndTheMouseDismissesOnce) {
    using A = MessageAction;
    namespace M = WindowMessage;
    // The message, its wParam, the actions in full screen and in a preview.
    const std::tuple<uint32_t, uint64_t, MessageAction, MessageAction> cases[] = {
        {M::MouseMove, 0, A::MouseRule, A::Swallow}, {M::Destroy, 0, A::Swallow, A::PostQuit},
        {M::ActivateApp, 0, A::DismissThenDefault, A::Default},
        {M::Timer, 2, A::FadeStep, A::FadeStep}, {M::Timer, 1, A::Swallow, A::Swallow},
        // The low four bits of a system command don't matter; SC_CLOSE is no screen saver.
        {M::SysCommand, 0xF14F, A::Swallow, A::Default},
        {M::SysCommand, 0xF060, A::Default, A::Default}};
    for (const auto& [message, wParam, fullscreen, preview] : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << message << " " << wParam);
        EXPECT_EQ(DecideMessage(SaverMode::Fullscreen, message, wParam), fullscreen);
        EXPECT_EQ(DecideMessage(SaverMode::Preview, message, wParam), preview);
    }

    // The mouse: the first move records, and nine pixels from there hide every window and quit
    // once. The moves, and whether they dismiss.
    const std::pair<std::vector<std::pair<int32_t, int32_t>>, bool> mice[] = {
        {{{100, 100}, {108, 92}}, false},           // 8 along both
        {{{100, 100}, {109, 100}, {300, 9}}, true}, // 9 along x, then more
        {{{100, 100}, {100, 91}}, true},
        {{{100, 100}, {105, 100}, {110, 100}}, true},                  // drifting adds up
        {{{-1920, -5}, {-1914, -5}, {-1926, -5}, {-1920, 3}}, false}}; // the record stays put
    for (const auto& [moves, dismissed] : mice) {
        FakeWindowThread thread;
        SaverSession session(SaverMode::Fullscreen, &thread);
        std::vector<WindowHandle> windows;
        for (uintptr_t i = 1; i <= 3; ++i) {
            session.windows.push_back(std::make_unique<ScreenWindow>(&session, 0, 100, 100));
            windows.push_back(session.windows.back()->hwnd = reinterpret_cast<WindowHandle>(i));
        }
        for (const auto& [x, y] : moves) session.MouseMoved(x, y);
        // A dismissal hides every window, in order, and posts one quit message however often.
        EXPECT_EQ(thread.hidden, dismissed ? windows : std::vector<WindowHandle>{});
        EXPECT_EQ(thread.messages.size(), dismissed ? 1u : 0u);
    }
}

} // namespace
