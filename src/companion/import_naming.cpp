#include "companion/import_naming.h"

#include <cstdint>
#include <string_view>

#include "library/system_text.h"

namespace {

// What cameras, phones and their apps put before the counter or the date of a photo.
constexpr std::wstring_view kCounterPrefixes[] = {
    L"img",   L"imag",       L"image",       L"dsc",           L"dscn",
    L"dscf",  L"_dsc",       L"dcim",        L"pxl",           L"p",
    L"gopr",  L"gh",         L"gx",          L"dji",           L"mvimg",
    L"pano",  L"vid",        L"photo",       L"sam",           L"cimg",
    L"dcp",   L"pict",       L"_mg",         L"imgp",          L"_igp",
    L"sdc",   L"hpim",       L"wp",          L"win",           L"signal",
    L"burst", L"screenshot", L"screen shot", L"whatsapp image"};

// Words that stand between the numbers of such names (IMG-20240812-WA0003, _HDR, .MP, "at").
constexpr std::wstring_view kCounterWords[] = {L"wa",    L"mp",     L"hdr",   L"portrait",
                                               L"night", L"edited", L"burst", L"at",
                                               L"pro",   L"cover",  L"e",     L"original"};

// Folders that cameras and phones make, which say nothing about the photo.
constexpr std::wstring_view kCameraFolders[] = {L"dcim", L"camera", L"camera roll"};

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsLetter(wchar_t c) { return c >= L'a' && c <= L'z'; }
bool IsSeparator(wchar_t c) {
    return std::wstring_view(L"_- .~()").find(c) != std::wstring_view::npos;
}

// A-Z to a-z and nothing else: the prefixes and words are ASCII.
std::wstring FoldAscii(std::wstring text) {
    for (wchar_t& c : text)
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c + 32);
    return text;
}

template <size_t N> bool IsOneOf(std::wstring_view text, const std::wstring_view (&list)[N]) {
    for (std::wstring_view entry : list)
        if (text == entry) return true;
    return false;
}

// Separators and tokens of a counting word and digits, at least one digit among them.
bool IsCounterTail(std::wstring_view tail) {
    bool digits = false;
    size_t i = 0;
    while (i < tail.size()) {
        if (IsSeparator(tail[i])) {
            ++i;
            continue;
        }
        size_t wordEnd = i;
        while (wordEnd < tail.size() && IsLetter(tail[wordEnd])) ++wordEnd;
        size_t end = wordEnd;
        while (end < tail.size() && IsDigit(tail[end])) ++end;
        if (end == i) return false; // neither a letter, a digit nor a separator
        if (wordEnd > i && !IsOneOf(tail.substr(i, wordEnd - i), kCounterWords)) return false;
        digits = digits || end > wordEnd;
        i = end;
    }
    return digits;
}

// A folder of a camera's memory card numbered by the camera: 3 digits and 5 letters or digits
// (100CANON, 101_FUJI).
bool IsNumberedCameraFolder(std::wstring_view name) {
    if (name.size() != 8) return false;
    for (size_t i = 0; i < name.size(); ++i) {
        const bool digit = IsDigit(name[i]);
        if (i < 3 ? !digit : !(digit || IsLetter(name[i]) || name[i] == L'_')) return false;
    }
    return true;
}

bool IsCameraFolder(const std::wstring& name) {
    const std::wstring folded = FoldAscii(name);
    return IsOneOf(folded, kCameraFolders) || IsNumberedCameraFolder(folded) ||
           IsCameraCounterName(name);
}

// The nearest folder above the file at `path` that a person named; empty when the walk reaches
// a drive (a name ending in ":"), the start of a network path, or the start of the path.
std::wstring NamedFolder(const std::wstring& path) {
    size_t end = path.rfind(L'\\');
    while (end != std::wstring::npos && end > 0) {
        const size_t slash = path.rfind(L'\\', end - 1);
        const size_t start = slash == std::wstring::npos ? 0 : slash + 1;
        const std::wstring name = path.substr(start, end - start);
        if (name.empty() || name.back() == L':') return {};
        if (!IsCameraFolder(name)) return name;
        end = slash;
    }
    return {};
}

bool IsForbidden(uint32_t c) {
    return c < 0x20 ||
           (c < 0x80 && std::wstring_view(L"\\/:*?\"<>|").find(static_cast<wchar_t>(c)) !=
                            std::wstring_view::npos);
}

