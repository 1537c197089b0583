#include "platform/d2d_surface_win.h"

#include <cfloat>
#include <string>
#include <utility>
#include <vector>

using Microsoft::WRL::ComPtr;

namespace {

// EndDraw's word for a lost device. Spelled out here because the SDK headers disagree on its
// type (one of them makes it unsigned, which would never equal an HRESULT).
constexpr HRESULT kRecreateTarget = static_cast<HRESULT>(0x8899000CL);
constexpr float kDpi = 96.0f;

// The format of every bitmap and offscreen target: photos arrive premultiplied.
constexpr D2D1_PIXEL_FORMAT kBitmapFormat{DXGI_FORMAT_B8G8R8A8_UNORM,
                                          D2D1_ALPHA_MODE_PREMULTIPLIED};

D2D1_COLOR_F ToD2d(const ColorF& color) { return {color.r, color.g, color.b, color.a}; }
D2D1_POINT_2F ToD2d(PointF point) { return {point.x, point.y}; }
D2D1_RECT_F ToD2d(const RectF& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }
D2D1_MATRIX_3X2_F ToD2d(const Matrix3x2F& m) {
    D2D1_MATRIX_3X2_F result;
    result._11 = m.m11;
    result._12 = m.m12;
    result._21 = m.m21;
    result._22 = m.m22;
    result._31 = m.dx;
    result._32 = m.dy;
    return result;
}

// The device objects behind the portable handles. A surface only ever gets back handles that a
// surface of this file made, so the downcasts below are safe.
class D2dBitmap final : public SurfaceBitmap {
public:
    explicit D2dBitmap(ComPtr<ID2D1Bitmap> value) : bitmap(std::move(value)) {}
    ComPtr<ID2D1Bitmap> bitmap;
};

class D2dBrush final : public SurfaceBrush {
public:
    explicit D2dBrush(ComPtr<ID2D1Brush> value) : brush(std::move(value)) {
        brush.As(&solid); // stays null for a gradient
    }
    void SetColor(const ColorF& color) override {
        if (solid) solid->SetColor(ToD2d(color));
    }
    ComPtr<ID2D1Brush> brush;
    ComPtr<ID2D1SolidColorBrush> solid;
};

class D2dLayer final : public SurfaceLayer {
public:
    explicit D2dLayer(ComPtr<ID2D1Layer> value) : layer(std::move(value)) {}
    ComPtr<ID2D1Layer> layer;
};

// The enumerators of the portable header carry DirectWrite's own numbers.
class DWriteFormat final : public TextFormat {
public:
    explicit DWriteFormat(ComPtr<IDWriteTextFormat> value) : format(std::move(value)) {}
    void SetTextAlignment(TextAlignment alignment) override {
        format->SetTextAlignment(static_cast<DWRITE_TEXT_ALIGNMENT>(alignment));
    }
    void SetParagraphAlignment(ParagraphAlignment alignment) override {
        format->SetParagraphAlignment(static_cast<DWRITE_PARAGRAPH_ALIGNMENT>(alignment));
    }
    void SetWordWrapping(WordWrapping wrapping) override {
        format->SetWordWrapping(static_cast<DWRITE_WORD_WRAPPING>(wrapping));
    }
    ComPtr<IDWriteTextFormat> format;
};

ID2D1Bitmap* Get(const SurfaceBitmap& bitmap) {
    return static_cast<const D2dBitmap&>(bitmap).bitmap.Get();
}
ID2D1Brush* Get(const SurfaceBrush& brush) {
    return static_cast<const D2dBrush&>(brush).brush.Get();
}

// What window and offscreen targets have in common: everything but the window state and the
// offscreen picture. Each keeps the run's DirectWrite factory for its text formats.
class D2dSurface : public DrawingSurface {
public:
    D2dSurface(ComPtr<ID2D1RenderTarget> renderTarget, ComPtr<IDWriteFactory> dwrite)
        : target(std::move(renderTarget)), dwriteFactory(std::move(dwrite)) {}

