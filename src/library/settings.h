#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The options of the current user: stateless operations on the one registry key. Each opens the
// key for itself and closes it before it returns. No failure is reported: a read gives its
// fallback, a write leaves the store as it was.
struct Settings {
    // The REG_DWORD `name` as a signed number; `fallback` when the key or the value is missing, or
    // the value is of another type or longer than 4 bytes.
    static int32_t ReadDword(const wchar_t* name, int32_t fallback);
    // The REG_SZ `name` up to its first zero character; empty when it is missing or of another
    // type, so an empty string and a missing value look the same.
    static std::wstring ReadString(const wchar_t* name);
    // Stores `value` as a REG_SZ with its terminating zero, making the key if needed.
    static void WriteString(const wchar_t* name, const std::wstring& value);
    // Stores `value` as a REG_DWORD, making the key if needed. Only the companion writes numbers.
    static void WriteDword(const wchar_t* name, int32_t value);
    // The REG_MULTI_SZ `name` as its list of non-empty strings; nothing when the value is missing
    // or of another type, so that an empty list and a missing value can be told apart.
    static std::optional<std::vector<std::wstring>> ReadStrings(const wchar_t* name);
    // Stores `list` as a REG_MULTI_SZ, making the key if needed. Empty strings can't be stored in
    // that form and are left out.
    static void WriteStrings(const wchar_t* name, const std::vector<std::wstring>& list);
    // Replaces `oldPath` by `newPath` in every REG_SZ value of the key, ignoring case, wherever
    // it is followed by the end of the text, a backslash, "|" or a line feed. Values are read
    // first and written afterwards; a value without a match isn't written.
    static void ReplacePathInValues(const std::wstring& oldPath, const std::wstring& newPath);
};

// The text of `text` with `needle` replaced by `newPath` at every place where `lower` (`text`
// lowered) holds `needle` followed by a boundary; false when no place counted.
bool ReplacePathInText(const std::wstring& text, const std::wstring& lower,
                       const std::wstring& needle, const std::wstring& newPath,
                       std::wstring& result);
