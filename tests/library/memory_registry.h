#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "library/settings_key.h"

// The options key of the host tests, always there. It answers like the registry: a value too big
// for the caller's buffer fails the read, and a name of 256 characters or more fails the walk.
struct MemoryRegistry {
    std::map<std::wstring, std::pair<uint32_t, std::vector<uint8_t>>> values; // type, bytes
    std::vector<std::wstring> writes; // names of the values set, in order

    // Stores a value as the companion application would.
    void Put(const std::wstring& name, uint32_t type, std::vector<uint8_t> bytes) {
        values[name] = {type, std::move(bytes)};
    }
    void PutString(const std::wstring& name, const std::wstring& text) {
        Put(name, 1, Utf16(text + L'\0'));
    }
    static std::vector<uint8_t> Utf16(const std::wstring& text) {
        std::vector<uint8_t> bytes;
        for (const wchar_t c : text) bytes.insert(bytes.end(), {uint8_t(c), uint8_t(c >> 8)});
        return bytes;
    }
    // The host build's OpenSettingsKey, for every kind of access.
    std::unique_ptr<SettingsKey> OpenKey(KeyAccess access);
};

// Cleared by every test that uses it.
MemoryRegistry& TestRegistry();
