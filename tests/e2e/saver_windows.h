#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace e2e {

// What the tests look at of one window, read at one moment.
struct WindowInfo {
    HWND hwnd = nullptr;
    RECT rect{};  // GetWindowRect: screen coordinates
    DWORD style = 0;
    DWORD exStyle = 0;
    bool visible = false;
    std::wstring title;
};

WindowInfo Inspect(HWND hwnd);

// The top-level windows of class "LumivaneSaver" that belong to process `processId`.
std::vector<HWND> TopLevelSaverWindows(DWORD processId);
// The direct children of class "LumivaneSaver" of `parent`, whatever process made them.
std::vector<HWND> ChildSaverWindows(HWND parent);

// Waits until exactly `count` top-level saver windows of the process exist and are shown;
// returns them (possibly fewer, more or hidden ones when the time ran out).
std::vector<HWND> WaitForTopLevelSaverWindows(DWORD processId, size_t count, DWORD timeoutMs);
std::vector<HWND> WaitForChildSaverWindows(HWND parent, size_t count, DWORD timeoutMs);

// Monitor rectangles in the order EnumDisplayMonitors gives them.
std::vector<RECT> MonitorRects();

// True once every window is hidden or gone; `sawHiddenAlive` tells whether each one was seen
// hidden while it still existed (and not only destroyed with its process).
bool WaitUntilHidden(const std::vector<HWND>& windows, DWORD timeoutMs,
                     bool* sawHiddenAlive = nullptr);

bool SameRect(const RECT& a, const RECT& b);
std::string Describe(const RECT& rect);

} // namespace e2e
