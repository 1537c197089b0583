#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

// The options key of the host tests: what OpenSettingsKey opens on the host. It answers like
// the registry calls: a value that doesn't fit the caller's buffer fails the read, names of 256
// characters or more fail the walk, and only an opening for writing makes the key.
struct MemoryRegistry {
    struct Value {
        uint32_t type;
        std::vector<uint8_t> bytes;
    };

    bool keyExists = false;
    std::map<std::wstring, Value> values;
    std::vector<std::wstring> writes; // names of the values set, in order

    void Clear() { *this = MemoryRegistry(); }
    // Stores a value as the companion application would, making the key.
    void Put(const std::wstring& name, uint32_t type, std::vector<uint8_t> bytes);
    void PutString(const std::wstring& name, const std::wstring& text); // with its zero
    // The UTF-16LE bytes of `text`, without a terminating zero.
    static std::vector<uint8_t> Utf16(const std::wstring& text);
    // A stored REG_SZ up to its first zero; nothing if missing or of another type.
    std::optional<std::wstring> String(const std::wstring& name) const;
};

MemoryRegistry& TestRegistry();
