// One photo of the import: decode, shrink, turn upright, encode. The decoder hands its rows over
// in strips of about a megabyte, and the downscaler keeps only the rows that its filter still
// needs, so what the import holds itself is the copy plus a little. A JPEG decoder that can
// reduce in its DCT (Windows' can; Wine's can't) decodes at the smallest of 1/2, 1/4 and 1/8 that
// still covers the copy, which also spares its own memory.
#include "platform/companion/photo_import_win.h"

#include <wrl/client.h>

#include <algorithm>
#include <utility>

#include "companion/downscaler.h"
#include "companion/jpeg_exif.h"
#include "companion/pixel_orientation.h"
#include "platform/companion/shared_read_stream_win.h"
#include "platform/companion/wic_source_transform_win.h"
#include "platform/image_decoder_win.h"
#include "platform/win_handles.h"

using Microsoft::WRL::ComPtr;

namespace {

constexpr float kJpegQuality = 0.9f;
constexpr uint32_t kStripBytes = 1u << 20;

// Frame 0 of a source with what was read about it; `size` is in the frame's own axes.
struct SourceFrame {
    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    ImageSize size;
    uint32_t transform = 0;
    JpegExif exif; // read from the file's bytes, where the metadata reader finds nothing
};

// Opens frame 0, unless the file claims a size beyond what the import decodes: in its header,
// checked before a decoder sees the file, or in the decoder's answer.
bool OpenFrame(IWICImagingFactory* factory, const std::wstring& path, SourceFrame& source) {
    const ComPtr<IStream> stream = OpenSharedReadStream(path);
    if (!stream) return false;
    const ReadAt read = [&](uint64_t offset, uint8_t* buffer, size_t size) -> size_t {
        LARGE_INTEGER at{};
        at.QuadPart = static_cast<LONGLONG>(offset);
        ULONG done = 0;
        if (FAILED(stream->Seek(at, STREAM_SEEK_SET, nullptr)) ||
            FAILED(stream->Read(buffer, static_cast<ULONG>(size), &done))) {
            return 0;
        }
        return done;
    };
    const std::optional<ImageSize> claimed = ReadClaimedSize(read);
    source.exif = ReadJpegExif(read);
    UINT width = 0, height = 0;
    if ((claimed && AbsurdSize(*claimed)) || FAILED(stream->Seek({}, STREAM_SEEK_SET, nullptr)) ||
        FAILED(factory->CreateDecoderFromStream(stream.Get(), nullptr,
                                                WICDecodeMetadataCacheOnDemand, &source.decoder)) ||
        FAILED(source.decoder->GetFrame(0, &source.frame)) ||
        FAILED(source.frame->GetSize(&width, &height)) || AbsurdSize({width, height})) {
        return false;
    }
    source.size = {width, height};
    source.transform = ReadOrientation(source.frame.Get());
    if (source.transform == 0) source.transform = OrientationTransform(source.exif.orientation);
    return true;
}

// The date taken: the EXIF text in a JPEG or a TIFF, else the property system's time (UTC, which
// goes back to the machine's local time, as a camera's clock shows it).
TakenDate ReadTakenDate(IWICBitmapFrameDecode* frame) {
    ComPtr<IWICMetadataQueryReader> reader;
    if (FAILED(frame->GetMetadataQueryReader(&reader))) return {};
    for (const wchar_t* name : {L"/app1/ifd/exif/{ushort=36867}", L"/ifd/exif/{ushort=36867}"}) {
        PropVariantValue value;
        if (SUCCEEDED(reader->GetMetadataByName(name, value.Get())) && (*value).vt == VT_LPSTR &&
            (*value).pszVal) {
            return ParseExifDate((*value).pszVal);
        }
    }
    PropVariantValue value;
    SYSTEMTIME utc{}, local{};
    if (FAILED(reader->GetMetadataByName(L"System.Photo.DateTaken", value.Get())) ||
        (*value).vt != VT_FILETIME || !FileTimeToSystemTime(&(*value).filetime, &utc) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) {
        return {};
    }
    TakenDate date;
    date.year = local.wYear;
    date.month = static_cast<uint8_t>(local.wMonth);
    date.day = static_cast<uint8_t>(local.wDay);
    date.hour = static_cast<uint8_t>(local.wHour);
    date.minute = static_cast<uint8_t>(local.wMinute);
    date.second = static_cast<uint8_t>(local.wSecond);
    return date;
}

// Copies the rows of a rectangle of the decoded picture into a buffer of the given stride.
using CopyRows = std::function<HRESULT(const WICRect& rows, UINT stride, UINT size, BYTE* buffer)>;

// Pulls a decoded picture of `size`, in pixels of `channels` bytes (3 BGR, or 4 premultiplied
// BGRA whose alpha is dropped: transparent parts come out black, as the saver's background),
// through the downscaler to `target`.
bool PullDownscaled(ImageSize size, uint32_t channels, const CopyRows& copy, ImageSize target,
                    PixelImage& result) {
    const UINT stride = size.width * channels;
    if (channels == 3 && size.width == target.width && size.height == target.height) {
        // Nothing to shrink: the rows go straight into the copy.
        return result.Allocate(size, 3) &&
               SUCCEEDED(copy({0, 0, static_cast<INT>(size.width), static_cast<INT>(size.height)},
                              stride, stride * size.height, result.bytes.get()));
    }
    Downscaler downscaler;
    if (!downscaler.Start(size, target, 3)) return false;
    const uint32_t rows = std::clamp(kStripBytes / stride, 1u, size.height);
    const auto strip = TryAllocate<BYTE>(static_cast<size_t>(stride) * rows);
    if (!strip) return false;
    for (uint32_t y = 0; y < size.height; y += rows) {
        const uint32_t count = std::min(rows, size.height - y);
        const WICRect rect{0, static_cast<INT>(y), static_cast<INT>(size.width),
                           static_cast<INT>(count)};
        if (FAILED(copy(rect, stride, stride * count, strip.get()))) return false;
        for (uint32_t r = 0; r < count; ++r) {
            BYTE* row = strip.get() + static_cast<size_t>(r) * stride;
            if (channels == 4) {
                for (uint32_t x = 0; x < size.width; ++x) std::copy_n(row + x * 4, 3, row + x * 3);
            }
            downscaler.AddRow(row);
        }
    }
    result = std::move(downscaler.Output());
    return true;
}

// The decoder's own reduction when it has one that still covers `target`: the smallest of 1/8,
// 1/4 and 1/2 whose size it confirms, in BGR. False when there is none.
bool PullReduced(IWICBitmapFrameDecode* frame, ImageSize size, ImageSize target,
                 PixelImage& result) {
    ComPtr<IWICBitmapSourceTransform> reducer;
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    BOOL plain = FALSE;
    if (FAILED(frame->QueryInterface(IID_PPV_ARGS(&reducer))) ||
        FAILED(reducer->GetClosestPixelFormat(&format)) ||
        !IsEqualGUID(format, GUID_WICPixelFormat24bppBGR) ||
        FAILED(reducer->DoesSupportTransform(WICBitmapTransformRotate0, &plain)) || !plain) {
        return false;
    }
    for (const uint32_t divisor : {8u, 4u, 2u}) {
        UINT width = (size.width + divisor - 1) / divisor;
        UINT height = (size.height + divisor - 1) / divisor;
        if (width < target.width || height < target.height ||
            FAILED(reducer->GetClosestSize(&width, &height)) || width < target.width ||
            height < target.height || width >= size.width || height >= size.height) {
            continue;
        }
        const CopyRows copy = [&](const WICRect& rows, UINT stride, UINT bytes, BYTE* buffer) {
            return reducer->CopyPixels(&rows, width, height, &format, WICBitmapTransformRotate0,
                                       stride, bytes, buffer);
        };
        return PullDownscaled({width, height}, 3, copy, target, result);
    }
    return false;
}

// Whether pixels of `format` may be transparent; when that can't be told, they may.
bool MayBeTransparent(IWICImagingFactory* factory, const WICPixelFormatGUID& format) {
    ComPtr<IWICComponentInfo> component;
    ComPtr<IWICPixelFormatInfo2> info;
    BOOL transparent = TRUE;
    if (SUCCEEDED(factory->CreateComponentInfo(format, &component)) &&
        SUCCEEDED(component.As(&info))) {
        info->SupportsTransparency(&transparent);
    }
    return transparent;
}

// The whole frame through a format converter, in BGR, or premultiplied BGRA where it may be
// transparent.
bool PullConverted(IWICImagingFactory* factory, IWICBitmapFrameDecode* frame, ImageSize size,
                   ImageSize target, PixelImage& result) {
    WICPixelFormatGUID format{};
    ComPtr<IWICFormatConverter> converter;
    if (FAILED(frame->GetPixelFormat(&format))) return false;
    const bool alpha = MayBeTransparent(factory, format);
    if (FAILED(factory->CreateFormatConverter(&converter)) ||
        FAILED(converter->Initialize(
            frame, alpha ? GUID_WICPixelFormat32bppPBGRA : GUID_WICPixelFormat24bppBGR,
            WICBitmapDitherTypeNone, nullptr, 0.0, WICBitmapPaletteTypeCustom))) {
        return false;
    }
    const CopyRows copy = [&](const WICRect& rows, UINT stride, UINT bytes, BYTE* buffer) {
        return converter->CopyPixels(&rows, stride, bytes, buffer);
    };
    return PullDownscaled(size, alpha ? 4 : 3, copy, target, result);
}

// Encodes BGR pixels as a JPEG file of its own, without metadata; gives the file's size.
bool WriteJpeg(IWICImagingFactory* factory, const std::wstring& path, const PixelImage& picture,
               uint64_t& bytes) {
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
    ComPtr<IPropertyBag2> options;
    PROPBAG2 option{};
    option.pstrName = const_cast<LPOLESTR>(L"ImageQuality");
    VARIANT quality{}; // zeroed, as VariantInit would, without importing oleaut32 for it
    quality.vt = VT_R4;
    quality.fltVal = kJpegQuality;
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    const UINT stride = static_cast<UINT>(picture.Stride());
    if (FAILED(factory->CreateStream(&stream)) ||
        FAILED(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE)) ||
        FAILED(factory->CreateEncoder(GUID_ContainerFormatJpeg, nullptr, &encoder)) ||
        FAILED(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache)) ||
        FAILED(encoder->CreateNewFrame(&frame, &options)) ||
        FAILED(options->Write(1, &option, &quality)) || FAILED(frame->Initialize(options.Get())) ||
        FAILED(frame->SetSize(picture.size.width, picture.size.height)) ||
        FAILED(frame->SetPixelFormat(&format)) ||
        !IsEqualGUID(format, GUID_WICPixelFormat24bppBGR) ||
        FAILED(frame->WritePixels(picture.size.height, stride, stride * picture.size.height,
                                  picture.bytes.get())) ||
        FAILED(frame->Commit()) || FAILED(encoder->Commit())) {
        return false;
    }
    STATSTG stat{};
    if (FAILED(stream->Stat(&stat, STATFLAG_NONAME))) return false;
    bytes = stat.cbSize.QuadPart;
    return true;
}

