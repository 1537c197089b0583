// Helpers of the end-to-end driver: the saver's process and windows, its options, photo files,
// input through SendInput (the path of real devices), the screen read back with GDI, windows of
// the driver, and the SaverTest fixture. The calling thread has a COM apartment (main makes it).
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <future>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "support/wic_image_writer.h"

namespace e2e {

// Time-outs, generous for a loaded machine: a run under Wine starts in about a second.
constexpr DWORD kWindowsMs = 20000, kExitMs = 10000;
// How long a saver that should keep running is watched before the test believes it.
constexpr DWORD kSettleMs = 700;
// Where the cursor rests when a run starts: inside the first monitor, away from its edges.
constexpr POINT kRestingCursor{400, 300};
constexpr wchar_t kSaverKey[] = L"Software\\LumivaneW";

// Polls `done` until it holds or `timeoutMs` has passed; returns its last answer. The saver
// runs in another process, so every check of its state is a poll.
template <typename Predicate>
bool WaitUntil(Predicate done, DWORD timeoutMs, DWORD pollMs = 5) {
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

// Lumivane.scr: `--scr <path>` of the driver, else LUMIVANE_SCR, else one folder above the driver.
inline std::wstring scrOption;
inline std::wstring SaverPath() {
    const wchar_t* variable = _wgetenv(L"LUMIVANE_SCR");
    if (!scrOption.empty()) return scrOption;
    return variable && *variable ? variable : BesideDriver(L"..\\Lumivane.scr");
}

// An option of the saver, a string or a dword; the key is made when it is missing.
inline void SetOption(const wchar_t* name, const std::wstring& text) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kSaverKey, name, REG_SZ, text.c_str(),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}
inline void SetOption(const wchar_t* name, DWORD value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kSaverKey, name, REG_DWORD, &value, sizeof value);
}

// An empty folder of the driver's own, %TEMP%\lumivane-e2e\<name>, cleared of an earlier run.
inline std::wstring FreshFolder(const std::filesystem::path& name) {
    const auto folder = std::filesystem::temp_directory_path() / L"lumivane-e2e" / name;
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    std::filesystem::create_directories(folder, ignored);
    return folder.wstring();
}

// A 600 x 600 JPEG of one colour (0xRRGGBB).
inline bool WriteJpeg(const std::wstring& path, uint32_t colour) {
    std::vector<BYTE> pixels(600 * 600 * 3);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<BYTE>(colour >> i % 3 * 8);
    return WriteWicImage(path, GUID_ContainerFormatJpeg, GUID_WICPixelFormat24bppBGR, 600, 600,
                         600 * 3, pixels.data());
}

// ---- input; the harness's desktop starts at 0,0, with its two monitors side by side ----

inline void PressKey(WORD virtualKey) {
    INPUT keys[2] = {{INPUT_KEYBOARD}, {INPUT_KEYBOARD}};
    for (INPUT& key : keys) {
        key.ki.wVk = virtualKey;
        key.ki.wScan = static_cast<WORD>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
    }
    keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
    SendInput(2, keys, sizeof(INPUT));
}

// An absolute move to (x, y); true once the cursor is there. Absolute coordinates are in 1/65536
// of the virtual desktop, rounded up so that the system's truncating conversion back lands on
// the pixel asked for.
inline bool MoveMouseTo(int x, int y) {
    const auto scale = [](int value, int size) {
        return static_cast<LONG>((LONGLONG{value} * 65536 + size - 1) / size);
    };
    INPUT move{INPUT_MOUSE};
    move.mi.dx = scale(x, GetSystemMetrics(SM_CXVIRTUALSCREEN));
    move.mi.dy = scale(y, GetSystemMetrics(SM_CYVIRTUALSCREEN));
    move.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_VIRTUALDESK;
    SendInput(1, &move, sizeof(INPUT));
    POINT at{};
    return WaitUntil([&] { return GetCursorPos(&at) && at.x == x && at.y == y; }, 1000);
}