// The code point at `i` of `text`, moving `i` past it; U+FFFD for a lone half of a pair or a
// unit that is no code point, which no UTF-8 file could hold.
uint32_t NextCodePoint(const std::wstring& text, size_t& i) {
    const auto c = static_cast<uint32_t>(text[i++]);
    if (c >= 0xD800 && c <= 0xDBFF && i < text.size()) {
        const auto low = static_cast<uint32_t>(text[i]);
        if (low >= 0xDC00 && low <= 0xDFFF) {
            ++i;
            return 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        }
    }
    return (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF ? 0xFFFD : c;
}

void AppendCodePoint(std::wstring& text, uint32_t c) {
    if (sizeof(wchar_t) == 2 && c > 0xFFFF) {
        text += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
        text += static_cast<wchar_t>(0xDC00 + (c & 0x3FF));
    } else {
        text += static_cast<wchar_t>(c);
    }
}

// `title` fit for a file name, by the rules of ImportedFileName.
std::wstring SafeTitle(const std::wstring& title) {
    std::wstring safe;
    size_t units = 0; // UTF-16 units, whatever the width of wchar_t
    bool space = false;
    for (size_t i = 0; i < title.size();) {
        uint32_t c = NextCodePoint(title, i);
        if (IsForbidden(c)) c = L' ';
        if (c == L' ' || (c == L'.' && safe.empty())) {
            space = !safe.empty();
            continue;
        }
        const size_t width = (space ? 1 : 0) + (c > 0xFFFF ? 2 : 1);
        if (units + width > kMaxTitleUnits) break;
        if (space) safe += L' ';
        AppendCodePoint(safe, c);
        units += width;
        space = false;
    }
    while (!safe.empty() && (safe.back() == L' ' || safe.back() == L'.')) safe.pop_back();
    return safe;
}

void HashUnit(uint64_t& hash, uint32_t unit) {
    for (const uint32_t byte : {unit & 0xFF, (unit >> 8) & 0xFF}) {
        hash ^= byte;
        hash *= 0x100000001B3ull;
    }
}

} // namespace

std::wstring SourceIdentifier(const std::wstring& sourcePath) {
    uint64_t hash = 0xCBF29CE484222325ull;
    for (const wchar_t w : LowerCase(sourcePath)) {
        const auto c = static_cast<uint32_t>(w);
        // Where wchar_t holds whole code points, hash the pair that Windows would hold.
        if (c > 0xFFFF && c <= 0x10FFFF) {
            HashUnit(hash, 0xD800 + ((c - 0x10000) >> 10));
            HashUnit(hash, 0xDC00 + (c & 0x3FF));
        } else {
            HashUnit(hash, c);
        }
    }
    constexpr uint64_t kRange = 36ull * 36 * 36 * 36 * 36 * 36 * 36;
    uint64_t value = hash % kRange;
    std::wstring digits(7, L'0');
    for (size_t i = digits.size(); i-- > 0; value /= 36) {
        const auto digit = static_cast<wchar_t>(value % 36);
        digits[i] = static_cast<wchar_t>(digit < 10 ? L'0' + digit : L'a' + digit - 10);
    }
    return digits;
}

bool IsCameraCounterName(const std::wstring& stem) {
    const std::wstring folded = FoldAscii(stem);
    if (IsCounterTail(folded)) return true;
    for (std::wstring_view prefix : kCounterPrefixes)
        if (folded.compare(0, prefix.size(), prefix) == 0 &&
            IsCounterTail(std::wstring_view(folded).substr(prefix.size())))
            return true;
    return false;
}

std::wstring ImportTitle(const std::wstring& sourcePath, const std::wstring& takenText) {
    const size_t slash = sourcePath.rfind(L'\\');
    const std::wstring name =
        slash == std::wstring::npos ? sourcePath : sourcePath.substr(slash + 1);
    const std::wstring stem = name.substr(0, name.rfind(L'.'));
    if (!IsCameraCounterName(stem)) return stem;
    const std::wstring folder = NamedFolder(sourcePath);
    if (folder.empty()) return takenText.empty() ? stem : takenText;
    return takenText.empty() ? folder : folder + L", " + takenText;
}

std::wstring ImportedFileName(const std::wstring& title, const std::wstring& identifier) {
    return SafeTitle(title) + L"-z" + identifier + L".jpg";
}

bool IsImportedFileName(const std::wstring& name) {
    const size_t n = name.size();
    return n >= 13 && name[n - 13] == L'-' && name[n - 12] == L'z' &&
           FoldAscii(name.substr(n - 4)) == L".jpg";
}
