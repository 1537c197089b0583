// The import's downscaler on the host: milliseconds and a quality figure per filter, for the
// reductions that the import makes most (an 18 MP and a 48 MP photo to cover 1920x1080).
//
//   lumivane_resample_bench            prints one table per reduction
//
// The picture is a sum of waves. Two lie well below the destination's Nyquist limit and must come
// through; two lie above it (but below the source's) and must vanish, or they fold back as false
// patterns, which is what a nearest-neighbour scaler shows. The reference is the two low waves
// alone at each destination pixel's centre; PSNR is of all channels against it.
#include <chrono>
#include <cmath>
#include <cstdio>

#include "companion/downscaler.h"

namespace {

constexpr double kTwoPi = 6.28318530717958647692;

// The waves, at a point in destination pixels.
double Low(double u, double v) {
    return 128 + 45 * std::sin(kTwoPi * (0.043 * u + 0.021 * v)) +
           30 * std::sin(kTwoPi * (0.017 * u - 0.11 * v));
}
double High(double u, double v) {
    return 25 * std::sin(kTwoPi * (0.9 * u + 1.1 * v)) +
           20 * std::sin(kTwoPi * (1.2 * u + 0.05 * v));
}

PixelImage Waves(ImageSize from, ImageSize to) {
    PixelImage picture;
    picture.Allocate(from, 3);
    const double sx = static_cast<double>(to.width) / from.width;
    const double sy = static_cast<double>(to.height) / from.height;
    for (uint32_t y = 0; y < from.height; ++y) {
        uint8_t* pixel = picture.Row(y);
        for (uint32_t x = 0; x < from.width; ++x, pixel += 3) {
            const double u = (x + 0.5) * sx, v = (y + 0.5) * sy;
            pixel[0] = pixel[1] = pixel[2] =
                static_cast<uint8_t>(std::lround(Low(u, v) + High(u, v)));
        }
    }
    return picture;
}

// What a nearest-neighbour scaler gives: the source pixel under each destination pixel's centre.
PixelImage Nearest(const PixelImage& source, ImageSize to) {
    PixelImage result;
    result.Allocate(to, 3);
    const ImageSize from = source.size;
    for (uint32_t y = 0; y < to.height; ++y) {
        const uint8_t* row = source.Row((2 * y + 1) * from.height / (2 * to.height));
        for (uint32_t x = 0; x < to.width * 3; ++x)
            result.Row(y)[x] = row[(2 * (x / 3) + 1) * from.width / (2 * to.width) * 3 + x % 3];
    }
    return result;
}

double Psnr(const PixelImage& result) {
    double squares = 0;
    for (uint32_t y = 0; y < result.size.height; ++y) {
        for (uint32_t x = 0; x < result.size.width * 3; ++x) {
            const double error = result.Row(y)[x] - Low(x / 3 + 0.5, y + 0.5);
            squares += error * error;
        }
    }
    const double mean = squares / (3.0 * result.size.width * result.size.height);
    return 10 * std::log10(255.0 * 255.0 / mean);
}

template <class Run> void Row(const char* name, Run run) {
    PixelImage result;
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const auto start = std::chrono::steady_clock::now();
        result = run();
        best = std::min(best, std::chrono::duration<double, std::milli>(
                                  std::chrono::steady_clock::now() - start)
                                  .count());
    }
    std::printf("  %-34s %8.1f %9.2f\n", name, best, Psnr(result));
}

} // namespace

int main() {
    const ImageSize reductions[][2] = {{{5640, 3172}, {1920, 1080}}, {{8000, 6000}, {1920, 1440}}};
    for (const auto& [from, to] : reductions) {
        const PixelImage source = Waves(from, to);
        std::printf("%ux%u to %ux%u (%.2fx), 3 channels\n  %-34s %8s %9s\n", from.width,
                    from.height, to.width, to.height, static_cast<double>(from.width) / to.width,
                    "filter", "ms", "PSNR dB");
        Row("nearest neighbour (Wine's scaler)", [&] { return Nearest(source, to); });
        const std::pair<const char*, ResampleKernel> filters[] = {
            {"Catmull-Rom", ResampleKernel::CatmullRom}, {"Lanczos-3", ResampleKernel::Lanczos3}};
        for (const auto& [name, kernel] : filters) {
            Row(name, [&, kernel = kernel] {
                PixelImage result;
                Downscale(source, to, result, kernel);
                return result;
            });
        }
    }
    return 0;
}
