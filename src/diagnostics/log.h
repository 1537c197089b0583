#pragma once

#include <string>

// Appends one time-stamped line to log.txt in the data folder.
//
// Stand-in until the diagnostics issue lands: the line is dropped, which is what happens when the
// log file can't be opened. The diagnostics issue replaces the body.
struct Log {
    static void Write(const std::wstring& text);
};
