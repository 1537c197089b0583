#pragma once

// The drawing surface of the benchmarks: it hands every call to `inner`, the real Direct2D target
// under Wine, or, with no inner target, does nothing at all, so that on the host only our own
// code is timed. On the way it counts photo uploads and bitmap draws into `counts`.
#include <memory>

#include "effects/drawing_surface.h"

struct ProbeCounts {
    int uploads = 0, bitmapDraws = 0;
};

class ProbeSurface final : public DrawingSurface {
public:
    ProbeSurface(std::unique_ptr<DrawingSurface> real, ProbeCounts& shared)
        : inner(std::move(real)), counts(shared) {}

    void BeginDraw() override {
        if (inner) inner->BeginDraw();
    }
    void Clear(const ColorF& color) override {
        if (inner) inner->Clear(color);
    }
    EndDrawResult EndDraw() override { return inner ? inner->EndDraw() : EndDrawResult::Ok; }
    void SetTransform(const Matrix3x2F& m) override {
        if (inner) inner->SetTransform(m);
    }
    bool IsOccluded() override { return inner && inner->IsOccluded(); }
    void UseGrayscaleTextAntialiasing() override {
        if (inner) inner->UseGrayscaleTextAntialiasing();
    }
    uint32_t MaximumBitmapSize() override { return inner ? inner->MaximumBitmapSize() : 16384; }
    std::unique_ptr<SurfaceBitmap> CreateBitmap(uint32_t w, uint32_t h,
                                                const uint32_t* p) override {
        ++counts.uploads;
        return inner ? inner->CreateBitmap(w, h, p) : Empty();
    }
    std::unique_ptr<SurfaceBrush> CreateSolidColorBrush(const ColorF& color) override {
        return inner ? inner->CreateSolidColorBrush(color) : Empty();
    }
    std::unique_ptr<SurfaceBrush> CreateLinearGradientBrush(PointF a, PointF b,
                                                            const GradientStop* stops,
                                                            uint32_t count) override {
        return inner ? inner->CreateLinearGradientBrush(a, b, stops, count) : Empty();
    }
    std::unique_ptr<SurfaceLayer> CreateLayer() override {
        return inner ? inner->CreateLayer() : Empty();
    }
    std::unique_ptr<DrawingSurface> CreateCompatibleRenderTarget(SizeF size, uint32_t w,
                                                                 uint32_t h) override {
        auto offscreen = inner ? inner->CreateCompatibleRenderTarget(size, w, h) : nullptr;
        if (inner && !offscreen) return nullptr;
        return std::make_unique<ProbeSurface>(std::move(offscreen), counts);
    }
    std::unique_ptr<SurfaceBitmap> GetBitmap() override {
        return inner ? inner->GetBitmap() : Empty();
    }
    std::unique_ptr<TextFormat> CreateTextFormat(const TextFormatParams& font) override {
        return inner ? inner->CreateTextFormat(font) : Empty();
    }
    void DrawBitmap(const SurfaceBitmap& bitmap, const RectF& to, float opacity,
                    const RectF* from) override {
        ++counts.bitmapDraws;
        if (inner) inner->DrawBitmap(bitmap, to, opacity, from);
    }
    void FillRectangle(const RectF& r, const SurfaceBrush& brush) override {
        if (inner) inner->FillRectangle(r, brush);
    }
    void DrawString(std::wstring_view text, const TextFormat& format, const RectF& r,
                    const SurfaceBrush& brush) override {
        if (inner) inner->DrawString(text, format, r, brush);
    }
    void PushLayer(SurfaceLayer& layer, float opacity, const SurfaceBrush* mask) override {
        if (inner) inner->PushLayer(layer, opacity, mask);
    }
    void PopLayer() override {
        if (inner) inner->PopLayer();
    }

private:
    // What the surface makes when it draws nothing: one object of every kind, doing nothing.
    struct Nothing final : SurfaceBitmap, SurfaceBrush, SurfaceLayer, TextFormat {
        void SetColor(const ColorF&) override {}
        void SetTextAlignment(TextAlignment) override {}
        void SetParagraphAlignment(ParagraphAlignment) override {}
        void SetWordWrapping(WordWrapping) override {}
    };
    static std::unique_ptr<Nothing> Empty() { return std::make_unique<Nothing>(); }

    std::unique_ptr<DrawingSurface> inner;
    ProbeCounts& counts;
};
