#include "e2e/saver_windows.h"

#include <cwchar>

#include "e2e/wait.h"

namespace e2e {

namespace {

constexpr wchar_t kSaverClass[] = L"LumivaneSaver";

bool IsSaverClass(HWND hwnd) {
    wchar_t name[64] = {};
    GetClassNameW(hwnd, name, 64);
    return wcscmp(name, kSaverClass) == 0;
}

struct TopLevelSearch {
    DWORD processId;
    std::vector<HWND> found;
};

BOOL CALLBACK CollectTopLevel(HWND hwnd, LPARAM context) {
    auto& search = *reinterpret_cast<TopLevelSearch*>(context);
    DWORD owner = 0;
    GetWindowThreadProcessId(hwnd, &owner);
    if (owner == search.processId && IsSaverClass(hwnd)) search.found.push_back(hwnd);
    return TRUE;
}

struct ChildSearch {
    HWND parent;
    std::vector<HWND> found;
};

BOOL CALLBACK CollectChild(HWND hwnd, LPARAM context) {
    auto& search = *reinterpret_cast<ChildSearch*>(context);
    if (GetParent(hwnd) == search.parent && IsSaverClass(hwnd)) search.found.push_back(hwnd);
    return TRUE;
}

BOOL CALLBACK CollectMonitor(HMONITOR, HDC, LPRECT rect, LPARAM context) {
    reinterpret_cast<std::vector<RECT>*>(context)->push_back(*rect);
    return TRUE;
}

} // namespace

WindowInfo Inspect(HWND hwnd) {
    WindowInfo info;
    info.hwnd = hwnd;
    GetWindowRect(hwnd, &info.rect);
    info.style = static_cast<DWORD>(GetWindowLongPtrW(hwnd, GWL_STYLE));
    info.exStyle = static_cast<DWORD>(GetWindowLongPtrW(hwnd, GWL_EXSTYLE));
    info.visible = IsWindowVisible(hwnd) != FALSE;
    wchar_t title[256] = {};
    GetWindowTextW(hwnd, title, 256);
    info.title = title;
    return info;
}

std::vector<HWND> TopLevelSaverWindows(DWORD processId) {
    TopLevelSearch search{processId, {}};
    EnumWindows(CollectTopLevel, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

std::vector<HWND> ChildSaverWindows(HWND parent) {
    ChildSearch search{parent, {}};
    EnumChildWindows(parent, CollectChild, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

namespace {

// A window is found by enumeration while CreateWindowExW is still running, before WS_VISIBLE
// has taken effect and before its final place; it counts once it is shown.
bool AllVisible(const std::vector<HWND>& windows) {
    for (HWND hwnd : windows)
        if (!IsWindowVisible(hwnd)) return false;
    return true;
}

} // namespace

std::vector<HWND> WaitForTopLevelSaverWindows(DWORD processId, size_t count, DWORD timeoutMs) {
    std::vector<HWND> found;
    WaitUntil(
        [&] {
            found = TopLevelSaverWindows(processId);
            return found.size() == count && AllVisible(found);
        },
        timeoutMs, 20);
    return found;
}

std::vector<HWND> WaitForChildSaverWindows(HWND parent, size_t count, DWORD timeoutMs) {
    std::vector<HWND> found;
    WaitUntil(
        [&] {
            found = ChildSaverWindows(parent);
            return found.size() == count && AllVisible(found);
        },
        timeoutMs, 20);
    return found;
}

std::vector<RECT> MonitorRects() {
    std::vector<RECT> rects;
    EnumDisplayMonitors(nullptr, nullptr, CollectMonitor, reinterpret_cast<LPARAM>(&rects));
    return rects;
}

bool WaitUntilHidden(const std::vector<HWND>& windows, DWORD timeoutMs, bool* sawHiddenAlive) {
    std::vector<bool> seen(windows.size(), false);
    const bool hidden = WaitUntil(
        [&] {
            bool all = true;
            for (size_t i = 0; i < windows.size(); ++i) {
                const bool alive = IsWindow(windows[i]) != FALSE;
                const bool visible = alive && IsWindowVisible(windows[i]);
                if (alive && !visible) seen[i] = true;
                all = all && !visible;
            }
            return all;
        },
        timeoutMs, 1);
    if (sawHiddenAlive) {
        *sawHiddenAlive = true;
        for (bool each : seen) *sawHiddenAlive = *sawHiddenAlive && each;
    }
    return hidden;
}

bool SameRect(const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

std::string Describe(const RECT& rect) {
    return "(" + std::to_string(rect.left) + "," + std::to_string(rect.top) + ")-(" +
           std::to_string(rect.right) + "," + std::to_string(rect.bottom) + ")";
}

} // namespace e2e
