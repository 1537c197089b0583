#pragma once

#include <cstdint>
#include <string>

// Appends the UTF-8 form of `codePoint` (up to U+10FFFF) to `out`, in 1 to 4 bytes.
void AppendUtf8(std::string& out, uint32_t codePoint);
