#include "library/settings.h"

int32_t Settings::ReadDword(const wchar_t*, int32_t fallback) { return fallback; }

std::wstring Settings::ReadString(const wchar_t*) { return {}; }

bool Settings::WriteString(const wchar_t*, const std::wstring&) { return false; }
