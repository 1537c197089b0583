// A preview run inside a host window of the driver, as the system's settings page shows it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "e2e/driver_window.h"
#include "e2e/input.h"
#include "e2e/saver_test.h"
#include "e2e/saver_windows.h"

namespace e2e {
namespace {

constexpr int kHostWidth = 320;
constexpr int kHostHeight = 200;

class PreviewTest : public SaverTest {
protected:
    // Starts the preview in `host` and returns its one child window.
    HWND StartPreview(DriverWindow& host) {
        const auto handle = reinterpret_cast<UINT_PTR>(host.Hwnd());
        Start(L"/p " + std::to_wstring(handle));
        const std::vector<HWND> children = WaitForChildSaverWindows(host.Hwnd(), 1, kWindowsMs);
        EXPECT_EQ(children.size(), 1u) << "one child window in the host";
        return children.empty() ? nullptr : children.front();
    }
};

TEST_F(PreviewTest, FillsTheHostWithOneChildWindow) {
    DriverWindow host(PreviewHostOptions(kHostWidth, kHostHeight));
    HWND child = StartPreview(host);
    ASSERT_NE(child, nullptr);
    const WindowInfo info = Inspect(child);
    RECT client{};
    GetClientRect(child, &client);
    EXPECT_EQ(client.right, kHostWidth);
    EXPECT_EQ(client.bottom, kHostHeight);
    POINT origin{0, 0};
    ClientToScreen(host.Hwnd(), &origin);
    EXPECT_EQ(info.rect.left, origin.x);
    EXPECT_EQ(info.rect.top, origin.y);
    EXPECT_EQ(info.style & (WS_CHILD | WS_VISIBLE | WS_POPUP),
              static_cast<DWORD>(WS_CHILD | WS_VISIBLE));
    EXPECT_EQ(info.exStyle & WS_EX_TOPMOST, 0u);
    EXPECT_TRUE(TopLevelSaverWindows(Saver().Id()).empty()) << "no full-screen window";
    Saver().Terminate();
}

TEST_F(PreviewTest, IgnoresKeysClicksAndMovesThenEndsWithItsHost) {
    DriverWindow host(PreviewHostOptions(kHostWidth, kHostHeight));
    HWND child = StartPreview(host);
    ASSERT_NE(child, nullptr);
    const UINT posted[][3] = {
        {WM_MOUSEMOVE, 0, MAKELPARAM(5, 5)},     {WM_MOUSEMOVE, 0, MAKELPARAM(200, 150)},
        {WM_KEYDOWN, VK_SPACE, 0},               {WM_SYSKEYDOWN, VK_MENU, 0},
        {WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 10)},
        {WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(10, 10)},
    };
    for (const auto& message : posted) PostMessageW(child, message[0], message[1], message[2]);
    RECT area{};
    GetWindowRect(child, &area);
    MoveMouseTo(area.left + 20, area.top + 20);
    MoveMouseTo(area.left + 120, area.top + 90);
    Click(MouseButton::Left, area.left + 100, area.top + 100);
    PressKey(VK_SPACE);

    EXPECT_FALSE(Saver().WaitForExit(kSettleMs).has_value()) << "input ended the preview";
    EXPECT_TRUE(IsWindowVisible(child));

    host.Destroy();
    ExpectExitZero();
}

} // namespace
} // namespace e2e
