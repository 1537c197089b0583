#include "e2e/saver_test.h"

#include "e2e/saver_registry.h"
#include "e2e/saver_windows.h"

namespace e2e {

void SaverTest::SetUp() {
    saver_registry::Clear();
    SetCursorPos(kRestingCursor.x, kRestingCursor.y);
}

void SaverTest::TearDown() {
    for (auto& saver : savers) {
        if (saver->Running()) ADD_FAILURE() << "a saver was still running at the end; ended it";
        saver->Terminate();
    }
    savers.clear();
}

SaverProcess& SaverTest::Start(const std::wstring& arguments) {
    savers.push_back(std::make_unique<SaverProcess>());
    if (!savers.back()->Start(arguments)) {
        const DWORD error = GetLastError();
        const std::wstring path = SaverPath();
        ADD_FAILURE() << "CreateProcessW failed (" << error << ") for "
                      << std::string(path.begin(), path.end());
    }
    return *savers.back();
}

std::vector<HWND> SaverTest::StartFullScreen() {
    SetCursorPos(kRestingCursor.x, kRestingCursor.y);
    SaverProcess& saver = Start(L"/s");
    const size_t monitors = MonitorRects().size();
    std::vector<HWND> windows = WaitForTopLevelSaverWindows(saver.Id(), monitors, kWindowsMs);
    EXPECT_EQ(windows.size(), monitors) << "one window per monitor";
    if (!windows.empty()) RecordCursorPosition(windows.front());
    return windows;
}

void SaverTest::ExpectExitZero() {
    const auto code = Saver().WaitForExit(kExitMs);
    ASSERT_TRUE(code.has_value()) << "the saver didn't end within " << kExitMs << " ms";
    EXPECT_EQ(*code, 0u);
}

void RecordCursorPosition(HWND saverWindow) {
    // Sent rather than posted: SendMessageTimeout returns once the window procedure has run,
    // so no later input can overtake it. The saver reads GetCursorPos, not lParam.
    DWORD_PTR result = 0;
    SendMessageTimeoutW(saverWindow, WM_MOUSEMOVE, 0, MAKELPARAM(1, 1), SMTO_NORMAL, 5000,
                        &result);
}

} // namespace e2e
