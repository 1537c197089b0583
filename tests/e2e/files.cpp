#include "e2e/files.h"

#include <shlobj.h>
#include <wincodec.h>

#include <vector>

#include "support/wic_image_writer.h"

namespace e2e {

bool MakeFolders(const std::wstring& path) {
    const int result = SHCreateDirectoryExW(nullptr, path.c_str(), nullptr);
    return result == ERROR_SUCCESS || result == ERROR_ALREADY_EXISTS;
}

std::wstring KnownFolder(const GUID& id) {
    PWSTR path = nullptr;
    std::wstring result;
    if (SUCCEEDED(SHGetKnownFolderPath(id, 0, nullptr, &path))) result = path;
    CoTaskMemFree(path);
    return result;
}

bool WriteImage(const std::wstring& path, const GUID& container, GUID format, int width,
                int height, UINT stride, const void* pixels) {
    const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const bool written = WriteWicImage(path, container, format, width, height, stride, pixels);
    if (SUCCEEDED(apartment)) CoUninitialize();
    return written;
}

constexpr wchar_t kSaverKey[] = L"Software\\LumivaneW";

void ClearSaverKey() { RegDeleteTreeW(HKEY_CURRENT_USER, kSaverKey); }

std::optional<std::wstring> ReadSaverString(const wchar_t* name) {
    std::vector<wchar_t> text(32768); // the longest string value there is
    DWORD bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (RegGetValueW(HKEY_CURRENT_USER, kSaverKey, name, RRF_RT_REG_SZ, nullptr, text.data(),
                     &bytes) != ERROR_SUCCESS)
        return std::nullopt;
    return std::wstring(text.data());
}

} // namespace e2e
