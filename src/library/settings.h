#pragma once

#include <cstdint>
#include <string>

// The options of the current user: stateless operations on the one registry key.
//
// Stand-in until the settings store lands: every read gives the caller's fallback (an empty
// string for ReadString) and WriteString stores nothing, which is exactly what a user without
// the key sees. The library issue replaces the bodies, not the call sites.
struct Settings {
    static int32_t ReadDword(const wchar_t* name, int32_t fallback);
    static std::wstring ReadString(const wchar_t* name);
    static bool WriteString(const wchar_t* name, const std::wstring& value);
};
