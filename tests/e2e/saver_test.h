#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "e2e/saver_process.h"

namespace e2e {

// Time-outs, generous for a loaded machine: a run under Wine starts in about a second.
constexpr DWORD kWindowsMs = 20000;
constexpr DWORD kExitMs = 10000;
// How long a saver that should keep running is watched before the test believes it.
constexpr DWORD kSettleMs = 700;
// After the input that dismisses, the windows must be gone from the screen within this.
constexpr DWORD kHideMs = 1000;

// Where the cursor rests when a full-screen run starts: inside the first monitor, away from
// its edges, so that moves of a few pixels in any direction stay on the same screen.
constexpr POINT kRestingCursor{400, 300};

// Base of every scenario: starts from the saver's default options, and ends every saver the
// scenario started, whatever the outcome.
class SaverTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Starts Lumivane.scr with `arguments`; the test fails when it can't be started.
    SaverProcess& Start(const std::wstring& arguments);
    // The running saver of this scenario (the last one started).
    SaverProcess& Saver() { return *savers.back(); }

    // Starts a full-screen run with the cursor at kRestingCursor and waits for one window per
    // monitor. The first mouse move of the run is then made on purpose, so that the recorded
    // position is kRestingCursor whether or not the system sent a move of its own.
    std::vector<HWND> StartFullScreen();

    // Expects the run to end with exit code 0 within kExitMs.
    void ExpectExitZero();

private:
    std::vector<std::unique_ptr<SaverProcess>> savers;
};

// The saver's first mouse move of a run only records the cursor position: make it now, and
// wait until the saver has handled it.
void RecordCursorPosition(HWND saverWindow);

} // namespace e2e
