// The window procedure's decisions by mode, the mouse rule and Dismiss.
#include <gtest/gtest.h>

#include "session/saver_session.h"
#include "session/window_messages.h"
#include "support/fake_window_thread.h"

namespace {

using A = MessageAction;
namespace M = WindowMessage;

struct MessageCase {
    uint32_t message;
    uint64_t wParam;
    MessageAction fullscreen;
    MessageAction preview;
};

TEST(WindowMessages, ActByModeAsTheTableSays) {
    const MessageCase cases[] = {
        {M::MouseMove, 0, A::MouseRule, A::Swallow}, {M::LeftButtonDown, 0, A::Dismiss, A::Swallow},
        {M::RightButtonDown, 0, A::Dismiss, A::Swallow},
        {M::MiddleButtonDown, 0, A::Dismiss, A::Swallow},
        {M::KeyDown, 0x41, A::Dismiss, A::Swallow}, {M::SysKeyDown, 0x12, A::Dismiss, A::Swallow},
        {M::ActivateApp, 0, A::DismissThenDefault, A::Default},
        {M::ActivateApp, 1, A::Default, A::Default}, {M::SetCursor, 0, A::HideCursor, A::Default},
        // The low four bits of a system command don't matter; SC_CLOSE is no screen saver.
        {M::SysCommand, 0xF14F, A::Swallow, A::Default},
        {M::SysCommand, 0xF060, A::Default, A::Default},
        {M::Destroy, 0, A::Swallow, A::PostQuit}, {M::Paint, 0, A::Paint, A::Paint},
        {M::EraseBackground, 0, A::SkipErase, A::SkipErase},
        {M::Timer, 2, A::FadeStep, A::FadeStep},
        {M::Timer, 1, A::Swallow, A::Swallow}, {M::WorkDone, 0, A::DrainQueue, A::DrainQueue},
        // Wheel, releases and the extended buttons are no input that ends a run.
        {0x020A, 0, A::Default, A::Default}, {0x0202, 0, A::Default, A::Default},
        {0x0101, 0, A::Default, A::Default}, {0x020B, 0, A::Default, A::Default},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.message << " " << c.wParam);
        EXPECT_EQ(DecideMessage(SaverMode::Fullscreen, c.message, c.wParam), c.fullscreen);
        EXPECT_EQ(DecideMessage(SaverMode::Preview, c.message, c.wParam), c.preview);
    }
}

// A session of three windows whose handles are 1, 2 and 3.
struct Session {
    FakeWindowThread thread;
    SaverSession session{SaverMode::Fullscreen, &thread};
    Session() {
        for (uintptr_t i = 1; i <= 3; ++i) {
            session.windows.push_back(std::make_unique<ScreenWindow>(&session, 0, 100, 100));
            session.windows.back()->hwnd = reinterpret_cast<WindowHandle>(i);
        }
    }
};

TEST(Dismiss, HidesEveryWindowInOrderThenPostsOneQuit) {
    Session s;
    s.session.Dismiss();
    s.session.Dismiss();
    std::vector<WindowHandle> expected;
    for (const auto& window : s.session.windows) expected.push_back(window->hwnd);
    EXPECT_EQ(s.thread.hidden, expected);
    EXPECT_EQ(s.thread.quitsPosted, 1);
}

struct MouseCase {
    const char* name;
    std::vector<std::pair<int32_t, int32_t>> moves;
    bool dismissed;
};

TEST(MouseRule, FirstMoveRecordsAndNineFromThereDismisses) {
    const MouseCase cases[] = {
        {"first move only records, however far", {{5000, -3000}}, false},
        {"8 along x and 8 along y", {{100, 100}, {108, 108}}, false},
        {"8 back along both", {{100, 100}, {92, 92}}, false},
        {"9 along x", {{100, 100}, {109, 100}}, true},
        {"9 back along y", {{100, 100}, {100, 91}}, true},
        {"drifting adds up", {{100, 100}, {105, 100}, {110, 100}}, true},
        {"back and forth stays", {{100, 100}, {106, 100}, {94, 100}, {100, 107}}, false},
        {"far from a negative origin", {{-1920, -5}, {-1911, -5}}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Session s;
        for (const auto& [x, y] : c.moves) s.session.MouseMoved(x, y);
        EXPECT_EQ(s.session.dismissed, c.dismissed);
        EXPECT_EQ(s.thread.quitsPosted, c.dismissed ? 1 : 0);
        EXPECT_EQ(s.session.mouseX, c.moves.front().first); // the record never follows
    }
}

} // namespace
