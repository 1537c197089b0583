#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace e2e {

// Input goes through SendInput, the path of real devices: keys reach the foreground window,
// the mouse the window under the cursor.

void PressKey(WORD virtualKey);
// Moves the cursor to (x, y), then presses and releases the button of `downFlag`
// (MOUSEEVENTF_LEFTDOWN, _RIGHTDOWN or _MIDDLEDOWN).
void Click(DWORD downFlag, int x, int y);
// An absolute move to (x, y); true when the cursor really is there afterwards.
bool MoveMouseTo(int x, int y);

// The virtual desktop: every monitor.
RECT DesktopRect();

// Screen pixels, top row first, 0x00RRGGBB.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;

    uint32_t At(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
};

// What the screen shows in `rect`, read back with GDI; presented Direct2D output included.
Image CaptureScreen(const RECT& rect);
bool SavePng(const Image& image, const std::wstring& path);
// Captures the whole desktop and keeps it as captures\<name>.png beside the driver, to look at.
Image CaptureDesktopAs(const std::wstring& name);

} // namespace e2e
