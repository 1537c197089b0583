#pragma once

#include <string>

// Log::Write with the folder given, rather than taken from DataPaths: appends one line to
// folder\log.txt, moving a log above the limit to folder\log.old.txt first. The tests use it
// with a folder of their own.
void AppendLogLine(const std::wstring& folder, const std::wstring& text);
