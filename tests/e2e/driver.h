// Helpers of the end-to-end driver: the saver's process and windows, its options, input through
// SendInput (the path of real devices), the screen read back with GDI, and the SaverTest fixture.
// The calling thread has a COM apartment (main makes it).
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace e2e {

// Time-outs, generous for a loaded machine: a run under Wine starts in about a second. A saver that
// should keep running is watched for kSettleMs before the test believes it.
constexpr DWORD kWindowsMs = 20000, kExitMs = 10000, kSettleMs = 700;
// Where the cursor rests when a run starts: inside the first monitor, away from its edges.
constexpr POINT kRestingCursor{400, 300};
constexpr wchar_t kSaverKey[] = L"Software\\LumivaneW";

// Polls `done` until it holds or `timeoutMs` has passed; returns its last answer. The saver runs in
// another process, so every check of its state is a poll.
template <typename Predicate> bool WaitUntil(Predicate done, DWORD timeoutMs, DWORD pollMs = 5) {
    for (const ULONGLONG deadline = GetTickCount64() + timeoutMs; !done(); Sleep(pollMs))
        if (GetTickCount64() >= deadline) return done();
    return true;
}

// A file in the folder of the driver, lumivane_e2e.exe.
inline std::wstring BesideDriver(const std::wstring& name) {
    wchar_t self[MAX_PATH] = {};
    const std::wstring path(self, GetModuleFileNameW(nullptr, self, MAX_PATH));
    return path.substr(0, path.rfind(L'\\') + 1) + name;
}

// Lumivane.scr: LUMIVANE_SCR, else one folder above the driver (main sets it).
inline std::wstring saverPath = BesideDriver(L"..\\Lumivane.scr");

// A string option of the saver; the key is made when it is missing.
inline void SetOption(const wchar_t* name, const std::wstring& text) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kSaverKey, name, REG_SZ, text.c_str(),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

// An empty folder of the driver's own, %TEMP%\lumivane-e2e\<name>, cleared of an earlier run.
inline std::wstring FreshFolder(const std::filesystem::path& name) {
    const auto folder = std::filesystem::temp_directory_path() / L"lumivane-e2e" / name;
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder.wstring();
}

// ---- input; the harness's desktop starts at 0,0, with its two monitors side by side ----

// An absolute move to (x, y); true once the cursor is there. Then, with `downFlag`
// (MOUSEEVENTF_LEFTDOWN, ...), a press and release of its button there. Absolute coordinates are in
// 1/65536 of the virtual desktop, rounded up so that the system's truncating conversion back lands
// on the pixel asked for.
inline bool MoveMouseTo(int x, int y, DWORD downFlag = 0) {
    const auto scale = [](int value, int size) {
        return static_cast<DWORD>((LONGLONG{value} * 65536 + size - 1) / size);
    };
    mouse_event(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_VIRTUALDESK,
                scale(x, GetSystemMetrics(SM_CXVIRTUALSCREEN)),
                scale(y, GetSystemMetrics(SM_CYVIRTUALSCREEN)), 0, 0);
    POINT at{};
    const bool there = WaitUntil([&] { return GetCursorPos(&at) && at.x == x && at.y == y; }, 1000);
    if (downFlag) mouse_event(downFlag | downFlag << 1, 0, 0, 0, 0); // UP follows each DOWN flag
    return there;
}

// ---- the screen ----

// The largest difference of one channel between two pixels, 0x..RRGGBB.
inline int Off(uint32_t a, uint32_t b) {
    int most = 0;
    for (int shift : {0, 8, 16})
        most = std::max(most, std::abs(int(a >> shift & 0xFF) - int(b >> shift & 0xFF)));
    return most;
}

// What the desktop shows, read back with GDI, presented Direct2D output included: pixels top row
// first, 0x..RRGGBB, `width` to a row.
struct Image {
    int width = GetSystemMetrics(SM_CXVIRTUALSCREEN), height = GetSystemMetrics(SM_CYVIRTUALSCREEN);
    std::vector<uint32_t> pixels = std::vector<uint32_t>(size_t(width) * height);
    Image() {
        BITMAPINFO info{{sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB}};
        HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
        HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
        HGDIOBJ old = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY | CAPTUREBLT);
        SelectObject(memory, old);
        if (!GetDIBits(memory, bitmap, 0, height, pixels.data(), &info, DIB_RGB_COLORS))
            pixels.clear();
        DeleteObject(bitmap);
        DeleteDC(memory);
        ReleaseDC(nullptr, screen);
    }
    uint32_t At(int x, int y) const { return pixels[size_t(y) * width + x]; }
};