    void BeginDraw() override { target->BeginDraw(); }
    void Clear(const ColorF& color) override {
        const D2D1_COLOR_F value = ToD2d(color);
        target->Clear(&value);
    }
    EndDrawResult EndDraw() override {
        const HRESULT result = target->EndDraw(nullptr, nullptr);
        if (result == kRecreateTarget) return EndDrawResult::RecreateTarget;
        return SUCCEEDED(result) ? EndDrawResult::Ok : EndDrawResult::Failed;
    }
    void SetTransform(const Matrix3x2F& transform) override {
        const D2D1_MATRIX_3X2_F value = ToD2d(transform);
        target->SetTransform(&value);
    }
    void UseGrayscaleTextAntialiasing() override {
        target->SetTextAntialiasMode(D2D1_TEXT_ANTIALIAS_MODE_GRAYSCALE);
    }
    uint32_t MaximumBitmapSize() override { return target->GetMaximumBitmapSize(); }

    std::unique_ptr<SurfaceBitmap> CreateBitmap(uint32_t width, uint32_t height,
                                                const uint32_t* pixels) override;
    std::unique_ptr<SurfaceBrush> CreateSolidColorBrush(const ColorF& color) override;
    std::unique_ptr<SurfaceBrush> CreateLinearGradientBrush(PointF start, PointF end,
                                                            const GradientStop* stops,
                                                            uint32_t count) override;
    std::unique_ptr<SurfaceLayer> CreateLayer() override;
    std::unique_ptr<DrawingSurface> CreateCompatibleRenderTarget(SizeF size, uint32_t pixelWidth,
                                                                 uint32_t pixelHeight) override;
    std::unique_ptr<TextFormat> CreateTextFormat(const TextFormatParams& font) override;

