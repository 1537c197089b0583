// The saver's decoding chain over a frame that counts the rows asked of it: a JPEG decoder reads
// in one direction only, so a chain that asks for rows out of order, or again, decodes the photo
// again each time. Every orientation reads the frame once and turns the photo right.
#include <windows.h>

#include <gtest/gtest.h>
#include <wincodec.h>
#include <wrl/client.h>

#include <algorithm>
#include <vector>

#include "photos/image_decoder.h"
#include "platform/image_decoder_win.h"

namespace {

using Microsoft::WRL::ComPtr;

// Passes everything to `inner` and counts the rows that a decoder reading forward only would
// decode: a request that starts above the rows given so far begins again at the top.
class ForwardDecoder final : public IWICBitmapSource {
public:
    explicit ForwardDecoder(IWICBitmapSource* source) : inner(source) {}
    UINT decoded = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = id == IID_IUnknown || id == IID_IWICBitmapSource ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE; // lives on the stack: no count of references
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetSize(UINT* width, UINT* height) override {
        return inner->GetSize(width, height);
    }
    HRESULT STDMETHODCALLTYPE GetPixelFormat(WICPixelFormatGUID* format) override {
        return inner->GetPixelFormat(format);
    }
    HRESULT STDMETHODCALLTYPE GetResolution(double* x, double* y) override {
        return inner->GetResolution(x, y);
    }
    HRESULT STDMETHODCALLTYPE CopyPalette(IWICPalette* palette) override {
        return inner->CopyPalette(palette);
    }
    HRESULT STDMETHODCALLTYPE CopyPixels(const WICRect* rect, UINT stride, UINT size,
                                         BYTE* pixels) override {
        UINT width = 0, height = 0;
        inner->GetSize(&width, &height);
        const UINT first = rect ? UINT(rect->Y) : 0, end = rect ? first + rect->Height : height;
        if (first < next) next = 0;
        decoded += end > next ? end - next : 0;
        next = std::max(next, end);
        return inner->CopyPixels(rect, stride, size, pixels);
    }

private:
    IWICBitmapSource* inner;
    UINT next = 0; // the row the decoder would give next
};

TEST(DecodeChain, EveryOrientationReadsTheFrameOnceAndTurnsThePhoto) {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    ComPtr<IWICImagingFactory> factory;
    ASSERT_TRUE(SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                           IID_PPV_ARGS(&factory))));
    // A landscape frame of 600 x 400, white with its top left quarter red: where the red lands
    // tells how the photo was turned.
    constexpr UINT kWidth = 600, kHeight = 400;
    std::vector<BYTE> bgr(kWidth * kHeight * 3, 0xFF);
    for (UINT y = 0; y < kHeight / 2; ++y)
        for (UINT x = 0; x < kWidth / 2; ++x)
            bgr[(y * kWidth + x) * 3] = bgr[(y * kWidth + x) * 3 + 1] = 0;
    ComPtr<IWICBitmap> frame;
    ASSERT_TRUE(SUCCEEDED(factory->CreateBitmapFromMemory(kWidth, kHeight,
                                                          GUID_WICPixelFormat24bppBGR, kWidth * 3,
                                                          UINT(bgr.size()), bgr.data(), &frame)));
    // The flip-rotator's transform of each orientation tag, and the quarter the red lands in:
    // 0 top left, 1 top right, 2 bottom left, 3 bottom right.
    const std::pair<UINT, int> cases[] = {
        {WICBitmapTransformRotate0, 0},
        {WICBitmapTransformFlipHorizontal, 1},
        {WICBitmapTransformRotate180, 3},
        {WICBitmapTransformFlipVertical, 2},
        {WICBitmapTransformRotate90 | WICBitmapTransformFlipHorizontal, 0},
        {WICBitmapTransformRotate90, 1},
        {WICBitmapTransformRotate270 | WICBitmapTransformFlipHorizontal, 3},
        {WICBitmapTransformRotate270, 2},
    };
    for (const auto& [transform, red] : cases) {
        const bool turned = transform & WICBitmapTransformRotate90;
        const int width = turned ? 200 : 300, height = turned ? 300 : 200;
        const auto geometry = PlanDecode(kWidth, kHeight, transform, width, height, false);
        ASSERT_TRUE(geometry);
        ForwardDecoder decoder(frame.Get());
        const ComPtr<IWICBitmapSource> chain =
            BuildDecodeChain(factory.Get(), &decoder, transform, *geometry);
        ASSERT_TRUE(chain) << transform;
        std::vector<UINT> pixels(size_t(width) * height);
        const HRESULT copied = chain->CopyPixels(nullptr, width * 4, UINT(pixels.size() * 4),
                                                 reinterpret_cast<BYTE*>(pixels.data()));
        EXPECT_LE(decoder.decoded, kHeight) << transform;
        // Wine's flip-rotator turns nothing but upside down, and says so for the rest.
        if (copied == E_NOTIMPL) continue;
        ASSERT_TRUE(SUCCEEDED(copied)) << transform;
        const auto redAt = [&](int quarter) {
            const int x = (quarter & 1 ? 3 : 1) * width / 4, y = (quarter & 2 ? 3 : 1) * height / 4;
            return pixels[size_t(y) * width + x] & 0xFFFFFF; // no alpha
        };
        for (int quarter = 0; quarter < 4; ++quarter)
            EXPECT_EQ(redAt(quarter), quarter == red ? 0xFF0000u : 0xFFFFFFu)
                << transform << " quarter " << quarter;
    }
    CoUninitialize();
}

} // namespace
