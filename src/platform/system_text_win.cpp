// Text conversions by the system's own rules.
#include <windows.h>

#include <climits>

#include "library/system_text.h"

std::wstring LowerCase(std::wstring text) {
    if (!text.empty()) CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

std::wstring WideFromUtf8(const std::string& text) {
    if (text.empty() || text.size() > INT_MAX) return {};
    const int length = static_cast<int>(text.size());
    const int wide = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    if (wide <= 0) return {};
    std::wstring result(static_cast<size_t>(wide), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), wide);
    return result;
}
