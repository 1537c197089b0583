#include "e2e/screen_capture.h"

#include <wincodec.h>
#include <wrl/client.h>

#include <cstring>

namespace e2e {

using Microsoft::WRL::ComPtr;

RECT DesktopRect() {
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    return {left, top, left + GetSystemMetrics(SM_CXVIRTUALSCREEN),
            top + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
}

Image CaptureScreen(const RECT& rect) {
    Image image;
    image.width = rect.right - rect.left;
    image.height = rect.bottom - rect.top;
    if (image.width <= 0 || image.height <= 0) return image;

    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = image.width;
    info.bmiHeader.biHeight = -image.height; // top row first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;

    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (memory && bitmap) {
        HGDIOBJ old = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, image.width, image.height, screen, rect.left, rect.top,
               SRCCOPY | CAPTUREBLT);
        GdiFlush();
        image.pixels.resize(static_cast<size_t>(image.width) * image.height);
        std::memcpy(image.pixels.data(), bits, image.pixels.size() * sizeof(uint32_t));
        for (uint32_t& pixel : image.pixels) pixel &= 0x00FFFFFF;
        SelectObject(memory, old);
    }
    if (bitmap) DeleteObject(bitmap);
    if (memory) DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return image;
}

Image CaptureDesktop() { return CaptureScreen(DesktopRect()); }

bool SavePng(const Image& image, const std::wstring& path) {
    const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    bool saved = false;
    {
        ComPtr<IWICImagingFactory> factory;
        ComPtr<IWICStream> stream;
        ComPtr<IWICBitmapEncoder> encoder;
        ComPtr<IWICBitmapFrameEncode> frame;
        WICPixelFormatGUID format = GUID_WICPixelFormat32bppBGR;
        const UINT stride = static_cast<UINT>(image.width) * 4;
        const UINT size = stride * static_cast<UINT>(image.height);
        saved =
            SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                       IID_PPV_ARGS(&factory))) &&
            SUCCEEDED(factory->CreateStream(&stream)) &&
            SUCCEEDED(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE)) &&
            SUCCEEDED(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoder)) &&
            SUCCEEDED(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache)) &&
            SUCCEEDED(encoder->CreateNewFrame(&frame, nullptr)) &&
            SUCCEEDED(frame->Initialize(nullptr)) &&
            SUCCEEDED(frame->SetSize(static_cast<UINT>(image.width),
                                     static_cast<UINT>(image.height))) &&
            SUCCEEDED(frame->SetPixelFormat(&format)) &&
            SUCCEEDED(frame->WritePixels(static_cast<UINT>(image.height), stride, size,
                                         reinterpret_cast<BYTE*>(const_cast<uint32_t*>(
                                             image.pixels.data())))) &&
            SUCCEEDED(frame->Commit()) && SUCCEEDED(encoder->Commit());
    }
    if (SUCCEEDED(apartment)) CoUninitialize();
    return saved;
}

uint8_t Red(uint32_t pixel) { return static_cast<uint8_t>(pixel >> 16); }
uint8_t Green(uint32_t pixel) { return static_cast<uint8_t>(pixel >> 8); }
uint8_t Blue(uint32_t pixel) { return static_cast<uint8_t>(pixel); }

} // namespace e2e
