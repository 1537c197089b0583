#pragma once

#include <cstdint>
#include <memory>
#include <string>

// The options key as the settings logic sees it: the few registry calls that it makes, with their
// raw answers. Windows implements it on HKEY_CURRENT_USER\Software\LumivaneW; the host tests keep
// the key in memory.

// The value types that the logic tells apart.
inline constexpr uint32_t kRegistryString = 1; // REG_SZ
inline constexpr uint32_t kRegistryDword = 4;  // REG_DWORD
inline constexpr uint32_t kRegistryMultiString = 7; // REG_MULTI_SZ
// The status that ends a walk over the values (ERROR_NO_MORE_ITEMS).
inline constexpr int32_t kNoMoreValues = 259;

// The answer of one query of a value.
struct ValueQuery {
    bool ok = false;   // the call succeeded
    uint32_t type = 0; // the value's type
    uint32_t size = 0; // the value's length in bytes
};

// One step of a walk over the values of the key.
struct ValueEntry {
    int32_t status = 0; // 0, kNoMoreValues, or another failure (a name of 256 characters or more)
    std::wstring name;
    uint32_t type = 0;
    uint32_t size = 0; // bytes of data
};

// The key, opened for one operation and closed when this object goes.
class SettingsKey {
public:
    virtual ~SettingsKey() = default;
    // Reads `name`. With a null `buffer` only the type and the size are asked for; otherwise the
    // value is copied into `capacity` bytes, and a value that doesn't fit fails the call.
    virtual ValueQuery Query(const std::wstring& name, void* buffer, uint32_t capacity) = 0;
    // Stores `bytes` bytes of `data` as `name` with `type`; the outcome isn't reported.
    virtual void Set(const std::wstring& name, uint32_t type, const void* data, uint32_t bytes) = 0;
    // The name, type and data size of the value at `index`.
    virtual ValueEntry Enumerate(uint32_t index) = 0;
};

// How an operation opens the key.
enum class KeyAccess {
    Read,      // reading only; a missing key stays missing
    ReadWrite, // reading and writing; the key is made when it is missing
    Rewrite,   // querying and setting values; a missing key stays missing
};

// Opens the options key, or gives null when it isn't available. Only KeyAccess::ReadWrite brings
// the key into being.
std::unique_ptr<SettingsKey> OpenSettingsKey(KeyAccess access);