// Moves to (x, y), then presses and releases the button of `downFlag` (MOUSEEVENTF_LEFTDOWN, ...).
inline void Click(DWORD downFlag, int x, int y) {
    MoveMouseTo(x, y);
    INPUT clicks[2] = {{INPUT_MOUSE}, {INPUT_MOUSE}};
    clicks[0].mi.dwFlags = downFlag;
    clicks[1].mi.dwFlags = downFlag << 1; // each button's UP flag follows its DOWN flag
    SendInput(2, clicks, sizeof(INPUT));
}

// ---- the screen ----

// Screen pixels, top row first, 0x00RRGGBB.
struct Image {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
    uint32_t At(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
};

// The largest difference of one channel between two pixels.
inline int Off(uint32_t a, uint32_t b) {
    int most = 0;
    for (int shift : {0, 8, 16})
        most = std::max(most, std::abs(int(a >> shift & 0xFF) - int(b >> shift & 0xFF)));
    return most;
}

// What the desktop shows, read back with GDI; presented Direct2D output included.
inline Image CaptureScreen() {
    Image image{GetSystemMetrics(SM_CXVIRTUALSCREEN), GetSystemMetrics(SM_CYVIRTUALSCREEN), {}};
    image.pixels.resize(static_cast<size_t>(image.width) * image.height);
    BITMAPINFO info{{sizeof info.bmiHeader, image.width, -image.height, 1, 32, BI_RGB}};
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, image.width, image.height);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, image.width, image.height, screen, 0, 0, SRCCOPY | CAPTUREBLT);
    SelectObject(memory, old);
    if (!GetDIBits(memory, bitmap, 0, image.height, image.pixels.data(), &info, DIB_RGB_COLORS))
        image.pixels.clear();
    for (uint32_t& pixel : image.pixels) pixel &= 0xFFFFFF;
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return image;
}

inline bool SavePng(const Image& image, const std::wstring& path) {
    return !image.pixels.empty() &&
           WriteWicImage(path, GUID_ContainerFormatPng, GUID_WICPixelFormat32bppBGR, image.width,
                         image.height, image.width * 4u, image.pixels.data());
}

// Captures the desktop and keeps it as captures\<name>.png beside the driver, to look at.
inline Image KeepShot(const std::wstring& name) {
    const Image shot = CaptureScreen();
    std::error_code ignored;
    std::filesystem::create_directories(BesideDriver(L"captures"), ignored);
    SavePng(shot, BesideDriver(L"captures\\" + name + L".png"));
    return shot;
}

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

// Starts the saver (or `program`) with `arguments`; all zero when it can't be started.
inline PROCESS_INFORMATION Launch(const std::wstring& arguments,
                                  const std::wstring& program = SaverPath()) {
    std::wstring commandLine = L"\"" + program + L"\" " + arguments;
    STARTUPINFOW startup{sizeof startup};
    PROCESS_INFORMATION saver{};
    CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                   &startup, &saver);
    return saver;
}

// The exit code once the saver has ended within `timeoutMs`, nothing otherwise.
inline std::optional<DWORD> ExitCode(const PROCESS_INFORMATION& saver, DWORD timeoutMs) {
    DWORD code = 0;
    if (WaitForSingleObject(saver.hProcess, timeoutMs) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(saver.hProcess, &code))
        return std::nullopt;
    return code;
}

// Ends a saver that still runs, and lets go of its handles.
inline void EndSaver(const PROCESS_INFORMATION& saver) {
    TerminateProcess(saver.hProcess, 0xDEAD);
    WaitForSingleObject(saver.hProcess, 5000);
    CloseHandle(saver.hProcess);
    CloseHandle(saver.hThread);
}

// Windows of class "LumivaneSaver": the children of `parent`, or without one the top-level
// windows of process `id`.
inline std::vector<HWND> SaverWindows(DWORD id, HWND parent = nullptr) {
    std::vector<HWND> found;
    for (HWND hwnd = nullptr; (hwnd = FindWindowExW(parent, hwnd, L"LumivaneSaver", nullptr));) {
        DWORD owner = 0;
        GetWindowThreadProcessId(hwnd, &owner);
        if (parent || owner == id) found.push_back(hwnd);
    }
    return found;
}

