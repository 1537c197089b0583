#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace e2e {

// The saver's options: values of HKCU\Software\LumivaneW.
namespace saver_registry {

// Removes the key with all its values, so that a scenario starts from the defaults.
void Clear();
bool WriteDword(const wchar_t* name, DWORD value);
bool WriteString(const wchar_t* name, const std::wstring& value);
std::optional<DWORD> ReadDword(const wchar_t* name);
std::optional<std::wstring> ReadString(const wchar_t* name);

} // namespace saver_registry

} // namespace e2e
