// Decoding through the Windows Imaging Component. Each call makes its own factory and chain of
// objects and lets all of them go before it returns; nothing is shared between calls or threads.
#include "platform/image_decoder_win.h"

#include <wrl/client.h>

#include "photos/image_decoder.h"
#include "platform/win_handles.h"

using Microsoft::WRL::ComPtr;

namespace {

// Frame 0 of a file with the objects that reach it. Members go in reverse order: frame, decoder,
// then the factory, and with it the file.
struct OpenFrame {
    ComPtr<IWICImagingFactory> factory;
    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    UINT width = 0;
    UINT height = 0;
    uint32_t transform = 0;

    // The decoder is chosen by the file's content, whatever its name says.
    bool Open(const std::wstring& path) {
        if (FAILED(CoCreateInstance(CLSID_WICImagingFactory1, nullptr, CLSCTX_INPROC_SERVER,
                                    IID_IWICImagingFactory, &factory)) ||
            FAILED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                      WICDecodeMetadataCacheOnDemand, &decoder)) ||
            FAILED(decoder->GetFrame(0, &frame)) || FAILED(frame->GetSize(&width, &height)) ||
            width == 0 || height == 0) {
            return false;
        }
        transform = ReadOrientation(frame.Get());
        return true;
    }
};

} // namespace

ComPtr<IWICBitmapSource> BuildDecodeChain(IWICImagingFactory* factory, IWICBitmapSource* frame,
                                          uint32_t transform, const DecodeGeometry& geometry) {
    ComPtr<IWICBitmapScaler> scaler;
    if (FAILED(factory->CreateBitmapScaler(&scaler)) ||
        FAILED(scaler->Initialize(frame, geometry.scaler.width, geometry.scaler.height,
                                  WICBitmapInterpolationModeFant))) {
        return nullptr;
    }
    ComPtr<IWICBitmapSource> upright = scaler;
    if (transform != 0) {
        // The flip-rotator asks its source for one row or column at a time, in its own order:
        // pulled straight from the scaler, each of those requests would decode the frame again
        // from its top. The scaled photo is made once into memory, and turned there.
        ComPtr<IWICBitmap> scaled;
        ComPtr<IWICBitmapFlipRotator> rotator;
        if (FAILED(factory->CreateBitmapFromSource(scaler.Get(), WICBitmapCacheOnLoad, &scaled)) ||
            FAILED(factory->CreateBitmapFlipRotator(&rotator)) ||
            FAILED(rotator->Initialize(scaled.Get(),
                                       static_cast<WICBitmapTransformOptions>(transform)))) {
            return nullptr;
        }
        upright = rotator;
    }
    ComPtr<IWICFormatConverter> converter;
    if (FAILED(factory->CreateFormatConverter(&converter)) ||
        FAILED(converter->Initialize(upright.Get(), GUID_WICPixelFormat32bppPBGRA,
                                     WICBitmapDitherTypeNone, nullptr, 0.0,
                                     WICBitmapPaletteTypeCustom))) {
        return nullptr;
    }
    return converter;
}

uint32_t ReadOrientation(IWICBitmapFrameDecode* frame) {
    ComPtr<IWICMetadataQueryReader> reader;
    if (FAILED(frame->GetMetadataQueryReader(&reader))) return 0;
    // The tag's place in a JPEG and in a TIFF, then the property system's name, which the
    // decoders of the other containers (HEIF, JPEG XR, ...) answer.
    for (const wchar_t* name :
         {L"/app1/ifd/{ushort=274}", L"/ifd/{ushort=274}", L"System.Photo.Orientation"}) {
        PropVariantValue value;
        if (SUCCEEDED(reader->GetMetadataByName(name, value.Get())) && (*value).vt == VT_UI2)
            return OrientationTransform((*value).uiVal);
    }
    return 0;
}

bool DecodeScaled(const std::wstring& path, int32_t width, int32_t height, bool cover, void* pixels,
                  uint32_t stride) {
    if (width < 1 || height < 1) return false;
    OpenFrame opened;
    if (!opened.Open(path)) return false;
    const auto geometry =
        PlanDecode(opened.width, opened.height, opened.transform, width, height, cover);
    if (!geometry) return false;
    const ComPtr<IWICBitmapSource> chain =
        BuildDecodeChain(opened.factory.Get(), opened.frame.Get(), opened.transform, *geometry);
    if (!chain) return false;

    const WICRect source{static_cast<INT>(geometry->sourceX), static_cast<INT>(geometry->sourceY),
                         static_cast<INT>(geometry->copied.width),
                         static_cast<INT>(geometry->copied.height)};
    const UINT size = (geometry->copied.height - 1) * stride + geometry->copied.width * 4;
    BYTE* first = static_cast<BYTE*>(pixels) +
                  static_cast<size_t>(geometry->destinationY) * stride +
                  static_cast<size_t>(geometry->destinationX) * 4;
    return SUCCEEDED(chain->CopyPixels(&source, stride, size, first));
}

bool ReadOrientedSize(const std::wstring& path, ImageSize& size) {
    OpenFrame opened;
    if (!opened.Open(path)) return false;
    size = OrientedSize(opened.width, opened.height, opened.transform);
    return true;
}

bool LoadDib(const std::wstring& path, int32_t width, int32_t height, bool cover, HBITMAP& bitmap) {
    if (width < 1 || height < 1) return false;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height; // top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    HBITMAP made = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!made) return false;
    const uint32_t stride = static_cast<uint32_t>(width) * 4;
    ZeroMemory(bits, static_cast<size_t>(height) * stride);
    if (!DecodeScaled(path, width, height, cover, bits, stride)) {
        DeleteObject(made);
        return false;
    }
    GdiFlush();
    if (bitmap) DeleteObject(bitmap);
    bitmap = made;
    return true;
}