    void DrawBitmap(const SurfaceBitmap& bitmap, const RectF& destination, float opacity,
                    const RectF* source) override;
    void FillRectangle(const RectF& rectangle, const SurfaceBrush& brush) override {
        const D2D1_RECT_F rect = ToD2d(rectangle);
        target->FillRectangle(&rect, Get(brush));
    }
    void DrawString(std::wstring_view text, const TextFormat& format, const RectF& rectangle,
                    const SurfaceBrush& brush) override;
    void PushLayer(SurfaceLayer& layer, float opacity, const SurfaceBrush* opacityBrush) override;
    void PopLayer() override { target->PopLayer(); }

protected:
    ComPtr<ID2D1RenderTarget> target;
    ComPtr<IDWriteFactory> dwriteFactory;
};

class HwndSurface final : public D2dSurface {
public:
    HwndSurface(ComPtr<ID2D1HwndRenderTarget> window, ComPtr<IDWriteFactory> dwrite)
        : D2dSurface(window, std::move(dwrite)), hwndTarget(std::move(window)) {}
    bool IsOccluded() override {
        return (hwndTarget->CheckWindowState() & D2D1_WINDOW_STATE_OCCLUDED) != 0;
    }
    std::unique_ptr<SurfaceBitmap> GetBitmap() override { return nullptr; }

private:
    ComPtr<ID2D1HwndRenderTarget> hwndTarget;
};

class OffscreenSurface final : public D2dSurface {
public:
    OffscreenSurface(ComPtr<ID2D1BitmapRenderTarget> offscreen, ComPtr<IDWriteFactory> dwrite)
        : D2dSurface(offscreen, std::move(dwrite)), bitmapTarget(std::move(offscreen)) {}
    bool IsOccluded() override { return false; }
    std::unique_ptr<SurfaceBitmap> GetBitmap() override {
        ComPtr<ID2D1Bitmap> bitmap;
        if (FAILED(bitmapTarget->GetBitmap(&bitmap)) || !bitmap) return nullptr;
        return std::make_unique<D2dBitmap>(std::move(bitmap));
    }

private:
    ComPtr<ID2D1BitmapRenderTarget> bitmapTarget;
};

std::unique_ptr<SurfaceBitmap> D2dSurface::CreateBitmap(uint32_t width, uint32_t height,
                                                        const uint32_t* pixels) {
    if (width > UINT32_MAX / 4) return nullptr; // the row pitch would not fit
    const D2D1_BITMAP_PROPERTIES properties{kBitmapFormat, kDpi, kDpi};
    ComPtr<ID2D1Bitmap> bitmap;
    if (FAILED(target->CreateBitmap(D2D1::SizeU(width, height), pixels, 4 * width, &properties,
                                    &bitmap))) {
        return nullptr;
    }
    return std::make_unique<D2dBitmap>(std::move(bitmap));
}

std::unique_ptr<SurfaceBrush> D2dSurface::CreateSolidColorBrush(const ColorF& color) {
    const D2D1_COLOR_F value = ToD2d(color);
    ComPtr<ID2D1SolidColorBrush> brush;
    if (FAILED(target->CreateSolidColorBrush(&value, nullptr, &brush))) return nullptr;
    return std::make_unique<D2dBrush>(std::move(brush));
}

std::unique_ptr<SurfaceBrush> D2dSurface::CreateLinearGradientBrush(PointF start, PointF end,
                                                                    const GradientStop* stops,
                                                                    uint32_t count) {
    std::vector<D2D1_GRADIENT_STOP> d2dStops;
    d2dStops.reserve(count);
    for (uint32_t i = 0; i < count; ++i) {
        d2dStops.push_back({stops[i].position, ToD2d(stops[i].color)});
    }
    ComPtr<ID2D1GradientStopCollection> collection;
    if (FAILED(target->CreateGradientStopCollection(d2dStops.data(), count, D2D1_GAMMA_2_2,
                                                    D2D1_EXTEND_MODE_CLAMP, &collection))) {
        return nullptr;
    }
    const D2D1_LINEAR_GRADIENT_BRUSH_PROPERTIES line{ToD2d(start), ToD2d(end)};
    ComPtr<ID2D1LinearGradientBrush> brush;
    if (FAILED(target->CreateLinearGradientBrush(&line, nullptr, collection.Get(), &brush))) {
        return nullptr;
    }
    return std::make_unique<D2dBrush>(std::move(brush));
}

std::unique_ptr<SurfaceLayer> D2dSurface::CreateLayer() {
    ComPtr<ID2D1Layer> layer;
    if (FAILED(target->CreateLayer(nullptr, &layer))) return nullptr;
    return std::make_unique<D2dLayer>(std::move(layer));
}

std::unique_ptr<DrawingSurface>
D2dSurface::CreateCompatibleRenderTarget(SizeF size, uint32_t pixelWidth, uint32_t pixelHeight) {
    const D2D1_SIZE_F units{size.width, size.height};
    const D2D1_SIZE_U pixels{pixelWidth, pixelHeight};
    ComPtr<ID2D1BitmapRenderTarget> offscreen;
    if (FAILED(target->CreateCompatibleRenderTarget(&units, &pixels, &kBitmapFormat,
                                                    D2D1_COMPATIBLE_RENDER_TARGET_OPTIONS_NONE,
                                                    &offscreen))) {
        return nullptr;
    }
    return std::make_unique<OffscreenSurface>(std::move(offscreen), dwriteFactory);
}

std::unique_ptr<TextFormat> D2dSurface::CreateTextFormat(const TextFormatParams& font) {
    if (!dwriteFactory) return nullptr;
    const std::wstring family(font.family); // DirectWrite wants it terminated
    ComPtr<IDWriteTextFormat> format;
    if (FAILED(dwriteFactory->CreateTextFormat(
            family.c_str(), nullptr, static_cast<DWRITE_FONT_WEIGHT>(font.weight),
            static_cast<DWRITE_FONT_STYLE>(font.style),
            static_cast<DWRITE_FONT_STRETCH>(font.stretch), font.size, L"", &format))) {
        return nullptr;
    }
    return std::make_unique<DWriteFormat>(std::move(format));
}

void D2dSurface::DrawBitmap(const SurfaceBitmap& bitmap, const RectF& destination, float opacity,
                            const RectF* source) {
    const D2D1_RECT_F dest = ToD2d(destination);
    D2D1_RECT_F sourceRect{};
    if (source) sourceRect = ToD2d(*source);
    target->DrawBitmap(Get(bitmap), &dest, opacity, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR,
                       source ? &sourceRect : nullptr);
}

void D2dSurface::DrawString(std::wstring_view text, const TextFormat& format,
                            const RectF& rectangle, const SurfaceBrush& brush) {
    const D2D1_RECT_F rect = ToD2d(rectangle);
    // DrawText is a macro of the Windows headers; it names this method too, consistently.
    target->DrawText(text.data(), static_cast<UINT32>(text.size()),
                     static_cast<const DWriteFormat&>(format).format.Get(), &rect, Get(brush),
                     D2D1_DRAW_TEXT_OPTIONS_NONE, DWRITE_MEASURING_MODE_NATURAL);
}

void D2dSurface::PushLayer(SurfaceLayer& layer, float opacity, const SurfaceBrush* opacityBrush) {
    D2D1_LAYER_PARAMETERS parameters{};
    parameters.contentBounds = {-FLT_MAX, -FLT_MAX, FLT_MAX, FLT_MAX};
    parameters.geometricMask = nullptr;
    parameters.maskAntialiasMode = D2D1_ANTIALIAS_MODE_PER_PRIMITIVE;
    parameters.maskTransform = ToD2d(Matrix3x2F{});
    parameters.opacity = opacity;
    parameters.opacityBrush = opacityBrush ? Get(*opacityBrush) : nullptr;
    parameters.layerOptions = D2D1_LAYER_OPTIONS_NONE;
    target->PushLayer(&parameters, static_cast<D2dLayer&>(layer).layer.Get());
}

// The system folder, however long it is.
std::wstring SystemFolder() {
    std::wstring folder(MAX_PATH, L'\0');
    UINT length = GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
    if (length >= folder.size()) {
        folder.resize(length);
        length = GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
        if (length >= folder.size()) return {};
    }
    folder.resize(length);
    return folder;
}

// GetProcAddress gives a generic function pointer; going through void* keeps the compiler from
// warning about the cast to the real signature.
template <typename Function> Function Entry(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

using D2d1CreateFactoryFn = HRESULT(WINAPI*)(D2D1_FACTORY_TYPE, REFIID, const D2D1_FACTORY_OPTIONS*,
                                             void**);
using DWriteCreateFactoryFn = HRESULT(WINAPI*)(DWRITE_FACTORY_TYPE, REFIID, IUnknown**);

} // namespace

bool LoadDrawingFactories(std::shared_ptr<DrawingFactories>& pair) {
    const std::wstring folder = SystemFolder();
    if (folder.empty()) return false;
    // Loaded by full path from the system folder, never from beside the program, and kept for
    // the whole run: the factories and every object they make live in these libraries.
    const HMODULE d2d1 = LoadLibraryW((folder + L"\\d2d1.dll").c_str());
    if (!d2d1) return false;
    const HMODULE dwrite = LoadLibraryW((folder + L"\\dwrite.dll").c_str());
    if (!dwrite) return false;
    const auto createD2d = Entry<D2d1CreateFactoryFn>(d2d1, "D2D1CreateFactory");
    const auto createDWrite = Entry<DWriteCreateFactoryFn>(dwrite, "DWriteCreateFactory");
    if (!createD2d || !createDWrite) return false;

    auto factories = std::make_shared<DrawingFactories>();
    if (FAILED(createD2d(D2D1_FACTORY_TYPE_SINGLE_THREADED, IID_ID2D1Factory, nullptr,
                         reinterpret_cast<void**>(factories->d2dFactory.GetAddressOf())))) {
        return false;
    }
    if (FAILED(
            createDWrite(DWRITE_FACTORY_TYPE_SHARED, __uuidof(IDWriteFactory),
                         reinterpret_cast<IUnknown**>(factories->dwriteFactory.GetAddressOf())))) {
        return false;
    }
    pair = std::move(factories);
    return true;
}

std::unique_ptr<DrawingSurface> CreateHwndSurface(const DrawingFactories& factories, HWND hwnd,
                                                  int32_t width, int32_t height, bool primary) {
    if (!factories.d2dFactory || width < 0 || height < 0) return nullptr;
    const D2D1_RENDER_TARGET_PROPERTIES properties{
        D2D1_RENDER_TARGET_TYPE_DEFAULT,
        {DXGI_FORMAT_B8G8R8A8_UNORM, D2D1_ALPHA_MODE_IGNORE},
        kDpi,
        kDpi,
        D2D1_RENDER_TARGET_USAGE_NONE,
        D2D1_FEATURE_LEVEL_DEFAULT};
    // The first window waits for the display's refresh in EndDraw and so paces the loop; the
    // others present at once and never hold it up.
    const D2D1_HWND_RENDER_TARGET_PROPERTIES windowProperties{
        hwnd, D2D1::SizeU(static_cast<UINT32>(width), static_cast<UINT32>(height)),
        primary ? D2D1_PRESENT_OPTIONS_NONE : D2D1_PRESENT_OPTIONS_IMMEDIATELY};
    ComPtr<ID2D1HwndRenderTarget> target;
    if (FAILED(factories.d2dFactory->CreateHwndRenderTarget(&properties, &windowProperties,
                                                            &target))) {
        return nullptr;
    }
    return std::make_unique<HwndSurface>(std::move(target), factories.dwriteFactory);
}
