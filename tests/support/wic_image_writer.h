#pragma once

// Writes test pictures through WIC: the photos of the end-to-end show.
#include <windows.h>

#include <objbase.h>
#include <wincodec.h>
#include <wrl/client.h>

#include <string>

// Encodes `height` rows of `stride` bytes in the WIC pixel `format` into a `container` file
// (PNG, JPEG). The calling thread has a COM apartment.
inline bool WriteWicImage(const std::wstring& path, const GUID& container, GUID format, int width,
                          int height, UINT stride, const void* pixels) {
    using Microsoft::WRL::ComPtr;
    const GUID asked = format;
    ComPtr<IWICImagingFactory> factory;
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
    // SetPixelFormat answers with the encoder's nearest format; only the one asked for will do.
    return SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_PPV_ARGS(&factory))) &&
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
