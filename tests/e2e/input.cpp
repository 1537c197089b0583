#include "e2e/input.h"

#include "e2e/wait.h"

namespace e2e {

namespace {

// Absolute coordinates are in 1/65536 of the virtual desktop; round up so that the system's
// truncating conversion back to pixels lands on the pixel asked for.
LONG Normalise(int value, int origin, int extent) {
    return static_cast<LONG>(((static_cast<LONGLONG>(value - origin) << 16) + extent - 1) / extent);
}

INPUT MouseInput(DWORD flags, LONG dx = 0, LONG dy = 0) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = dx;
    input.mi.dy = dy;
    input.mi.dwFlags = flags;
    return input;
}

INPUT KeyInput(WORD virtualKey, DWORD flags) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtualKey;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = flags;
    return input;
}

} // namespace

void PressKey(WORD virtualKey) {
    INPUT keys[] = {KeyInput(virtualKey, 0), KeyInput(virtualKey, KEYEVENTF_KEYUP)};
    SendInput(2, keys, sizeof(INPUT));
}

void Click(MouseButton button, int x, int y) {
    MoveMouseTo(x, y);
    DWORD down = MOUSEEVENTF_LEFTDOWN, up = MOUSEEVENTF_LEFTUP;
    if (button == MouseButton::Right) down = MOUSEEVENTF_RIGHTDOWN, up = MOUSEEVENTF_RIGHTUP;
    if (button == MouseButton::Middle) down = MOUSEEVENTF_MIDDLEDOWN, up = MOUSEEVENTF_MIDDLEUP;
    INPUT clicks[] = {MouseInput(down), MouseInput(up)};
    SendInput(2, clicks, sizeof(INPUT));
}

bool MoveMouseTo(int x, int y) {
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    const int width = GetSystemMetrics(SM_CXVIRTUALSCREEN);
    const int height = GetSystemMetrics(SM_CYVIRTUALSCREEN);
    INPUT move = MouseInput(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_VIRTUALDESK,
                            Normalise(x, left, width), Normalise(y, top, height));
    SendInput(1, &move, sizeof(INPUT));
    return WaitUntil(
        [&] {
            const POINT at = CursorPos();
            return at.x == x && at.y == y;
        },
        1000);
}

POINT CursorPos() {
    POINT at{};
    GetCursorPos(&at);
    return at;
}

} // namespace e2e
