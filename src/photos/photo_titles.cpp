#include "photos/photo_titles.h"

#include "library/wide_fold.h"

namespace {

constexpr size_t kTailLength = 13;

std::wstring_view FileNameView(const std::wstring& path) {
    const auto slash = path.rfind(L'\\');
    const std::wstring_view whole(path);
    return slash == std::wstring::npos ? whole : whole.substr(slash + 1);
}

} // namespace

std::wstring PhotoFileName(const std::wstring& path) { return std::wstring(FileNameView(path)); }

std::wstring PhotoTitleStem(const std::wstring& path) {
    const std::wstring_view name = FileNameView(path);
    if (name.size() <= kTailLength) return {};
    return std::wstring(name.substr(0, name.size() - kTailLength));
}

std::wstring PhotoCaption(const std::wstring& path, const TitleFlags& flags) {
    const size_t n = path.size();
    const bool imported = n > 12 && path[n - 13] == L'-' && path[n - 12] == L'z';
    return flags[imported ? 1 : 0] ? PhotoTitleStem(path) : std::wstring();
}

bool ComparePhotoNames(const std::wstring& a, const std::wstring& b) {
    return CompareFolded(FileNameView(a), FileNameView(b)) < 0;
}
