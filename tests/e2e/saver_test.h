#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace e2e {

// Time-outs, generous for a loaded machine: a run under Wine starts in about a second.
constexpr DWORD kWindowsMs = 20000;
constexpr DWORD kExitMs = 10000;
// How long a saver that should keep running is watched before the test believes it.
constexpr DWORD kSettleMs = 700;
// After the input that dismisses, the windows must be gone from the screen within this.
constexpr DWORD kHideMs = 1000;
// Where the cursor rests when a run starts: inside the first monitor, away from its edges.
constexpr POINT kRestingCursor{400, 300};

// Polls `done` until it holds or `timeoutMs` has passed; returns its last answer. The saver
// runs in another process, so every check of its state is a poll.
template <typename Predicate>
bool WaitUntil(Predicate done, DWORD timeoutMs, DWORD pollMs = 5) {
    const ULONGLONG deadline = GetTickCount64() + timeoutMs;
    while (!done()) {
        if (GetTickCount64() >= deadline) return done();
        Sleep(pollMs);
    }
    return true;
}

// Lumivane.scr: `--scr <path>` of the driver, else LUMIVANE_SCR, else one folder above the driver.
std::wstring SaverPath();
// The driver's own program file.
std::wstring DriverPath();
void SetSaverPath(const std::wstring& path);

// One started saver; whatever still runs when the object goes away is terminated.
class SaverProcess {
public:
    SaverProcess() = default;
    SaverProcess(const SaverProcess&) = delete;
    SaverProcess& operator=(const SaverProcess&) = delete;
    ~SaverProcess();

    // Starts the saver (or `program`) with `arguments` behind its quoted path; false on failure.
    bool Start(const std::wstring& arguments, const std::wstring& program = SaverPath());
    bool Running() const;
    // The exit code once the process has ended within `timeoutMs`, nothing otherwise.
    std::optional<DWORD> WaitForExit(DWORD timeoutMs);
    DWORD Id() const { return id; }

private:
    HANDLE process = nullptr;
    DWORD id = 0;
};

// Windows of class "LumivaneSaver": the children of `parent`, or without one the top-level
// windows of process `processId`.
std::vector<HWND> SaverWindows(DWORD processId, HWND parent = nullptr);
// Waits until exactly `count` of them exist and are shown; returns what was found last.
std::vector<HWND> WaitForSaverWindows(DWORD processId, HWND parent, size_t count);
// True once none of `windows` is shown any more (hidden or destroyed).
bool WaitUntilHidden(const std::vector<HWND>& windows, DWORD timeoutMs);
// Monitor rectangles in the order EnumDisplayMonitors gives them.
std::vector<RECT> MonitorRects();

// Base of every scenario: starts from the saver's default options; the savers it started end
// with it, whatever the outcome.
class SaverTest : public ::testing::Test {
protected:
    void SetUp() override;

    // Starts Lumivane.scr with `arguments`; the test fails when it can't be started.
    SaverProcess& Start(const std::wstring& arguments, const std::wstring& program = SaverPath());
    // The saver started last.
    SaverProcess& Saver() { return *savers.back(); }
    // Starts `/s` (of `program`) with the cursor at kRestingCursor and waits for one window per
    // monitor. The run's first mouse move only records the position; it is made here, so that
    // the recorded position is kRestingCursor whether or not the system sent a move of its own.
    std::vector<HWND> StartFullScreen(const std::wstring& program = SaverPath());
    // Expects the run to end with exit code 0 within kExitMs.
    void ExpectExitZero();

private:
    std::vector<std::unique_ptr<SaverProcess>> savers;
};

} // namespace e2e
