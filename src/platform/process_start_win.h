#pragma once

#include <windows.h>

#include <string>
#include <vector>

// What both programs do first thing in wWinMain, before any library is loaded; and the DPI set-up
// of a preview, which looks up the newer calls at run time in the same way.

// Every later library load, including the libraries that system DLLs pull in by name, searches
// only the system folder; the current directory is never searched either.
void SearchOnlySystemFolderForLibraries();
// Per-monitor DPI awareness, version 2 where the system has it.
void BecomePerMonitorDpiAware();
// Makes the calling thread's DPI awareness that of `window` (a window of another process, such as
// the pane of a preview), so that the windows it creates as children of it share its coordinate
// space, and sizes read from it mean the same pixels. Where the system lacks the calls (before
// Windows 10 1607) the thread keeps the process's awareness.
void TakeDpiAwarenessOf(HWND window);
// The program's arguments, without its own path.
std::vector<std::wstring> CommandLineArguments();
