// The program's entry point: hardens the process, starts diagnostics and texts, reads the command
// line and hands over to the mode runner, whose result is the exit code.
#include <windows.h>

#include <shellapi.h>

#include <string>
#include <vector>

#include "diagnostics/crash_reporter.h"
#include "diagnostics/string_table.h"
#include "library/companion.h"
#include "platform/process_start_win.h"
#include "session/command_line.h"
#include "session/run_mode.h"

namespace {

bool IsWindowNumber(uint64_t handle) {
    return IsWindow(reinterpret_cast<HWND>(static_cast<UINT_PTR>(handle))) != FALSE;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    SearchOnlySystemFolderForLibraries();
    HeapSetInformation(nullptr, HeapEnableTerminationOnCorruption, nullptr, 0);
    // The first use of the data folders: they are found, moved and made here, in every mode.
    CrashReporter::Start(kCrashAppWord);
    BecomePerMonitorDpiAware();
    StringTable::Init();

    const CommandLineChoice choice = ParseCommandLine(CommandLineArguments(), IsWindowNumber);
    if (!choice.run) return 0;
    CrashReporter::SetStage(StageWord(choice.mode));
    return RunMode(choice.mode,
                   reinterpret_cast<WindowHandle>(static_cast<UINT_PTR>(choice.handle)));
}
