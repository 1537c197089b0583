#include "e2e/saver_test.h"

#include <algorithm>

#include "e2e/files.h"

namespace e2e {

static std::wstring chosenPath; // from --scr

void SetSaverPath(const std::wstring& path) { chosenPath = path; }

std::wstring SaverPath() {
    if (!chosenPath.empty()) return chosenPath;
    if (const wchar_t* path = _wgetenv(L"LUMIVANE_SCR"); path && *path) return path;
    const std::wstring own = DriverPath();
    return own.substr(0, own.find_last_of(L'\\') + 1) + L"..\\Lumivane.scr";
}

std::wstring DriverPath() {
    wchar_t driver[MAX_PATH] = {};
    return std::wstring(driver, GetModuleFileNameW(nullptr, driver, MAX_PATH));
}

SaverProcess::~SaverProcess() {
    if (Running()) {
        TerminateProcess(process, 0xDEAD);
        WaitForSingleObject(process, 5000);
    }
    if (process) CloseHandle(process);
}

bool SaverProcess::Start(const std::wstring& arguments, const std::wstring& program) {
    std::wstring commandLine = L"\"" + program + L"\" " + arguments;
    STARTUPINFOW startup{sizeof startup};
    PROCESS_INFORMATION info{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &info))
        return false;
    CloseHandle(info.hThread);
    process = info.hProcess;
    id = info.dwProcessId;
    return true;
}

bool SaverProcess::Running() const {
    return process && WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
}

std::optional<DWORD> SaverProcess::WaitForExit(DWORD timeoutMs) {
    DWORD code = 0;
    if (!process || WaitForSingleObject(process, timeoutMs) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(process, &code))
        return std::nullopt;
    return code;
}

std::vector<HWND> SaverWindows(DWORD processId, HWND parent) {
    std::vector<HWND> found;
    for (HWND hwnd = nullptr; (hwnd = FindWindowExW(parent, hwnd, L"LumivaneSaver", nullptr));) {
        DWORD owner = 0;
        GetWindowThreadProcessId(hwnd, &owner);
        if (parent || owner == processId) found.push_back(hwnd);
    }
    return found;
}

std::vector<HWND> WaitForSaverWindows(DWORD processId, HWND parent, size_t count) {
    std::vector<HWND> found;
    // A window is found while CreateWindowExW still runs; it counts once it is shown.
    WaitUntil(
        [&] {
            found = SaverWindows(processId, parent);
            return found.size() == count && std::all_of(found.begin(), found.end(), IsWindowVisible);
        },
        kWindowsMs, 20);
    return found;
}

bool WaitUntilHidden(const std::vector<HWND>& windows, DWORD timeoutMs) {
    const auto hidden = [&] { return std::none_of(windows.begin(), windows.end(), IsWindowVisible); };
    return WaitUntil(hidden, timeoutMs, 1);
}

std::vector<RECT> MonitorRects() {
    std::vector<RECT> rects;
    const MONITORENUMPROC collect = [](HMONITOR, HDC, RECT* rect, LPARAM list) -> BOOL {
        reinterpret_cast<std::vector<RECT>*>(list)->push_back(*rect);
        return TRUE;
    };
    EnumDisplayMonitors(nullptr, nullptr, collect, reinterpret_cast<LPARAM>(&rects));
    return rects;
}

void SaverTest::SetUp() {
    ClearSaverKey();
    SetCursorPos(kRestingCursor.x, kRestingCursor.y);
}

SaverProcess& SaverTest::Start(const std::wstring& arguments, const std::wstring& program) {
    savers.push_back(std::make_unique<SaverProcess>());
    if (!savers.back()->Start(arguments, program)) {
        const DWORD error = GetLastError();
        ADD_FAILURE() << "can't start " << testing::PrintToString(program) << ": " << error;
    }
    return *savers.back();
}

std::vector<HWND> SaverTest::StartFullScreen(const std::wstring& program) {
    SetCursorPos(kRestingCursor.x, kRestingCursor.y);
    const size_t monitors = MonitorRects().size();
    std::vector<HWND> windows = WaitForSaverWindows(Start(L"/s", program).Id(), nullptr, monitors);
    EXPECT_EQ(windows.size(), monitors) << "one window per monitor";
    // Sent, not posted: it returns once the window procedure has run, so no later input can
    // overtake it. The saver reads GetCursorPos, not lParam.
    DWORD_PTR result = 0;
    if (!windows.empty())
        SendMessageTimeoutW(windows.front(), WM_MOUSEMOVE, 0, 0, SMTO_NORMAL, 5000, &result);
    return windows;
}

void SaverTest::ExpectExitZero() {
    const auto code = Saver().WaitForExit(kExitMs);
    ASSERT_TRUE(code.has_value()) << "the saver didn't end within " << kExitMs << " ms";
    EXPECT_EQ(*code, 0u);
}

} // namespace e2e
