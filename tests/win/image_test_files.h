#pragma once

// Photo files for the Windows tests, written through WIC: bands of colour that survive JPEG
// compression and scaling, so that placement and crop can be read back from decoded pixels.
#include <windows.h>

#include <objbase.h>
#include <wincodec.h>
#include <wrl/client.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace image_test {

// The colour (0xRRGGBB) of pixel (x, y) of a picture being written.
using Painter = std::function<uint32_t(int x, int y)>;

// Writes a `width` x `height` picture in `container` (GUID_ContainerFormatJpeg or ...Png). The
// calling thread has a COM apartment.
inline bool WriteImage(const std::wstring& path, const GUID& container, int width, int height,
                       const Painter& paint) {
    using Microsoft::WRL::ComPtr;
    const UINT stride = static_cast<UINT>(width) * 3;
    std::vector<BYTE> pixels(static_cast<size_t>(stride) * height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const uint32_t colour = paint(x, y);
            BYTE* p = &pixels[y * stride + x * 3];
            p[0] = static_cast<BYTE>(colour);
            p[1] = static_cast<BYTE>(colour >> 8);
            p[2] = static_cast<BYTE>(colour >> 16);
        }
    }
    ComPtr<IWICImagingFactory> factory;
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    return SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_PPV_ARGS(&factory))) &&
           SUCCEEDED(factory->CreateStream(&stream)) &&
           SUCCEEDED(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE)) &&
           SUCCEEDED(factory->CreateEncoder(container, nullptr, &encoder)) &&
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

constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kBlue = 0x0000FF;

// 400 x 300: rows 0 to 79 red, 220 to 299 blue, white between.
inline uint32_t Bands(int, int y) { return y < 80 ? kRed : y >= 220 ? kBlue : kWhite; }

// The bytes of a file; empty if it can't be read.
inline std::string ReadBytes(const std::wstring& path) {
    std::string bytes;
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return bytes;
    char buffer[4096];
    DWORD read = 0;
    while (ReadFile(file, buffer, sizeof buffer, &read, nullptr) && read > 0)
        bytes.append(buffer, read);
    CloseHandle(file);
    return bytes;
}

// Replaces the file at `path` with `bytes`.
inline bool WriteBytes(const std::wstring& path, const std::string& bytes) {
    HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    const bool ok = bytes.empty() || (WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()),
                                                &written, nullptr) &&
                                      written == bytes.size());
    CloseHandle(file);
    return ok;
}

// A fresh folder of its own under the temporary folder, with a trailing backslash.
inline std::wstring TestFolder(const wchar_t* name) {
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    std::wstring folder = std::wstring(temp) + name + L"\\";
    CreateDirectoryW(folder.c_str(), nullptr);
    return folder;
}

} // namespace image_test
