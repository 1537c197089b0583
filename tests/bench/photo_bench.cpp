// Times LoadPhotoSized on real JPEG files, in milliseconds per photo, for two screen sizes.
//
//   lumivane_photo_bench.exe --make <file.jpg> <width> <height>
//       writes a photo-like test JPEG (smooth shapes, edges and grain) through WIC
//   lumivane_photo_bench.exe <runs> <file.jpg>...
//       prints one line per file: "<width>x<height> <ms to 1920x1080> <ms to 3840x2160> <file>"
#include <windows.h>

#include <objbase.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "photos/image_decoder.h"
#include "platform/win_handles.h"
#include "win/image_test_files.h"

namespace {

// Soft gradients, circles with hard edges and a little grain: compresses like a photo does.
uint32_t PhotoLike(int x, int y) {
    uint32_t noise = static_cast<uint32_t>(x) * 73856093u ^ static_cast<uint32_t>(y) * 19349663u;
    noise = (noise ^ (noise >> 13)) * 0x5bd1e995u;
    const int grain = static_cast<int>(noise >> 26) - 32;
    const double u = x / 211.0, v = y / 157.0;
    const bool inside = std::fmod(std::hypot(std::fmod(u, 4.0) - 2, std::fmod(v, 3.0) - 1.5), 2.0) < 0.8;
    const auto channel = [&](double base) {
        const int value = static_cast<int>(base) + grain + (inside ? 40 : 0);
        return static_cast<uint32_t>(value < 0 ? 0 : value > 255 ? 255 : value);
    };
    return channel(110 + 90 * std::sin(u)) << 16 | channel(120 + 80 * std::cos(v)) << 8 |
           channel(100 + 70 * std::sin(u + v));
}

double Milliseconds(LARGE_INTEGER from, LARGE_INTEGER to) {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return 1000.0 * static_cast<double>(to.QuadPart - from.QuadPart) /
           static_cast<double>(frequency.QuadPart);
}

// The mean time of `runs` decodes of `path` to `width` x `height`; negative if one failed.
double TimeDecode(const std::wstring& path, int runs, int width, int height) {
    LARGE_INTEGER start, end;
    QueryPerformanceCounter(&start);
    for (int i = 0; i < runs; ++i) {
        PhotoSource::Photo photo;
        if (!LoadPhotoSized(path, width, height, false, photo)) return -1;
    }
    QueryPerformanceCounter(&end);
    return Milliseconds(start, end) / runs;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    ComApartment apartment;
    if (argc == 5 && std::wstring(argv[1]) == L"--make") {
        return image_test::WriteImage(argv[2], GUID_ContainerFormatJpeg, _wtoi(argv[3]),
                                      _wtoi(argv[4]), PhotoLike)
                   ? 0
                   : 1;
    }
    if (argc < 3) {
        std::fprintf(stderr, "usage: lumivane_photo_bench <runs> <file.jpg>...\n");
        return 2;
    }
    const int runs = _wtoi(argv[1]);
    for (int i = 2; i < argc; ++i) {
        ImageSize size;
        if (!ReadOrientedSize(argv[i], size)) {
            std::fwprintf(stderr, L"can't read %ls\n", argv[i]);
            return 1;
        }
        const double fullHd = TimeDecode(argv[i], runs, 1920, 1080);
        const double ultraHd = TimeDecode(argv[i], runs, 3840, 2160);
        std::wprintf(L"%ux%u %.1f %.1f %ls\n", size.width, size.height, fullHd, ultraHd, argv[i]);
    }
    return 0;
}
