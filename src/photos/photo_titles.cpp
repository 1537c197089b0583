#include "photos/photo_titles.h"

#include <algorithm>

namespace {

std::wstring::size_type NameStart(const std::wstring& path) {
    const auto slash = path.rfind(L'\\');
    return slash == std::wstring::npos ? 0 : slash + 1;
}

wchar_t FoldAscii(wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c; }

} // namespace

int ComparePhotoNames(const std::wstring& a, const std::wstring& b) {
    auto i = NameStart(a);
    auto j = NameStart(b);
    for (; i < a.size() && j < b.size(); ++i, ++j) {
        const int ca = FoldAscii(a[i]);
        const int cb = FoldAscii(b[j]);
        if (ca != cb) return ca - cb;
    }
    return (i < a.size() ? 1 : 0) - (j < b.size() ? 1 : 0);
}