// Decodes, shrinks and turns the frame upright into `upright`, `copy` big.
bool DecodeUpright(IWICImagingFactory* factory, const SourceFrame& source, ImageSize copy,
                   PixelImage& upright) {
    // The frame is shrunk in its own axes, before it is turned.
    const ImageSize target = OrientedSize(copy.width, copy.height, source.transform);
    PixelImage scaled;
    if (!PullReduced(source.frame.Get(), source.size, target, scaled) &&
        !PullConverted(factory, source.frame.Get(), source.size, target, scaled)) {
        return false;
    }
    if (source.transform == 0) {
        upright = std::move(scaled);
        return true;
    }
    return OrientPixels(scaled, source.transform, upright);
}

// The import of one photo, but for the clean-up of a failure.
bool WriteCopy(const std::wstring& source, const std::wstring& destination,
               const CopySizeFor& copySize, ImportedPhotoInfo& info, IWICImagingFactory* factory) {
    PixelImage upright;
    {
        SourceFrame frame;
        if (!OpenFrame(factory, source, frame)) return false;
        info.upright = OrientedSize(frame.size.width, frame.size.height, frame.transform);
        info.taken = ReadTakenDate(frame.frame.Get());
        if (!info.taken.Known()) info.taken = ParseExifDate(frame.exif.dateTaken);
        const ImageSize asked = copySize ? copySize(info.upright) : info.upright;
        const ImageSize copy{std::clamp(asked.width, 1u, info.upright.width),
                             std::clamp(asked.height, 1u, info.upright.height)};
        // The decoder goes before the copy is encoded: under Wine it holds the whole frame.
        if (!DecodeUpright(factory, frame, copy, upright)) return false;
    }
    info.written = upright.size;
    return WriteJpeg(factory, destination, upright, info.writtenBytes);
}

} // namespace

bool ImportPhoto(const std::wstring& source, const std::wstring& destination,
                 const CopySizeFor& copySize, ImportedPhotoInfo& info,
                 IWICImagingFactory* factory) {
    info = {};
    ComPtr<IWICImagingFactory> made;
    if (!factory && SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory1, nullptr,
                                               CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&made)))) {
        factory = made.Get();
    }
    if (factory && WriteCopy(source, destination, copySize, info, factory)) return true;
    DeleteFileW(destination.c_str());
    return false;
}
