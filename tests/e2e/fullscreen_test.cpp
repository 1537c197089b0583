// A full-screen run: one top-most window per monitor, ended by the first real input.
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "e2e/input.h"
#include "e2e/saver_test.h"
#include "e2e/saver_windows.h"
#include "e2e/wait.h"

namespace e2e {
namespace {

using FullScreenTest = SaverTest;

TEST_F(FullScreenTest, CoversEveryMonitorWithATopMostWindow) {
    const std::vector<RECT> monitors = MonitorRects();
    ASSERT_EQ(monitors.size(), 2u) << "the harness runs two screens";
    const std::vector<HWND> windows = StartFullScreen();
    ASSERT_EQ(windows.size(), monitors.size());
    std::vector<RECT> unmatched = monitors;
    for (HWND hwnd : windows) {
        const WindowInfo info = Inspect(hwnd);
        EXPECT_EQ(info.title, L"Lumivane");
        EXPECT_TRUE(info.visible);
        EXPECT_EQ(info.style & (WS_POPUP | WS_VISIBLE | WS_CHILD | WS_CAPTION),
                  static_cast<DWORD>(WS_POPUP | WS_VISIBLE));
        EXPECT_EQ(info.exStyle & (WS_EX_TOPMOST | WS_EX_TOOLWINDOW),
                  static_cast<DWORD>(WS_EX_TOPMOST | WS_EX_TOOLWINDOW));
        auto same = std::find_if(unmatched.begin(), unmatched.end(),
                                 [&](const RECT& monitor) { return SameRect(monitor, info.rect); });
        if (same == unmatched.end())
            ADD_FAILURE() << "window at " << Describe(info.rect) << " covers no monitor";
        else
            unmatched.erase(same);
    }
    Saver().Terminate();
}

// Input that must end the run: the windows leave the screen at once, the process ends with 0.
struct Dismissal {
    const char* name;
    void (*act)(const std::vector<RECT>& monitors);
};

void PrintTo(const Dismissal& dismissal, std::ostream* out) { *out << dismissal.name; }

class DismissalTest : public SaverTest, public ::testing::WithParamInterface<Dismissal> {};

TEST_P(DismissalTest, HidesEveryWindowAndEndsWithZero) {
    const std::vector<HWND> windows = StartFullScreen();
    ASSERT_FALSE(windows.empty());
    GetParam().act(MonitorRects());
    EXPECT_TRUE(WaitUntilHidden(windows, kHideMs)) << "windows still shown after the input";
    ExpectExitZero();
}

INSTANTIATE_TEST_SUITE_P(
    Input, DismissalTest,
    ::testing::Values(
        Dismissal{"SpaceKey", [](const std::vector<RECT>&) { PressKey(VK_SPACE); }},
        Dismissal{"AltKeyAlone", [](const std::vector<RECT>&) { PressKey(VK_MENU); }},
        Dismissal{"LeftClick",
                  [](const std::vector<RECT>&) {
                      Click(MouseButton::Left, kRestingCursor.x, kRestingCursor.y);
                  }},
        Dismissal{"RightClick",
                  [](const std::vector<RECT>&) {
                      Click(MouseButton::Right, kRestingCursor.x, kRestingCursor.y);
                  }},
        Dismissal{"MiddleClickOnLastMonitor",
                  [](const std::vector<RECT>& monitors) {
                      const RECT& last = monitors.back();
                      Click(MouseButton::Middle, (last.left + last.right) / 2,
                            (last.top + last.bottom) / 2);
                  }}),
    [](const ::testing::TestParamInfo<Dismissal>& info) { return std::string(info.param.name); });

// Mouse moves measured from the position recorded at the run's first move, which doesn't
// follow the cursor: more than 8 pixels along either axis dismisses.
struct MouseWalk {
    const char* name;
    std::vector<POINT> offsets; // visited in order, relative to the recorded position
    bool dismisses;
};

void PrintTo(const MouseWalk& walk, std::ostream* out) { *out << walk.name; }

class MouseWalkTest : public SaverTest, public ::testing::WithParamInterface<MouseWalk> {};

TEST_P(MouseWalkTest, DismissesOnlyBeyondEightPixels) {
    const std::vector<HWND> windows = StartFullScreen();
    ASSERT_FALSE(windows.empty());
    for (const POINT& offset : GetParam().offsets) {
        const int x = kRestingCursor.x + offset.x, y = kRestingCursor.y + offset.y;
        ASSERT_TRUE(MoveMouseTo(x, y)) << "cursor didn't reach " << x << "," << y;
        // Let the saver handle each move before the next one.
        WaitUntil([&] { return !Saver().Running(); }, 150);
    }
    if (GetParam().dismisses) {
        EXPECT_TRUE(WaitUntilHidden(windows, kHideMs));
        ExpectExitZero();
    } else {
        EXPECT_FALSE(Saver().WaitForExit(kSettleMs).has_value()) << "ended by a small move";
        for (HWND hwnd : windows) EXPECT_TRUE(IsWindowVisible(hwnd));
        Saver().Terminate();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Moves, MouseWalkTest,
    ::testing::Values(MouseWalk{"EightAcrossAndDown", {{8, 0}, {8, 8}, {0, -8}, {-8, 8}}, false},
                      MouseWalk{"NineAcross", {{8, 0}, {8, 8}, {9, 0}}, true},
                      MouseWalk{"NineUp", {{0, -9}}, true},
                      MouseWalk{"NineLeft", {{-9, 0}}, true},
                      MouseWalk{"DriftAddsUp", {{5, 0}, {10, 0}}, true}),
    [](const ::testing::TestParamInfo<MouseWalk>& info) { return std::string(info.param.name); });

} // namespace
} // namespace e2e
