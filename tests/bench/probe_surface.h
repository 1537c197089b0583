#pragma once

#include <memory>
#include <utility>

#include "effects/drawing_surface.h"

// A drawing surface for the benchmarks. With a real surface it forwards every call to it; without
// one it does nothing and makes empty objects, so that only the caller's own code is timed.
// Either way it counts the photo uploads (CreateBitmap) and the bitmaps drawn.
class ProbeSurface final : public DrawingSurface {
    struct Empty final : SurfaceBitmap, SurfaceBrush, SurfaceLayer, TextFormat {
        void SetColor(const ColorF&) override {}
        void SetTextAlignment(TextAlignment) override {}
        void SetParagraphAlignment(ParagraphAlignment) override {}
        void SetWordWrapping(WordWrapping) override {}
    };
    template <typename T, typename Make> std::unique_ptr<T> Made(Make make) {
        if (in) return make(*in);
        return std::make_unique<Empty>();
    }

public:
    explicit ProbeSurface(std::unique_ptr<DrawingSurface> real = nullptr) : in(std::move(real)) {}

    int uploads = 0;
    int bitmapsDrawn = 0;

    void BeginDraw() override { if (in) in->BeginDraw(); }
    void Clear(const ColorF& c) override { if (in) in->Clear(c); }
    EndDrawResult EndDraw() override { return in ? in->EndDraw() : EndDrawResult::Ok; }
    void SetTransform(const Matrix3x2F& m) override { if (in) in->SetTransform(m); }
    bool IsOccluded() override { return in && in->IsOccluded(); }
    void UseGrayscaleTextAntialiasing() override { if (in) in->UseGrayscaleTextAntialiasing(); }
    uint32_t MaximumBitmapSize() override { return in ? in->MaximumBitmapSize() : 16384; }
    std::unique_ptr<SurfaceBitmap> CreateBitmap(uint32_t w, uint32_t h, const uint32_t* p) override {
        ++uploads;
        return Made<SurfaceBitmap>([&](DrawingSurface& s) { return s.CreateBitmap(w, h, p); });
    }
    std::unique_ptr<SurfaceBrush> CreateSolidColorBrush(const ColorF& c) override {
        return Made<SurfaceBrush>([&](DrawingSurface& s) { return s.CreateSolidColorBrush(c); });
    }
    std::unique_ptr<SurfaceBrush> CreateLinearGradientBrush(PointF a, PointF b,
                                                            const GradientStop* g, uint32_t n) override {
        return Made<SurfaceBrush>(
            [&](DrawingSurface& s) { return s.CreateLinearGradientBrush(a, b, g, n); });
    }
    std::unique_ptr<SurfaceLayer> CreateLayer() override {
        return Made<SurfaceLayer>([](DrawingSurface& s) { return s.CreateLayer(); });
    }
    std::unique_ptr<DrawingSurface> CreateCompatibleRenderTarget(SizeF z, uint32_t w,
                                                                 uint32_t h) override {
        auto target = in ? in->CreateCompatibleRenderTarget(z, w, h) : nullptr;
        if (in && !target) return nullptr;
        return std::make_unique<ProbeSurface>(std::move(target));
    }
    std::unique_ptr<SurfaceBitmap> GetBitmap() override {
        return Made<SurfaceBitmap>([](DrawingSurface& s) { return s.GetBitmap(); });
    }
    std::unique_ptr<TextFormat> CreateTextFormat(const TextFormatParams& f) override {
        return Made<TextFormat>([&](DrawingSurface& s) { return s.CreateTextFormat(f); });
    }
    void DrawBitmap(const SurfaceBitmap& b, const RectF& d, float o, const RectF* r) override {
        ++bitmapsDrawn;
        if (in) in->DrawBitmap(b, d, o, r);
    }
    void FillRectangle(const RectF& r, const SurfaceBrush& b) override {
        if (in) in->FillRectangle(r, b);
    }
    void DrawString(std::wstring_view t, const TextFormat& f, const RectF& r,
                    const SurfaceBrush& b) override {
        if (in) in->DrawString(t, f, r, b);
    }
    void PushLayer(SurfaceLayer& l, float o, const SurfaceBrush* b) override {
        if (in) in->PushLayer(l, o, b);
    }
    void PopLayer() override { if (in) in->PopLayer(); }

private:
    std::unique_ptr<DrawingSurface> in;
};
