#include "e2e/files.h"

#include <shlobj.h>
#include <wincodec.h>
#include <wrl/client.h>

#include <vector>

namespace e2e {

std::optional<std::string> ReadFileBytes(const std::wstring& path) {
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    std::string bytes;
    char buffer[4096];
    DWORD read = 0;
    while (ReadFile(file, buffer, sizeof buffer, &read, nullptr) && read > 0)
        bytes.append(buffer, read);
    CloseHandle(file);
    return bytes;
}

bool MakeFolders(const std::wstring& path) {
    const int result = SHCreateDirectoryExW(nullptr, path.c_str(), nullptr);
    return result == ERROR_SUCCESS || result == ERROR_ALREADY_EXISTS ||
           result == ERROR_FILE_EXISTS;
}

bool WriteJpeg(const std::wstring& path, int width, int height, uint32_t colour) {
    using Microsoft::WRL::ComPtr;
    const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    bool written = false;
    {
        const UINT stride = static_cast<UINT>(width) * 3;
        std::vector<BYTE> pixels(static_cast<size_t>(stride) * height);
        for (size_t i = 0; i < pixels.size(); i += 3) {
            pixels[i] = static_cast<BYTE>(colour);
            pixels[i + 1] = static_cast<BYTE>(colour >> 8);
            pixels[i + 2] = static_cast<BYTE>(colour >> 16);
        }
        ComPtr<IWICImagingFactory> factory;
        ComPtr<IWICStream> stream;
        ComPtr<IWICBitmapEncoder> encoder;
        ComPtr<IWICBitmapFrameEncode> frame;
        WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
        written = SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr,
                                             CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&factory))) &&
                  SUCCEEDED(factory->CreateStream(&stream)) &&
                  SUCCEEDED(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE)) &&
                  SUCCEEDED(factory->CreateEncoder(GUID_ContainerFormatJpeg, nullptr, &encoder)) &&
                  SUCCEEDED(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache)) &&
                  SUCCEEDED(encoder->CreateNewFrame(&frame, nullptr)) &&
                  SUCCEEDED(frame->Initialize(nullptr)) &&
                  SUCCEEDED(frame->SetSize(static_cast<UINT>(width), static_cast<UINT>(height))) &&
                  SUCCEEDED(frame->SetPixelFormat(&format)) &&
                  IsEqualGUID(format, GUID_WICPixelFormat24bppBGR) &&
                  SUCCEEDED(frame->WritePixels(static_cast<UINT>(height), stride,
                                               static_cast<UINT>(pixels.size()), pixels.data())) &&
                  SUCCEEDED(frame->Commit()) && SUCCEEDED(encoder->Commit());
    }
    if (SUCCEEDED(apartment)) CoUninitialize();
    return written;
}

std::wstring KnownFolder(const GUID& id) {
    PWSTR path = nullptr;
    std::wstring result;
    if (SUCCEEDED(SHGetKnownFolderPath(id, 0, nullptr, &path))) result = path;
    CoTaskMemFree(path);
    return result;
}

} // namespace e2e
