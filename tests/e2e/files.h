#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace e2e {

// The bytes of a file; nothing if it can't be opened.
std::optional<std::string> ReadFileBytes(const std::wstring& path);
// Makes `path` and every missing folder above it.
bool MakeFolders(const std::wstring& path);
// An empty folder of the driver's own, %TEMP%\lumivane-e2e\<name>, cleared of an earlier run.
std::wstring FreshFolder(const std::wstring& name);
// A known folder such as FOLDERID_LocalAppData, without a trailing backslash.
std::wstring KnownFolder(const GUID& id);
// Writes a `width` x `height` JPEG of one colour (0xRRGGBB).
bool WriteJpeg(const std::wstring& path, int width, int height, uint32_t colour);
// Encodes rows of `stride` bytes in the WIC pixel `format` into a `container` file (PNG, JPEG).
bool WriteImage(const std::wstring& path, const GUID& container, GUID format, int width,
                int height, UINT stride, const void* pixels);

// The saver's options key, HKCU\Software\LumivaneW: removed with all its values, so that a
// scenario starts from the defaults; and one string value of it, nothing when it is missing.
void ClearSaverKey();
std::optional<std::wstring> ReadSaverString(const wchar_t* name);
// Writes an option, making the key when it is missing.
bool WriteSaverString(const wchar_t* name, const std::wstring& value);
bool WriteSaverDword(const wchar_t* name, DWORD value);

} // namespace e2e
