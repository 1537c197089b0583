// What the saver makes of its command line, of each window message by mode, and of the mouse.
#include <gtest/gtest.h>

#include "session/command_line.h"
#include "session/saver_session.h"
#include "session/window_messages.h"
#include "support/fake_window_thread.h"

namespace {

TEST(CommandLine, DecidesModeHandleAndSilentExits) {
    const auto settings = SaverMode::Settings, full = SaverMode::Fullscreen;
    const auto preview = SaverMode::Preview;
    // The arguments, whether the run goes on, its mode and handle; 777 is a window.
    const std::tuple<std::vector<std::wstring>, bool, SaverMode, uint64_t> cases[] = {
        // No usable switch opens the settings; unknown letters end at once.
        {{}, true, settings, 0}, {{L"/"}, true, settings, 0}, {{L"/x"}, false, settings, 0},
        // Only the letter behind the switch character counts, in any case.
        {{L"/S"}, true, full, 0}, {{L"-saver", L"777"}, true, full, 0},
        // Preview takes its value after the colon or from the next argument.
        {{L"/p:777", L"888"}, true, preview, 777}, {{L"-P", L"777"}, true, preview, 777},
        {{L"/p:", L"777"}, true, preview, 777}, {{L"/pq", L"777"}, true, preview, 777},
        // A missing, unreadable or foreign handle ends silently.
        {{L"/p"}, false, preview, 0}, {{L"/p:abc"}, false, preview, 0},
        {{L"/p:888"}, false, preview, 888},
        // Settings ignore any handle.
        {{L"/c:777"}, true, settings, 0}, {{L"/C", L"777"}, true, settings, 0}};
    for (const auto& [arguments, run, mode, handle] : cases) {
        SCOPED_TRACE(arguments.empty() ? L"" : arguments[0]);
        const auto choice = ParseCommandLine(arguments, [](uint64_t number) { return number == 777; });
        EXPECT_EQ(choice.run, run);
        if (run || mode == preview) EXPECT_TRUE(choice.mode == mode && choice.handle == handle);
    }
}

TEST(WindowMessages, ActByMode) {
    using A = MessageAction;
    namespace M = WindowMessage;
    // The message, its wParam, the actions in full screen and in a preview.
    const std::tuple<uint32_t, uint64_t, MessageAction, MessageAction> cases[] = {
        {M::MouseMove, 0, A::MouseRule, A::Swallow}, {M::KeyDown, 0x41, A::Dismiss, A::Swallow},
        {M::ActivateApp, 0, A::DismissThenDefault, A::Default},
        {M::ActivateApp, 1, A::Default, A::Default},
        // The low four bits of a system command don't matter; SC_CLOSE is no screen saver.
        {M::SysCommand, 0xF14F, A::Swallow, A::Default},
        {M::SysCommand, 0xF060, A::Default, A::Default}, {M::Destroy, 0, A::Swallow, A::PostQuit},
        {M::Timer, 2, A::FadeStep, A::FadeStep}, {M::Timer, 1, A::Swallow, A::Swallow}};
    for (const auto& [message, wParam, fullscreen, preview] : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << message << " " << wParam);
        EXPECT_EQ(DecideMessage(SaverMode::Fullscreen, message, wParam), fullscreen);
        EXPECT_EQ(DecideMessage(SaverMode::Preview, message, wParam), preview);
    }
}

TEST(MouseRule, FirstMoveRecordsAndNineFromThereHidesEveryWindowAndQuitsOnce) {
    // The moves, and whether they dismiss.
    const std::pair<std::vector<std::pair<int32_t, int32_t>>, bool> cases[] = {
        {{{5000, -3000}}, false},                   // the first move only records
        {{{100, 100}, {108, 92}}, false},           // 8 along both
        {{{100, 100}, {109, 100}, {300, 9}}, true}, // 9 along x, then more
        {{{100, 100}, {100, 91}}, true},
        {{{100, 100}, {105, 100}, {110, 100}}, true},                  // drifting adds up
        {{{-1920, -5}, {-1914, -5}, {-1926, -5}, {-1920, 3}}, false}}; // the record stays put
    for (const auto& [moves, dismissed] : cases) {
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
