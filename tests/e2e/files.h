#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace e2e {

// The text of a file, read as bytes; nothing if it can't be opened.
std::optional<std::string> ReadFileBytes(const std::wstring& path);
// Makes `path` and every missing folder above it.
bool MakeFolders(const std::wstring& path);
// Writes a `width` x `height` JPEG of one colour (0xRRGGBB) through WIC.
bool WriteJpeg(const std::wstring& path, int width, int height, uint32_t colour);
// A known folder such as FOLDERID_LocalAppData, without a trailing backslash.
std::wstring KnownFolder(const GUID& id);

} // namespace e2e
