// The program's entry point: hardens the process, starts diagnostics and texts, reads the command
// line and hands over to the mode runner, whose result is the exit code.
#include <windows.h>

#include <shellapi.h>

#include <string>
#include <vector>

#include "diagnostics/crash_reporter.h"
#include "diagnostics/string_table.h"
#include "library/companion.h"
#include "session/command_line.h"
#include "session/run_mode.h"

namespace {

std::vector<std::wstring> CommandLineArguments() {
    std::vector<std::wstring> arguments;
    int count = 0;
    LPWSTR* list = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!list) return arguments;
    for (int i = 1; i < count; ++i) arguments.emplace_back(list[i]); // skip the program's path
    LocalFree(list);
    return arguments;
}

void BecomePerMonitorDpiAware() {
    using SetContext = BOOL(WINAPI*)(HANDLE);
    HMODULE user32 = GetModuleHandleW(L"user32.dll");
    if (!user32) return;
    auto set = reinterpret_cast<SetContext>(
        reinterpret_cast<void*>(GetProcAddress(user32, "SetProcessDpiAwarenessContext")));
    if (set) set(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(-4))); // per monitor, version 2
}

bool IsWindowNumber(uint64_t handle) {
    return IsWindow(reinterpret_cast<HWND>(static_cast<UINT_PTR>(handle))) != FALSE;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    // Libraries never come from the current directory.
    SetDllDirectoryW(L"");
    HeapSetInformation(nullptr, HeapEnableTerminationOnCorruption, nullptr, 0);
    // The first use of the data folders: they are found, moved and made here, in every mode.
    CrashReporter::Start(kCrashAppWord);
    BecomePerMonitorDpiAware();
    StringTable::Init();

    const CommandLineChoice choice = ParseCommandLine(CommandLineArguments(), IsWindowNumber);
    if (!choice.run) return 0;
    CrashReporter::SetStage(StageWord(choice.mode));
    return RunMode(choice.mode, reinterpret_cast<WindowHandle>(static_cast<UINT_PTR>(choice.handle)));
}
