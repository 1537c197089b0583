// A full-screen run: one top-most window per monitor, ended by the first real input.
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <vector>

#include "e2e/saver_test.h"
#include "e2e/screen.h"

namespace e2e {
namespace {

TEST_F(SaverTest, FullScreenCoversEveryMonitorWithATopMostWindow) {
    const std::vector<RECT> monitors = MonitorRects();
    ASSERT_EQ(monitors.size(), 2u) << "the harness runs two screens";
    const std::vector<HWND> windows = StartFullScreen();
    for (HWND hwnd : windows) {
        EXPECT_EQ(GetWindowLongPtrW(hwnd, GWL_STYLE) & (WS_POPUP | WS_VISIBLE | WS_CHILD | WS_CAPTION),
                  WS_POPUP | WS_VISIBLE);
        EXPECT_EQ(GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & (WS_EX_TOPMOST | WS_EX_TOOLWINDOW),
                  WS_EX_TOPMOST | WS_EX_TOOLWINDOW);
    }
    for (const RECT& monitor : monitors) {
        const auto covers = [&](HWND hwnd) {
            RECT rect{};
            return GetWindowRect(hwnd, &rect) && EqualRect(&rect, &monitor);
        };
        EXPECT_EQ(std::count_if(windows.begin(), windows.end(), covers), 1)
            << "windows on the monitor at " << monitor.left << "," << monitor.top;
    }
}

// Input in the order of the fields: a key, a click, and one run of moves that stays and one that
// dismisses (the mouse rule's table is a host test).
struct Input {
    const char* name;
    WORD key;                 // pressed when not 0
    DWORD buttonDown;         // clicked mid last monitor when not 0
    std::vector<POINT> moves; // visited in order, relative to kRestingCursor
    bool dismisses;
};

const Input kInputs[] = {
    {"SpaceKey", VK_SPACE, 0, {}, true},
    {"AltKeyAlone", VK_MENU, 0, {}, true},
    {"MiddleClickOnLastMonitor", 0, MOUSEEVENTF_MIDDLEDOWN, {}, true},
    {"MovesOfEight", 0, 0, {{8, 0}, {8, 8}, {0, -8}, {-8, 8}}, false},
    {"NineAcrossAfterEights", 0, 0, {{8, 0}, {8, 8}, {9, 0}}, true},
};

void PrintTo(const Input& input, std::ostream* out) { *out << input.name; }

class InputTest : public SaverTest, public ::testing::WithParamInterface<Input> {};

TEST_P(InputTest, OnlyRealInputHidesEveryWindowAtOnceAndEndsWithZero) {
    const std::vector<HWND> windows = StartFullScreen();
    ASSERT_FALSE(windows.empty());
    const Input& input = GetParam();
    if (input.key) PressKey(input.key);
    const RECT last = MonitorRects().back();
    if (input.buttonDown)
        Click(input.buttonDown, (last.left + last.right) / 2, (last.top + last.bottom) / 2);
    for (const POINT& offset : input.moves) {
        ASSERT_TRUE(MoveMouseTo(kRestingCursor.x + offset.x, kRestingCursor.y + offset.y));
        WaitUntil([&] { return !Saver().Running(); }, 150); // let the saver take each move
    }
    if (!input.dismisses) {
        EXPECT_FALSE(Saver().WaitForExit(kSettleMs)) << "ended by a small move";
        for (HWND hwnd : windows) EXPECT_TRUE(IsWindowVisible(hwnd));
        return;
    }
    EXPECT_TRUE(WaitUntilHidden(windows, kHideMs)) << "windows still shown after the input";
    ExpectExitZero();
}

INSTANTIATE_TEST_SUITE_P(Input, InputTest, ::testing::ValuesIn(kInputs),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace e2e