inline std::vector<RECT> MonitorRects() {
    std::vector<RECT> rects;
    const MONITORENUMPROC collect = [](HMONITOR, HDC, RECT* rect, LPARAM list) -> BOOL {
        reinterpret_cast<std::vector<RECT>*>(list)->push_back(*rect);
        return TRUE;
    };
    EnumDisplayMonitors(nullptr, nullptr, collect, reinterpret_cast<LPARAM>(&rects));
    return rects;
}

// ---- the saver's process and windows ----

// The exit code once the saver has ended within `timeoutMs`, nothing otherwise.
inline std::optional<DWORD> ExitCode(const PROCESS_INFORMATION& saver, DWORD timeoutMs) {
    DWORD code = 0;
    if (WaitForSingleObject(saver.hProcess, timeoutMs) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(saver.hProcess, &code))
        return std::nullopt;
    return code;
}

// The shown top-level windows of class "LumivaneSaver" of process `id`. With a `count`, waits
// until exactly so many are shown (a window is found while CreateWindowExW still runs); returns
// what was found last.
inline std::vector<HWND> SaverWindows(DWORD id, size_t count = 0) {
    std::vector<HWND> found;
    WaitUntil(
        [&] {
            found.clear();
            for (HWND hwnd = nullptr;
                 (hwnd = FindWindowExW(nullptr, hwnd, L"LumivaneSaver", nullptr));) {
                DWORD owner = 0;
                GetWindowThreadProcessId(hwnd, &owner);
                if (owner == id && IsWindowVisible(hwnd)) found.push_back(hwnd);
            }
            return found.size() == count;
        },
        count ? kWindowsMs : 0, 20);
    return found;
}

// ---- the fixture ----

// Base of every scenario: starts from the saver's default options; the one saver it starts ends
// with it, whatever the outcome.
class SaverTest : public ::testing::Test {
protected:
    void SetUp() override { RegDeleteTreeW(HKEY_CURRENT_USER, kSaverKey); }
    void TearDown() override { // ends a saver that still runs
        TerminateProcess(saver.hProcess, 0xDEAD);
        WaitForSingleObject(saver.hProcess, 5000);
        CloseHandle(saver.hProcess);
        CloseHandle(saver.hThread);
    }

    // Starts the saver (or `program`) with `arguments`; the test fails when it can't be started.
    DWORD Start(const std::wstring& arguments, const std::wstring& program = saverPath) {
        std::wstring commandLine = L"\"" + program + L"\" " + arguments;
        STARTUPINFOW startup{sizeof startup};
        EXPECT_TRUE(CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                   nullptr, &startup, &saver))
            << "can't start " << testing::PrintToString(program);
        return saver.dwProcessId;
    }

    // Starts `/s` (of `program`) with the cursor at kRestingCursor; expects one top-most window to
    // cover each of the harness's two monitors. The run's first mouse move only records the
    // position; it is made here, so that the recorded position is kRestingCursor whether or not the
    // system sent a move of its own.
    std::vector<HWND> StartFullScreen(const std::wstring& program = saverPath) {
        SetCursorPos(kRestingCursor.x, kRestingCursor.y);
        const std::vector<RECT> monitors = MonitorRects();
        EXPECT_EQ(monitors.size(), 2u) << "the harness runs two screens";
        std::vector<HWND> windows = SaverWindows(Start(L"/s", program), 2);
        for (const RECT& monitor : monitors) {
            const auto covers = [&](HWND hwnd) {
                RECT rect{};
                return GetWindowRect(hwnd, &rect) && EqualRect(&rect, &monitor) &&
                       (GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & WS_EX_TOPMOST);
            };
            EXPECT_EQ(std::count_if(windows.begin(), windows.end(), covers), 1)
                << "top-most windows on the monitor at " << monitor.left << "," << monitor.top;
        }
        // Sent, not posted: it returns once the window procedure has run, so no later input can
        // overtake it. The saver reads GetCursorPos, not lParam.
        DWORD_PTR result = 0;
        if (!windows.empty())
            SendMessageTimeoutW(windows.front(), WM_MOUSEMOVE, 0, 0, SMTO_NORMAL, 5000, &result);
        return windows;
    }

    // Expects the run to end with exit code 0 within kExitMs.
    void ExpectExitZero() {
        EXPECT_EQ(ExitCode(saver, kExitMs), std::optional<DWORD>(0)) << "the saver must end with 0";
    }

    PROCESS_INFORMATION saver{};
};

} // namespace e2e
