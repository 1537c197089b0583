#include "e2e/saver_registry.h"

#include <vector>

namespace e2e {

namespace {

constexpr wchar_t kSaverKey[] = L"Software\\LumivaneW";

} // namespace

namespace saver_registry {

void Clear() { RegDeleteTreeW(HKEY_CURRENT_USER, kSaverKey); }

bool WriteDword(const wchar_t* name, DWORD value) {
    return RegSetKeyValueW(HKEY_CURRENT_USER, kSaverKey, name, REG_DWORD, &value,
                           sizeof value) == ERROR_SUCCESS;
}

bool WriteString(const wchar_t* name, const std::wstring& value) {
    const DWORD bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    return RegSetKeyValueW(HKEY_CURRENT_USER, kSaverKey, name, REG_SZ, value.c_str(), bytes) ==
           ERROR_SUCCESS;
}

std::optional<DWORD> ReadDword(const wchar_t* name) {
    DWORD value = 0, bytes = sizeof value;
    if (RegGetValueW(HKEY_CURRENT_USER, kSaverKey, name, RRF_RT_REG_DWORD, nullptr, &value,
                     &bytes) != ERROR_SUCCESS)
        return std::nullopt;
    return value;
}

std::optional<std::wstring> ReadString(const wchar_t* name) {
    DWORD bytes = 0;
    if (RegGetValueW(HKEY_CURRENT_USER, kSaverKey, name, RRF_RT_REG_SZ, nullptr, nullptr,
                     &bytes) != ERROR_SUCCESS)
        return std::nullopt;
    std::vector<wchar_t> text(bytes / sizeof(wchar_t) + 1);
    if (RegGetValueW(HKEY_CURRENT_USER, kSaverKey, name, RRF_RT_REG_SZ, nullptr, text.data(),
                     &bytes) != ERROR_SUCCESS)
        return std::nullopt;
    return std::wstring(text.data());
}

} // namespace saver_registry

} // namespace e2e
