// The entry point of Lumivane.exe, the tray application: hardens the process as the saver does,
// then either hands the start over to the running instance or becomes it.
#include <windows.h>

#include <commctrl.h>

#include <atomic>
#include <string>
#include <vector>

#include "companion/start_plan.h"
#include "diagnostics/crash_reporter.h"
#include "diagnostics/string_table.h"
#include "library/companion.h"
#include "library/data_paths.h"
#include "platform/companion/import_run_win.h"
#include "platform/companion/tray_win.h"
#include "platform/process_start_win.h"
#include "platform/win_handles.h"

namespace {

// The word that the companion's crash reports carry, beside the saver's.
constexpr char kCompanionCrashAppWord[] = "tray-win";
// Held by the tray instance for its lifetime; a start that finds it taken is a second one. It
// closes the gap between two starts that both look for the window before either has made it.
constexpr wchar_t kInstanceMutex[] = L"Local\\Lumivane.Tray";
// How long a second start waits for the first one's window to appear.
constexpr ULONGLONG kWindowWaitMs = 5000;
constexpr wchar_t kSaverFile[] = L"Lumivane.scr";

// Asks the running instance to show its settings, as the saver's hand-over does.
void HandOver() {
    HWND tray = nullptr;
    const ULONGLONG deadline = GetTickCount64() + kWindowWaitMs;
    while (!(tray = FindWindowW(kTrayWindowClass, nullptr)) && GetTickCount64() < deadline)
        Sleep(50);
    if (!tray) return;
    DWORD processId = 0;
    GetWindowThreadProcessId(tray, &processId);
    // This start came from the user and may take the foreground: pass that on to the dialog.
    AllowSetForegroundWindow(processId);
    PostMessageW(tray, RegisterWindowMessageW(kOpenSettingsMessage), 0, 0);
}

} // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int) {
    SearchOnlySystemFolderForLibraries();
    HeapSetInformation(nullptr, HeapEnableTerminationOnCorruption, nullptr, 0);
    // The first use of the data folders, found, moved and made exactly as the saver does.
    CrashReporter::Start(kCompanionCrashAppWord);
    BecomePerMonitorDpiAware();
    StringTable::Init();

    const std::vector<std::wstring> arguments = CommandLineArguments();
    ComApartment apartment; // imaging, the folder picker and the shell
    if (PlanStart(arguments, false).importOnce) {
        // For scripts and administrators: one import at background priority, then the end. It
        // takes no part in the tray's single instance.
        SetThreadPriority(GetCurrentThread(), THREAD_MODE_BACKGROUND_BEGIN);
        const std::atomic<bool> stop{false};
        RunImport([](size_t, size_t) {}, stop);
        return 0;
    }
    UniqueHandle instanceMutex(CreateMutexW(nullptr, FALSE, kInstanceMutex));
    const bool instanceRuns = GetLastError() == ERROR_ALREADY_EXISTS;
    const StartPlan plan = PlanStart(arguments, instanceRuns);
    if (plan.handOver) {
        HandOver();
        return 0;
    }
    if (!plan.runTray) return 0;
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    const std::wstring& exePath = DataPaths::Get().exePath;
    SettingsDialog::Context context;
    context.instance = instance;
    context.saverPath = exePath.substr(0, exePath.rfind(L'\\') + 1) + kSaverFile;
    context.defaultFolder = PicturesFolder();
    TrayApp app(std::move(context));
    return app.Run(instance, plan.openSettings);
}
