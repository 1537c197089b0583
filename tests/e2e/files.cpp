#include "e2e/files.h"

#include <shlobj.h>
#include <wincodec.h>
#include <wrl/client.h>

#include <fstream>
#include <iterator>
#include <vector>

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
    using Microsoft::WRL::ComPtr;
    const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    bool written = false;
    {
        const GUID asked = format;
        ComPtr<IWICImagingFactory> factory;
        ComPtr<IWICStream> stream;
        ComPtr<IWICBitmapEncoder> encoder;
        ComPtr<IWICBitmapFrameEncode> frame;
        // SetPixelFormat answers with the encoder's nearest format; only the one asked for will do.
        written = SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr,
                                             CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&factory))) &&
                  SUCCEEDED(factory->CreateStream(&stream)) &&
                  SUCCEEDED(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE)) &&
                  SUCCEEDED(factory->CreateEncoder(container, nullptr, &encoder)) &&
                  SUCCEEDED(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache)) &&
                  SUCCEEDED(encoder->CreateNewFrame(&frame, nullptr)) &&
                  SUCCEEDED(frame->Initialize(nullptr)) &&
                  SUCCEEDED(frame->SetSize(static_cast<UINT>(width), static_cast<UINT>(height))) &&
                  SUCCEEDED(frame->SetPixelFormat(&format)) && IsEqualGUID(format, asked) &&
                  SUCCEEDED(frame->WritePixels(static_cast<UINT>(height), stride,
                                               stride * static_cast<UINT>(height),
                                               static_cast<BYTE*>(const_cast<void*>(pixels)))) &&
                  SUCCEEDED(frame->Commit()) && SUCCEEDED(encoder->Commit());
    }
    if (SUCCEEDED(apartment)) CoUninitialize();
    return written;
}

} // namespace e2e
