#include "e2e/files.h"

#include <shlobj.h>
#include <wincodec.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "support/wic_image_writer.h"

namespace e2e {

std::optional<std::string> ReadFileBytes(const std::wstring& path) {
    std::ifstream file(path.c_str(), std::ios::binary);
    if (!file) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

bool MakeFolders(const std::wstring& path) {
    const int result = SHCreateDirectoryExW(nullptr, path.c_str(), nullptr);
    return result == ERROR_SUCCESS || result == ERROR_ALREADY_EXISTS;
}

std::wstring FreshFolder(const std::wstring& name) {
    const auto folder = std::filesystem::temp_directory_path() / L"lumivane-e2e" / name;
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    std::filesystem::create_directories(folder, ignored);
    return folder.wstring();
}

std::wstring KnownFolder(const GUID& id) {
    PWSTR path = nullptr;
    std::wstring result;
    if (SUCCEEDED(SHGetKnownFolderPath(id, 0, nullptr, &path))) result = path;
    CoTaskMemFree(path);
    return result;
}

bool WriteJpeg(const std::wstring& path, int width, int height, uint32_t colour) {
    std::vector<BYTE> pixels(static_cast<size_t>(width) * height * 3);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<BYTE>(colour >> i % 3 * 8);
    return WriteImage(path, GUID_ContainerFormatJpeg, GUID_WICPixelFormat24bppBGR, width, height,
                      static_cast<UINT>(width) * 3, pixels.data());
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

bool WriteSaverString(const wchar_t* name, const std::wstring& value) {
    const DWORD bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    return RegSetKeyValueW(HKEY_CURRENT_USER, kSaverKey, name, REG_SZ, value.c_str(), bytes) ==
           ERROR_SUCCESS;
}

bool WriteSaverDword(const wchar_t* name, DWORD value) {
    return RegSetKeyValueW(HKEY_CURRENT_USER, kSaverKey, name, REG_DWORD, &value, sizeof value) ==
           ERROR_SUCCESS;
}

std::optional<std::wstring> ReadSaverString(const wchar_t* name) {
    std::vector<wchar_t> text(32768); // the longest string value there is
    DWORD bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (RegGetValueW(HKEY_CURRENT_USER, kSaverKey, name, RRF_RT_REG_SZ, nullptr, text.data(),
                     &bytes) != ERROR_SUCCESS)
        return std::nullopt;
    return std::wstring(text.data());
}

} // namespace e2e
