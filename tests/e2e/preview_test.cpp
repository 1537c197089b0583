// A preview run inside a host window of the driver, as the system's settings page shows it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "e2e/driver_window.h"
#include "e2e/saver_test.h"
#include "e2e/screen.h"

namespace e2e {
namespace {

TEST_F(SaverTest, PreviewFillsItsHostIgnoresInputAndEndsWithTheHost) {
    DriverWindow host(PreviewHostOptions(320, 200));
    Start(L"/p " + std::to_wstring(reinterpret_cast<UINT_PTR>(host.Hwnd())));
    const std::vector<HWND> children = WaitForSaverWindows(0, host.Hwnd(), 1);
    ASSERT_EQ(children.size(), 1u) << "one child window in the host";
    HWND child = children.front();
    RECT area{}, client{};
    GetWindowRect(child, &area);
    GetClientRect(child, &client);
    POINT origin{0, 0};
    ClientToScreen(host.Hwnd(), &origin);
    EXPECT_EQ(area.left, origin.x);
    EXPECT_EQ(area.top, origin.y);
    EXPECT_EQ(client.right, 320);
    EXPECT_EQ(client.bottom, 200);
    EXPECT_EQ(GetWindowLongPtrW(child, GWL_STYLE) & (WS_CHILD | WS_VISIBLE | WS_POPUP),
              WS_CHILD | WS_VISIBLE);
    EXPECT_TRUE(SaverWindows(Saver().Id()).empty()) << "no full-screen window";

    // Input sent to the child itself, then input as a user would give it.
    for (UINT message : {WM_KEYDOWN, WM_SYSKEYDOWN, WM_LBUTTONDOWN, WM_RBUTTONDOWN})
        PostMessageW(child, message, 0, MAKELPARAM(10, 10));
    MoveMouseTo(area.left + 20, area.top + 20);
    MoveMouseTo(area.left + 120, area.top + 90);
    Click(MOUSEEVENTF_LEFTDOWN, area.left + 100, area.top + 100);
    PressKey(VK_SPACE);
    EXPECT_FALSE(Saver().WaitForExit(kSettleMs)) << "input ended the preview";
    EXPECT_TRUE(IsWindowVisible(child));

    host.Destroy();
    ExpectExitZero();
}

} // namespace
} // namespace e2e
