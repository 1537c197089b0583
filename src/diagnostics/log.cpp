#include "diagnostics/log.h"

void Log::Write(const std::wstring&) {}
