#include "platform/process_start_win.h"

#include <windows.h>

#include <shellapi.h>

namespace {

// A function of a system DLL that the process has loaded already, or null where this version of
// Windows lacks it. Going through void* keeps the compiler from warning about the cast.
template <typename Function> Function LoadedFunction(const wchar_t* module, const char* name) {
    const HMODULE handle = GetModuleHandleW(module);
    if (!handle) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle, name)));
}

} // namespace

// Direct2D loads Direct3D, COM loads the imaging codecs, the shell loads its extensions: without
// this the program's own folder comes first, and a user's Downloads folder may hold a DLL of such
// a name beside the program. Windows 7 has the call only with an update: without it, go on.
void SearchOnlySystemFolderForLibraries() {
    const auto set =
        LoadedFunction<BOOL(WINAPI*)(DWORD)>(L"kernel32.dll", "SetDefaultDllDirectories");
    if (set) set(LOAD_LIBRARY_SEARCH_SYSTEM32);
    // Libraries never come from the current directory either, where the call above is missing.
    SetDllDirectoryW(L"");
}

void BecomePerMonitorDpiAware() {
    const auto set =
        LoadedFunction<BOOL(WINAPI*)(HANDLE)>(L"user32.dll", "SetProcessDpiAwarenessContext");
    if (set) set(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(-4))); // per monitor, version 2
}

void TakeDpiAwarenessOf(HWND window) {
    const auto get =
        LoadedFunction<HANDLE(WINAPI*)(HWND)>(L"user32.dll", "GetWindowDpiAwarenessContext");
    const auto set =
        LoadedFunction<HANDLE(WINAPI*)(HANDLE)>(L"user32.dll", "SetThreadDpiAwarenessContext");
    if (!get || !set) return;
    if (HANDLE context = get(window)) set(context);
}

std::vector<std::wstring> CommandLineArguments() {
    std::vector<std::wstring> arguments;
    int count = 0;
    LPWSTR* list = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!list) return arguments;
    for (int i = 1; i < count; ++i) arguments.emplace_back(list[i]); // skip the program's path
    LocalFree(list);
    return arguments;
}
