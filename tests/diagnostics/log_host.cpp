// The host has no log file: lines that the session writes are dropped, as when log.txt can't be
// opened.
#include "diagnostics/log.h"

void Log::Write(const std::wstring&) {}
