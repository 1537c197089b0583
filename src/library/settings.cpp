#include "library/settings.h"

#include <utility>
#include <vector>

#include "library/settings_key.h"
#include "library/system_text.h"

namespace {

// Registry strings are UTF-16LE: one 16-bit unit per wide character, read and written byte by
// byte so that the host, with its wider wchar_t, sees the same characters.
std::wstring TextUpToZero(const std::vector<uint8_t>& bytes) {
    std::wstring text;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto unit = static_cast<wchar_t>(bytes[i] | (bytes[i + 1] << 8));
        if (unit == 0) break;
        text.push_back(unit);
    }
    return text;
}

// The bytes of `text` with its terminating zero: 2 x characters + 2.
std::vector<uint8_t> StringBytes(const std::wstring& text) {
    std::vector<uint8_t> bytes;
    bytes.reserve(text.size() * 2 + 2);
    for (const wchar_t c : text) {
        bytes.push_back(static_cast<uint8_t>(c & 0xFF));
        bytes.push_back(static_cast<uint8_t>((c >> 8) & 0xFF));
    }
    bytes.insert(bytes.end(), {0, 0});
    return bytes;
}

// The bytes of a REG_MULTI_SZ: each string with its zero, then one more zero.
std::vector<uint8_t> MultiStringBytes(const std::vector<std::wstring>& list) {
    std::vector<uint8_t> bytes;
    for (const std::wstring& text : list) {
        if (text.empty()) continue;
        const auto one = StringBytes(text);
        bytes.insert(bytes.end(), one.begin(), one.end());
    }
    bytes.insert(bytes.end(), {0, 0});
    return bytes;
}

void SetString(SettingsKey& key, const std::wstring& name, const std::wstring& value) {
    const auto bytes = StringBytes(value);
    key.Set(name, kRegistryString, bytes.data(), static_cast<uint32_t>(bytes.size()));
}

bool IsBoundary(wchar_t c) { return c == L'\\' || c == L'|' || c == L'\n'; }

} // namespace

int32_t Settings::ReadDword(const wchar_t* name, int32_t fallback) {
    const auto key = OpenSettingsKey(KeyAccess::Read);
    if (!key) return fallback;
    uint8_t buffer[4] = {};
    const ValueQuery query = key->Query(name, buffer, sizeof buffer);
    if (!query.ok || query.type != kRegistryDword) return fallback;
    return static_cast<int32_t>(uint32_t{buffer[0]} | uint32_t{buffer[1]} << 8 |
                                uint32_t{buffer[2]} << 16 | uint32_t{buffer[3]} << 24);
}

std::wstring Settings::ReadString(const wchar_t* name) {
    const auto key = OpenSettingsKey(KeyAccess::Read);
    if (!key) return {};
    // First the type and the size, then the data into a zeroed buffer one character longer, so
    // that a value stored without its terminating zero still ends in one. A value that grew
    // between the two queries fails the second.
    const ValueQuery probe = key->Query(name, nullptr, 0);
    if (!probe.ok || probe.type != kRegistryString) return {};
    std::vector<uint8_t> buffer((probe.size / 2 + 1) * 2, 0);
    if (!key->Query(name, buffer.data(), probe.size).ok) return {};
    return TextUpToZero(buffer);
}

void Settings::WriteString(const wchar_t* name, const std::wstring& value) {
    const auto key = OpenSettingsKey(KeyAccess::ReadWrite);
    if (key) SetString(*key, name, value);
}

void Settings::WriteDword(const wchar_t* name, int32_t value) {
    const auto key = OpenSettingsKey(KeyAccess::ReadWrite);
    if (!key) return;
    const auto bits = static_cast<uint32_t>(value);
    const uint8_t bytes[4] = {static_cast<uint8_t>(bits), static_cast<uint8_t>(bits >> 8),
                              static_cast<uint8_t>(bits >> 16), static_cast<uint8_t>(bits >> 24)};
    key->Set(name, kRegistryDword, bytes, sizeof bytes);
}

std::optional<std::vector<std::wstring>> Settings::ReadStrings(const wchar_t* name) {
    const auto key = OpenSettingsKey(KeyAccess::Read);
    if (!key) return std::nullopt;
    const ValueQuery probe = key->Query(name, nullptr, 0);
    if (!probe.ok || probe.type != kRegistryMultiString) return std::nullopt;
    std::vector<uint8_t> buffer((probe.size / 2 + 1) * 2, 0);
    if (!key->Query(name, buffer.data(), probe.size).ok) return std::nullopt;
    // Strings end at each zero; a missing final zero is made up by the zeroed buffer's last one.
    std::vector<std::wstring> list;
    std::wstring text;
    for (size_t i = 0; i + 1 < buffer.size(); i += 2) {
        const auto unit = static_cast<wchar_t>(buffer[i] | (buffer[i + 1] << 8));
        if (unit != 0) {
            text.push_back(unit);
        } else if (!text.empty()) {
            list.push_back(std::move(text));
            text.clear();
        }
    }
    return list;
}

void Settings::WriteStrings(const wchar_t* name, const std::vector<std::wstring>& list) {
    const auto key = OpenSettingsKey(KeyAccess::ReadWrite);
    if (!key) return;
    const auto bytes = MultiStringBytes(list);
    key->Set(name, kRegistryMultiString, bytes.data(), static_cast<uint32_t>(bytes.size()));
}

void Settings::ReplacePathInValues(const std::wstring& oldPath, const std::wstring& newPath) {
    const auto key = OpenSettingsKey(KeyAccess::Rewrite);
    if (!key) return;
    const std::wstring needle = LowerCase(oldPath);
    // Read everything first: the key isn't written while its values are being walked.
    std::vector<std::pair<std::wstring, std::wstring>> changes;
    for (uint32_t index = 0;; ++index) {
        const ValueEntry entry = key->Enumerate(index);
        if (entry.status == kNoMoreValues) break;
        if (entry.status != 0 || entry.type != kRegistryString || entry.size < 2) continue;
        std::vector<uint8_t> buffer(entry.size / 2 * 2, 0);
        const ValueQuery query =
            key->Query(entry.name, buffer.data(), static_cast<uint32_t>(buffer.size()));
        if (!query.ok) continue;
        const std::wstring text = TextUpToZero(buffer);
        std::wstring result;
        if (ReplacePathInText(text, LowerCase(text), needle, newPath, result))
            changes.emplace_back(entry.name, std::move(result));
    }
    for (const auto& [name, value] : changes) SetString(*key, name, value);
}

bool ReplacePathInText(const std::wstring& text, const std::wstring& lower,
                       const std::wstring& needle, const std::wstring& newPath,
                       std::wstring& result) {
    result.clear();
    if (needle.empty()) return false;
    size_t copied = 0;
    for (size_t pos = lower.find(needle); pos != std::wstring::npos;
         pos = lower.find(needle, pos + 1)) {
        // Only a whole folder name counts: "...\LumivaneWork" doesn't hold "...\LumivaneW".
        const size_t end = pos + needle.size();
        if (end < lower.size() && !IsBoundary(lower[end])) continue;
        if (pos > copied) result.append(text, copied, pos - copied);
        result += newPath;
        copied = end;
    }
    if (copied == 0) return false;
    if (copied < text.size()) result.append(text, copied, std::wstring::npos);
    return true;
}
