#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace e2e {

// Makes `path` and every missing folder above it.
bool MakeFolders(const std::wstring& path);
// A known folder such as FOLDERID_LocalAppData, without a trailing backslash.
std::wstring KnownFolder(const GUID& id);
// Encodes rows of `stride` bytes in the WIC pixel `format` into a `container` file (PNG, JPEG).
bool WriteImage(const std::wstring& path, const GUID& container, GUID format, int width,
                int height, UINT stride, const void* pixels);

// The saver's options key, HKCU\Software\LumivaneW: removed with all its values, so that a
// scenario starts from the defaults; and one string value of it, nothing when it is missing.
void ClearSaverKey();
std::optional<std::wstring> ReadSaverString(const wchar_t* name);

} // namespace e2e
