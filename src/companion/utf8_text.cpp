#include "companion/utf8_text.h"

#include <cstdint>

#include "library/utf8.h"

namespace {

bool IsHighHalf(uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowHalf(uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

} // namespace

bool Utf8FromWide(const std::wstring& text, std::string& out) {
    std::string bytes;
    bytes.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t c = static_cast<uint32_t>(text[i]);
        if (IsHighHalf(c) && i + 1 < text.size() && IsLowHalf(static_cast<uint32_t>(text[i + 1])))
            c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<uint32_t>(text[++i]) - 0xDC00);
        else if (IsHighHalf(c) || IsLowHalf(c) || c > 0x10FFFF) return false;
        AppendUtf8(bytes, c);
    }
    out = std::move(bytes);
    return true;
}
