#include "e2e/screen.h"

#include <wincodec.h>

#include "e2e/files.h"
#include "e2e/saver_test.h"

namespace e2e {

namespace {

// Absolute coordinates are in 1/65536 of the virtual desktop; rounded up so that the system's
// truncating conversion back lands on the pixel asked for.
LONG Normalise(int value, LONG origin, LONG end) {
    return static_cast<LONG>((static_cast<LONGLONG>(value - origin) * 65536 + end - origin - 1) /
                             (end - origin));
}

} // namespace

void PressKey(WORD virtualKey) {
    INPUT keys[2] = {{INPUT_KEYBOARD}, {INPUT_KEYBOARD}};
    for (INPUT& key : keys) {
        key.ki.wVk = virtualKey;
        key.ki.wScan = static_cast<WORD>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
    }
    keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
    SendInput(2, keys, sizeof(INPUT));
}

void Click(DWORD downFlag, int x, int y) {
    MoveMouseTo(x, y);
    INPUT clicks[2] = {{INPUT_MOUSE}, {INPUT_MOUSE}};
    clicks[0].mi.dwFlags = downFlag;
    clicks[1].mi.dwFlags = downFlag << 1; // each button's UP flag follows its DOWN flag
    SendInput(2, clicks, sizeof(INPUT));
}

bool MoveMouseTo(int x, int y) {
    const RECT desktop = DesktopRect();
    INPUT move{INPUT_MOUSE};
    move.mi.dx = Normalise(x, desktop.left, desktop.right);
    move.mi.dy = Normalise(y, desktop.top, desktop.bottom);
    move.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_VIRTUALDESK;
    SendInput(1, &move, sizeof(INPUT));
    return WaitUntil(
        [&] {
            POINT at{};
            return GetCursorPos(&at) && at.x == x && at.y == y;
        },
        1000);
}

RECT DesktopRect() {
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN), top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    return {left, top, left + GetSystemMetrics(SM_CXVIRTUALSCREEN),
            top + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
}

Image CaptureScreen(const RECT& rect) {
    Image image{rect.right - rect.left, rect.bottom - rect.top, {}};
    BITMAPINFO info{{sizeof info.bmiHeader, image.width, -image.height, 1, 32, BI_RGB}};
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, image.width, image.height);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, image.width, image.height, screen, rect.left, rect.top, SRCCOPY | CAPTUREBLT);
    SelectObject(memory, old);
    image.pixels.resize(static_cast<size_t>(image.width) * image.height);
    if (!GetDIBits(memory, bitmap, 0, image.height, image.pixels.data(), &info, DIB_RGB_COLORS))
        image.pixels.clear();
    for (uint32_t& pixel : image.pixels) pixel &= 0x00FFFFFF;
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return image;
}

bool SavePng(const Image& image, const std::wstring& path) {
    return !image.pixels.empty() &&
           WriteImage(path, GUID_ContainerFormatPng, GUID_WICPixelFormat32bppBGR, image.width,
                      image.height, static_cast<UINT>(image.width) * 4, image.pixels.data());
}

Image CaptureDesktopAs(const std::wstring& name) {
    Image shot = CaptureScreen(DesktopRect());
    const std::wstring driver = DriverPath();
    const std::wstring folder = driver.substr(0, driver.rfind(L'\\') + 1) + L"captures\\";
    MakeFolders(folder);
    SavePng(shot, folder + name + L".png");
    return shot;
}

} // namespace e2e
