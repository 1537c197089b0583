#include "e2e/saver_registry.h"

#include <vector>

namespace e2e::saver_registry {

namespace {

constexpr wchar_t kSaverKey[] = L"Software\\LumivaneW";

bool Write(const wchar_t* name, DWORD type, const void* data, size_t bytes) {
    return RegSetKeyValueW(HKEY_CURRENT_USER, kSaverKey, name, type, data,
                           static_cast<DWORD>(bytes)) == ERROR_SUCCESS;
}

bool Read(const wchar_t* name, DWORD type, void* data, DWORD bytes) {
    return RegGetValueW(HKEY_CURRENT_USER, kSaverKey, name, type, nullptr, data, &bytes) ==
           ERROR_SUCCESS;
}

} // namespace

void Clear() { RegDeleteTreeW(HKEY_CURRENT_USER, kSaverKey); }

bool WriteDword(const wchar_t* name, DWORD value) {
    return Write(name, REG_DWORD, &value, sizeof value);
}

bool WriteString(const wchar_t* name, const std::wstring& value) {
    return Write(name, REG_SZ, value.c_str(), (value.size() + 1) * sizeof(wchar_t));
}

std::optional<DWORD> ReadDword(const wchar_t* name) {
    DWORD value = 0;
    if (!Read(name, RRF_RT_REG_DWORD, &value, sizeof value)) return std::nullopt;
    return value;
}

std::optional<std::wstring> ReadString(const wchar_t* name) {
    std::vector<wchar_t> text(32768); // the longest string the tests write, with room to spare
    if (!Read(name, RRF_RT_REG_SZ, text.data(), static_cast<DWORD>(text.size() * sizeof(wchar_t))))
        return std::nullopt;
    return std::wstring(text.data());
}

} // namespace e2e::saver_registry
