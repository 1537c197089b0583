#pragma once

#include <cstddef>
#include <string_view>

// Compares like the runtime's _wcsnicmp in its default locale: the letters A to Z count as a to
// z, everything else compares as unsigned code units, up to `count` characters or the end of the
// shorter text. Written out so that every platform orders names the same way.
inline int CompareFolded(std::wstring_view a, std::wstring_view b,
                         size_t count = std::wstring_view::npos) {
    const auto fold = [](wchar_t c) -> unsigned long {
        const auto unit = static_cast<unsigned long>(c);
        return unit >= L'A' && unit <= L'Z' ? unit + 32 : unit;
    };
    for (size_t i = 0; i < count; ++i) {
        const unsigned long ca = i < a.size() ? fold(a[i]) : 0;
        const unsigned long cb = i < b.size() ? fold(b[i]) : 0;
        if (ca != cb) return ca < cb ? -1 : 1;
        if (ca == 0) return 0;
    }
    return 0;
}
