#pragma once

#include <string>
#include <vector>

// What both programs do first thing in wWinMain, before any library is loaded.

// Every later library load, including the libraries that system DLLs pull in by name, searches
// only the system folder; the current directory is never searched either.
void SearchOnlySystemFolderForLibraries();
// Per-monitor DPI awareness, version 2 where the system has it.
void BecomePerMonitorDpiAware();
// The program's arguments, without its own path.
std::vector<std::wstring> CommandLineArguments();
