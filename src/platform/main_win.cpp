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

// A function of a system DLL that the process has loaded already, or null where this version of
// Windows lacks it. Going through void* keeps the compiler from warning about the cast.
template <typename Function> Function LoadedFunction(const wchar_t* module, const char* name) {
    const HMODULE handle = GetModuleHandleW(module);
    if (!handle) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle, name)));
}

// Every later library load, including the libraries that system DLLs pull in by name (Direct2D
// loads Direct3D, COM loads the imaging codecs), searches only the system folder. Without this
// the program's own folder comes first, and a user's Downloads folder may hold a DLL of such a
// name beside the saver. Windows 7 has the call only with an update: without it, go on.
void SearchOnlySystemFolderForLibraries() {
    const auto set =
        LoadedFunction<BOOL(WINAPI*)(DWORD)>(L"kernel32.dll", "SetDefaultDllDirectories");
    if (set) set(LOAD_LIBRARY_SEARCH_SYSTEM32);
}

void BecomePerMonitorDpiAware() {
    const auto set =
        LoadedFunction<BOOL(WINAPI*)(HANDLE)>(L"user32.dll", "SetProcessDpiAwarenessContext");
    if (set) set(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(-4))); // per monitor, version 2
}

bool IsWindowNumber(uint64_t handle) {
    return IsWindow(reinterpret_cast<HWND>(static_cast<UINT_PTR>(handle))) != FALSE;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    SearchOnlySystemFolderForLibraries();
    // Libraries never come from the current directory either, where the call above is missing.
    SetDllDirectoryW(L"");
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
