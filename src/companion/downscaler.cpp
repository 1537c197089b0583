#include "companion/downscaler.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double kPi = 3.14159265358979323846;
// Weights are fixed point with 14 bits after the point: a sum of up to a few dozen of them
// times 255 stays far inside 32 bits, and a weight's rounding is 1/32768 of a pixel's value.
constexpr int32_t kShift = 14;
constexpr int32_t kOne = 1 << kShift;

double Radius(ResampleKernel kernel) { return kernel == ResampleKernel::Lanczos3 ? 3.0 : 2.0; }

double Weigh(ResampleKernel kernel, double x) {
    x = std::fabs(x);
    if (kernel == ResampleKernel::Lanczos3) {
        if (x < 1e-9) return 1.0;
        if (x >= 3.0) return 0.0;
        return 3.0 * std::sin(kPi * x) * std::sin(kPi * x / 3.0) / (kPi * kPi * x * x);
    }
    if (x < 1.0) return (1.5 * x - 2.5) * x * x + 1.0;
    if (x < 2.0) return ((-0.5 * x + 2.5) * x - 4.0) * x + 2.0;
    return 0.0;
}

uint8_t ToByte(int32_t sum) {
    const int32_t value = (sum + kOne / 2) >> kShift;
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

// Filters one row across into `width` pixels, each from `taps` pixels from first[i] on.
template <uint32_t Channels>
void FilterAcross(const uint8_t* in, uint8_t* out, const uint32_t* first, const int16_t* weights,
                  uint32_t taps, uint32_t width) {
    for (uint32_t i = 0; i < width; ++i) {
        const uint8_t* pixel = in + static_cast<size_t>(first[i]) * Channels;
        const int16_t* weight = weights + static_cast<size_t>(i) * taps;
        int32_t sum[Channels] = {};
        for (uint32_t t = 0; t < taps; ++t, pixel += Channels)
            for (uint32_t c = 0; c < Channels; ++c) sum[c] += weight[t] * pixel[c];
        for (uint32_t c = 0; c < Channels; ++c) *out++ = ToByte(sum[c]);
    }
}

} // namespace

bool Downscaler::Axis::Plan(uint32_t source, uint32_t destination, ResampleKernel kernel) {
    const double scale = static_cast<double>(source) / destination;
    const double support = Radius(kernel) * scale;
    taps = source == destination
               ? 1u
               : std::min(source, static_cast<uint32_t>(std::ceil(support)) * 2 + 1);
    first = TryAllocate<uint32_t>(destination);
    weights = TryAllocate<int16_t>(static_cast<size_t>(destination) * taps);
    if (!first || !weights) return false;

    for (uint32_t i = 0; i < destination; ++i) {
        int16_t* weight = &weights[static_cast<size_t>(i) * taps];
        if (taps == 1) {
            first[i] = i;
            weight[0] = kOne;
            continue;
        }
        // Pixel j's centre is at j + 0.5; the window holds the pixels within the support of the
        // destination pixel's centre, moved inwards at the edges where it would stick out.
        const double centre = (i + 0.5) * scale;
        const double low = std::ceil(centre - support - 0.5);
        first[i] = static_cast<uint32_t>(std::clamp(low, 0.0, static_cast<double>(source - taps)));
        const auto exact = [&](uint32_t t) {
            return Weigh(kernel, (first[i] + t + 0.5 - centre) / scale);
        };
        double total = 0;
        for (uint32_t t = 0; t < taps; ++t) total += exact(t);
        // Rounded to fixed point, the weights must still add up to one, or a plain area would
        // come out a shade lighter or darker: the rounding's remainder goes to the largest.
        int32_t sum = 0;
        uint32_t largest = 0;
        for (uint32_t t = 0; t < taps; ++t) {
            weight[t] = static_cast<int16_t>(std::lround(exact(t) / total * kOne));
            sum += weight[t];
            if (weight[t] > weight[largest]) largest = t;
        }
        weight[largest] = static_cast<int16_t>(weight[largest] + kOne - sum);
    }
    return true;
}

bool Downscaler::Start(ImageSize from, ImageSize to, uint32_t pixelBytes, ResampleKernel kernel) {
    source = from;
    channels = pixelBytes;
    rowsIn = rowsOut = 0;
    sums.reset();
    if (from.width == 0 || from.height == 0 || to.width == 0 || to.height == 0 ||
        to.width > from.width || to.height > from.height || pixelBytes < 1 || pixelBytes > 4 ||
        !across.Plan(from.width, to.width, kernel) || !down.Plan(from.height, to.height, kernel) ||
        !output.Allocate(to, pixelBytes)) {
        return false;
    }
    const size_t length = static_cast<size_t>(from.width) * channels;
    window = TryAllocate<uint8_t>(length * down.taps);
    column = TryAllocate<uint8_t>(length);
    sums = TryAllocate<int32_t>(length);
    if (window && column && sums) return true;
    sums.reset();
    return false;
}

void Downscaler::AddRow(const uint8_t* row) {
    if (rowsIn == source.height || !sums) return;
    const size_t length = static_cast<size_t>(source.width) * channels;
    std::copy_n(row, length, &window[(rowsIn % down.taps) * length]);
    ++rowsIn;
    // A destination row is ready once the last source row of its window went in.
    while (rowsOut < output.size.height && down.first[rowsOut] + down.taps <= rowsIn)
        EmitRow(rowsOut++);
}

void Downscaler::EmitRow(uint32_t y) {
    const size_t length = static_cast<size_t>(source.width) * channels;
    std::fill_n(sums.get(), length, 0);
    const int16_t* weight = &down.weights[static_cast<size_t>(y) * down.taps];
    for (uint32_t t = 0; t < down.taps; ++t) {
        if (weight[t] == 0) continue;
        const uint8_t* row = &window[((down.first[y] + t) % down.taps) * length];
        for (size_t x = 0; x < length; ++x) sums[x] += weight[t] * row[x];
    }
    for (size_t x = 0; x < length; ++x) column[x] = ToByte(sums[x]);

    const uint32_t* first = across.first.get();
    const int16_t* weights = across.weights.get();
    const uint32_t taps = across.taps, width = output.size.width;
    uint8_t* out = output.Row(y);
    switch (channels) {
    case 1: FilterAcross<1>(column.get(), out, first, weights, taps, width); break;
    case 2: FilterAcross<2>(column.get(), out, first, weights, taps, width); break;
    case 3: FilterAcross<3>(column.get(), out, first, weights, taps, width); break;
    default: FilterAcross<4>(column.get(), out, first, weights, taps, width); break;
    }
}

bool Downscale(const PixelImage& source, ImageSize destination, PixelImage& result,
               ResampleKernel kernel) {
    Downscaler downscaler;
    if (!source.bytes || !downscaler.Start(source.size, destination, source.channels, kernel))
        return false;
    for (uint32_t y = 0; y < source.size.height; ++y) downscaler.AddRow(source.Row(y));
    result = std::move(downscaler.Output());
    return true;
}
