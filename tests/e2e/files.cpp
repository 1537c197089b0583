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

} // namespace e2e
