#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace e2e {

// A copy of screen pixels, top row first, 0x00RRGGBB per pixel.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;

    uint32_t At(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
};

// What the screen shows in `rect` (screen coordinates), read back with GDI; Direct2D output
// presented to a window is part of it.
Image CaptureScreen(const RECT& rect);
// The whole virtual desktop, every monitor.
Image CaptureDesktop();
RECT DesktopRect();

// Writes `image` as a PNG file through WIC; false on any failure.
bool SavePng(const Image& image, const std::wstring& path);

uint8_t Red(uint32_t pixel);
uint8_t Green(uint32_t pixel);
uint8_t Blue(uint32_t pixel);

} // namespace e2e
