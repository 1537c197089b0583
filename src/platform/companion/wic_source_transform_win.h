#pragma once

#include <windows.h>

#include <wincodec.h>

// The decoder's own scaling (a JPEG decoder's reduction to 1/2, 1/4 or 1/8 in the DCT), which
// MinGW's wincodec.h doesn't declare. The layout is the Windows SDK's.
#ifndef __IWICBitmapSourceTransform_INTERFACE_DEFINED__
#define __IWICBitmapSourceTransform_INTERFACE_DEFINED__
MIDL_INTERFACE("3b16811b-6a43-4ec9-b713-3d5a0c13b940")
IWICBitmapSourceTransform : public IUnknown {
public:
    virtual HRESULT STDMETHODCALLTYPE CopyPixels(
        const WICRect* rect, UINT width, UINT height, WICPixelFormatGUID* format,
        WICBitmapTransformOptions transform, UINT stride, UINT bufferSize, BYTE* buffer) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetClosestSize(UINT * width, UINT * height) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetClosestPixelFormat(WICPixelFormatGUID * format) = 0;
    virtual HRESULT STDMETHODCALLTYPE DoesSupportTransform(WICBitmapTransformOptions transform,
                                                           BOOL * supported) = 0;
};
__CRT_UUID_DECL(IWICBitmapSourceTransform, 0x3b16811b, 0x6a43, 0x4ec9, 0xb7, 0x13, 0x3d, 0x5a, 0x0c,
                0x13, 0xb9, 0x40)
#endif
