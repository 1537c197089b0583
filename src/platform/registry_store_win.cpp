// The options key in the registry of the current user.
#include <windows.h>

#include "library/companion.h"
#include "library/settings_key.h"

namespace {

// Reads open the key with KEY_READ, WriteString with KEY_READ | KEY_WRITE, the rewrite of paths
// with KEY_QUERY_VALUE | KEY_SET_VALUE.
constexpr REGSAM kReadAccess = 0x20019;
constexpr REGSAM kReadWriteAccess = 0x2001F;
constexpr REGSAM kRewriteAccess = 3;
static_assert(kReadAccess == KEY_READ && kReadWriteAccess == (KEY_READ | KEY_WRITE) &&
              kRewriteAccess == (KEY_QUERY_VALUE | KEY_SET_VALUE));

// Room for a value name when walking the key: longer names are passed over.
constexpr DWORD kNameCapacity = 256;

class RegistrySettingsKey : public SettingsKey {
public:
    explicit RegistrySettingsKey(HKEY opened) : key(opened) {}
    ~RegistrySettingsKey() override { RegCloseKey(key); }
    RegistrySettingsKey(const RegistrySettingsKey&) = delete;
    RegistrySettingsKey& operator=(const RegistrySettingsKey&) = delete;

    ValueQuery Query(const std::wstring& name, void* buffer, uint32_t capacity) override {
        DWORD type = 0;
        DWORD size = capacity;
        const LSTATUS status =
            RegQueryValueExW(key, name.c_str(), nullptr, &type, static_cast<BYTE*>(buffer), &size);
        return {status == ERROR_SUCCESS, type, size};
    }

    void Set(const std::wstring& name, uint32_t type, const void* data, uint32_t bytes) override {
        RegSetValueExW(key, name.c_str(), 0, type, static_cast<const BYTE*>(data), bytes);
    }

    ValueEntry Enumerate(uint32_t index) override {
        wchar_t name[kNameCapacity] = {};
        DWORD nameLength = kNameCapacity;
        DWORD type = 0;
        DWORD size = 0;
        const LSTATUS status =
            RegEnumValueW(key, index, name, &nameLength, nullptr, &type, nullptr, &size);
        ValueEntry entry;
        entry.status = status;
        if (status == ERROR_SUCCESS) entry.name.assign(name, nameLength);
        entry.type = type;
        entry.size = size;
        return entry;
    }

private:
    HKEY key;
};

} // namespace

std::unique_ptr<SettingsKey> OpenSettingsKey(KeyAccess access) {
    // Reads and writes trust the handle alone: null after the call means no key.
    HKEY key = nullptr;
    switch (access) {
    case KeyAccess::Read:
        RegOpenKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, kReadAccess, &key);
        break;
    case KeyAccess::ReadWrite:
        RegCreateKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                        kReadWriteAccess, nullptr, &key, nullptr);
        break;
    case KeyAccess::Rewrite:
        if (RegOpenKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, kRewriteAccess, &key) !=
            ERROR_SUCCESS)
            return nullptr;
        break;
    }
    if (!key) return nullptr;
    return std::make_unique<RegistrySettingsKey>(key);
}