// Waits until exactly `count` of them are shown (a window is found while CreateWindowExW still
// runs); returns what was found last.
inline std::vector<HWND> WaitForSaverWindows(DWORD id, HWND parent, size_t count) {
    std::vector<HWND> found;
    WaitUntil(
        [&] {
            found = SaverWindows(id, parent);
            const auto shown = std::all_of(found.begin(), found.end(), IsWindowVisible);
            return found.size() == count && shown;
        },
        kWindowsMs, 20);
    return found;
}

// ---- windows of the driver ----

// How many "Lumivane.OpenSettings" messages the driver's windows have received so far.
inline std::atomic<int> settingsRequests{0};

// A window with a thread and message loop of its own: the saver talks to it from another
// process (a preview child sends its parent messages as it is made, the settings handoff posts
// to the tray), so it must keep pumping while the test thread waits. Without a size (of the
// whole window) it stays hidden; shown, it never takes the focus.
class DriverWindow {
public:
    DriverWindow(const wchar_t* className, DWORD style, int width = 0, int height = 0) {
        std::promise<HWND> made;
        thread = std::thread([&, className, style, width, height] {
            WNDCLASSW windowClass{};
            windowClass.lpfnWndProc = [](HWND w, UINT message, WPARAM wp, LPARAM lp) -> LRESULT {
                if (message == WM_DESTROY) PostQuitMessage(0);
                if (message == RegisterWindowMessageW(L"Lumivane.OpenSettings")) ++settingsRequests;
                return DefWindowProcW(w, message, wp, lp);
            };
            windowClass.hInstance = GetModuleHandleW(nullptr);
            windowClass.lpszClassName = className;
            RegisterClassW(&windowClass); // a second window of the class finds it registered
            HWND window = CreateWindowExW(0, className, L"", style, 40, 40, width, height, nullptr,
                                          nullptr, windowClass.hInstance, nullptr);
            if (window && width) ShowWindow(window, SW_SHOWNOACTIVATE);
            made.set_value(window);
            MSG message;
            while (window && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
        });
        hwnd = made.get_future().get();
    }
    ~DriverWindow() { Destroy(); }

    // Destroys the window on its own thread and waits for that thread to end.
    void Destroy() {
        if (!thread.joinable()) return;
        if (hwnd) PostMessageW(hwnd, WM_CLOSE, 0, 0);
        thread.join();
    }

    HWND hwnd = nullptr;

private:
    std::thread thread;
};

// ---- the fixture ----

// Base of every scenario: starts from the saver's default options; the one saver it starts
// ends with it, whatever the outcome.
class SaverTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegDeleteTreeW(HKEY_CURRENT_USER, kSaverKey);
        SetCursorPos(kRestingCursor.x, kRestingCursor.y);
    }
    void TearDown() override { EndSaver(saver); }

    // Starts the saver (or `program`) with `arguments`; the test fails when it can't be started.
    DWORD Start(const std::wstring& arguments, const std::wstring& program = SaverPath()) {
        saver = Launch(arguments, program);
        EXPECT_TRUE(saver.hProcess) << "can't start " << testing::PrintToString(program);
        return saver.dwProcessId;
    }

    // Starts `/s` (of `program`) with the cursor at kRestingCursor; expects one top-most window
    // to cover each of the harness's two monitors. The run's first mouse move only records the
    // position; it is made here, so that the recorded position is kRestingCursor whether or not
    // the system sent a move of its own.
    std::vector<HWND> StartFullScreen(const std::wstring& program = SaverPath()) {
        SetCursorPos(kRestingCursor.x, kRestingCursor.y);
        const std::vector<RECT> monitors = MonitorRects();
        EXPECT_EQ(monitors.size(), 2u) << "the harness runs two screens";
        std::vector<HWND> windows = WaitForSaverWindows(Start(L"/s", program), nullptr, 2);
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
        EXPECT_EQ(ExitCode(saver, kExitMs), std::optional<DWORD>(0))
            << "the saver must end with 0 within " << kExitMs << " ms";
    }

    PROCESS_INFORMATION saver{};
};

} // namespace e2e
