#include "effects/painting.h"

#include <algorithm>
#include <cmath>

Matrix3x2F MultiplyTransforms(const Matrix3x2F& a, const Matrix3x2F& b) {
    return Matrix3x2F{a.m11 * b.m11 + a.m12 * b.m21,      a.m11 * b.m12 + a.m12 * b.m22,
                      a.m21 * b.m11 + a.m22 * b.m21,      a.m21 * b.m12 + a.m22 * b.m22,
                      a.dx * b.m11 + a.dy * b.m21 + b.dx, a.dx * b.m12 + a.dy * b.m22 + b.dy};
}

Matrix3x2F Translation(float x, float y) { return Matrix3x2F{1, 0, 0, 1, x, y}; }

Matrix3x2F Scaling(float x, float y) { return Matrix3x2F{x, 0, 0, y, 0, 0}; }

void FillSolid(const Canvas& canvas, const RectF& rectangle, const ColorF& colour) {
    const auto brush = canvas.target->CreateSolidColorBrush(colour);
    if (brush) canvas.target->FillRectangle(rectangle, *brush);
}

namespace {

ColorF Rgb(uint32_t rgb) {
    return ColorF{static_cast<float>((rgb >> 16) & 0xFF) / 255.0f,
                  static_cast<float>((rgb >> 8) & 0xFF) / 255.0f,
                  static_cast<float>(rgb & 0xFF) / 255.0f, 1.0f};
}

// The share of a Gaussian-blurred span [0, length] that covers the point `x`.
double Coverage(double x, double length, double k) {
    return (std::erf(x * k) - std::erf((x - length) * k)) * 0.5;
}

} // namespace

void FillVerticalGradient(const Canvas& canvas, uint32_t top, uint32_t bottom) {
    const GradientStop stops[2] = {{0.0f, Rgb(top)}, {1.0f, Rgb(bottom)}};
    const auto brush =
        canvas.target->CreateLinearGradientBrush(PointF{0, 0}, PointF{0, canvas.height}, stops, 2);
    if (brush) canvas.target->FillRectangle(RectF{0, 0, canvas.width, canvas.height}, *brush);
}

void BuildShadow(float width, float height, float size, float opacity, Shadow& shadow) {
    const float sigma = std::max(size * 0.5f, 1.0f);
    const float pad = sigma * 3;
    const int32_t nx =
        std::max(1, static_cast<int32_t>(std::ceil((2 * pad + width) / shadow.step)));
    const int32_t ny =
        std::max(1, static_cast<int32_t>(std::ceil((2 * pad + height) / shadow.step)));
    // The Gaussian separates: each pixel is a column's coverage times a row's.
    const double k = 1 / (std::sqrt(2.0) * sigma);
    std::vector<double> column(static_cast<size_t>(nx)), row(static_cast<size_t>(ny));
    for (int32_t i = 0; i < nx; ++i) {
        column[static_cast<size_t>(i)] = Coverage((i + 0.5) * shadow.step - pad, width, k);
    }
    for (int32_t j = 0; j < ny; ++j) {
        row[static_cast<size_t>(j)] = Coverage((j + 0.5) * shadow.step - pad, height, k);
    }
    std::vector<uint32_t> pixels(static_cast<size_t>(nx) * static_cast<size_t>(ny));
    for (int32_t j = 0; j < ny; ++j) {
        for (int32_t i = 0; i < nx; ++i) {
            const double alpha = std::min(
                opacity * column[static_cast<size_t>(i)] * row[static_cast<size_t>(j)], 1.0);
            pixels[static_cast<size_t>(j) * static_cast<size_t>(nx) + static_cast<size_t>(i)] =
                static_cast<uint32_t>(alpha * 255 + 0.5) << 24;
        }
    }
    shadow.image.width = nx;
    shadow.image.height = ny;
    shadow.image.pixels = std::move(pixels);
    shadow.image.bitmap.reset();
    shadow.pad = pad;
}

void DrawShadow(const Canvas& canvas, Shadow& shadow, const RectF& rectangle, float drop) {
    const SurfaceBitmap* bitmap = UploadImage(*canvas.target, shadow.image);
    if (!bitmap) return;
    const float left = rectangle.left - shadow.pad;
    const float top = rectangle.top - shadow.pad + drop;
    const RectF destination{left, top, left + static_cast<float>(shadow.image.width) * shadow.step,
                            top + static_cast<float>(shadow.image.height) * shadow.step};
    canvas.target->DrawBitmap(*bitmap, destination, 1.0f, nullptr);
}
