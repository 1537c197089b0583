// The Windows side of the benchmarks, run under Wine:
//
//   lumivane_wine_bench.exe decode <runs> <file.jpg>...
//       times LoadPhotoSized to 1920x1080 and to 3840x2160, in milliseconds per photo; prints one
//       line per file: "<width>x<height> <ms to 1920x1080> <ms to 3840x2160> <file>"
//   lumivane_wine_bench.exe show <photo directory> <SaverShow> <seconds>
//       sets ImportsDir, SaverShow and SaverPause "0" and runs a full-screen session of the saver
//       in this process for <seconds>, behind a window thread that times every pass of the render
//       loop and counts, through a probe around each render target, what each pass uploads and
//       draws. Prints <show> <first pass ms> <first photo ms> <passes> <fps> <median ms>
//       <worst ms> <upload passes> <upload median ms>: median and worst are of the passes that
//       upload no photo, the first apart; the first photo is the end of the first pass that drew
//       a bitmap, from the start of the first pass.
//   lumivane_wine_bench.exe import <runs> <file>...
//       times ImportPhoto of each file to a copy that covers 1920x1080 (never enlarged), written
//       into the temporary folder; prints one line per file: "<width>x<height> <ms per photo>
//       <copy width>x<copy height> <copy bytes> <file>", then "peak <MB> <MB before>": the
//       process's peak working set, after the imports and before the first.
//   lumivane_wine_bench.exe orientation <runs> <file.jpg>
//       times the saver's decoding chain of the file to 1920x1080 as if its orientation tag were
//       1, 6 (turned a quarter) and 4 (upside down), in milliseconds per photo; prints
//       "<width>x<height> <ms for 1> <ms for 6> <ms for 4>", with -1 where the system's
//       flip-rotator can't turn the photo (Wine's turns only upside down).
#include <windows.h>

#include <psapi.h>
#include <wrl/client.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/probe_surface.h"
#include "companion/import_size.h"
#include "photos/image_decoder.h"
#include "platform/companion/photo_import_win.h"
#include "platform/image_decoder_win.h"
#include "platform/win_handles.h"
#include "platform/window_thread_win.h"
#include "session/saver_session.h"

namespace {

double NowMs() {
    using namespace std::chrono;
    return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

// The real window thread; a pass runs from the empty message queue to the next look at it.
// After `seconds` it answers the quit message. Its render targets are probed.
struct TimedThread final : Win32WindowThread {
    explicit TimedThread(double seconds) : deadline(NowMs() + seconds * 1000) {}
    Dispatched DispatchNext() override {
        EndPass();
        if (NowMs() >= deadline) return Dispatched::Quit;
        const Dispatched dispatched = Win32WindowThread::DispatchNext();
        if (dispatched == Dispatched::Nothing) passStart = NowMs();
        return dispatched;
    }
    void WaitForInput(uint32_t ms) override {
        EndPass();
        Win32WindowThread::WaitForInput(ms);
    }
    std::unique_ptr<DrawingSurface> CreateWindowTarget(const DrawingFactories* factories,
                                                       WindowHandle window, int32_t width,
                                                       int32_t height, bool primary) override {
        auto real =
            Win32WindowThread::CreateWindowTarget(factories, window, width, height, primary);
        return real ? std::make_unique<ProbeSurface>(std::move(real), counts) : nullptr;
    }
    void EndPass() {
        if (passStart < 0) return;
        if (firstStart < 0) firstStart = passStart;
        lastEnd = NowMs();
        if (firstPhoto < 0 && counts.bitmapDraws > 0) firstPhoto = lastEnd - firstStart;
        (counts.uploads > 0 && !passes.empty() ? uploadPasses : passes)
            .push_back(lastEnd - passStart);
        counts = {};
        passStart = -1;
    }

    ProbeCounts counts;                       // of the pass going on
    std::vector<double> passes, uploadPasses; // milliseconds; the first pass is passes[0]
    double deadline, passStart = -1, firstStart = -1, lastEnd = 0, firstPhoto = -1;
};

// The mean time of `runs` decodes of `path` to `width` x `height`; negative if one failed.
double DecodeMs(const wchar_t* path, int runs, int width, int height) {
    const double start = NowMs();
    for (int i = 0; i < runs; ++i) {
        PhotoSource::Photo photo;
        if (!LoadPhotoSized(path, width, height, false, photo)) return -1;
    }
    return (NowMs() - start) / runs;
}

int Show(ComApartment& apartment, const wchar_t* directory, const wchar_t* show, double seconds) {
    for (const auto& [name, value] :
         {std::pair{L"ImportsDir", directory}, {L"SaverShow", show}, {L"SaverPause", L"0"}})
        RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\LumivaneW", name, REG_SZ, value,
                        static_cast<DWORD>((wcslen(value) + 1) * sizeof(wchar_t)));
    TimedThread thread(seconds);
    {
        SaverSession session(SaverMode::Fullscreen, &thread);
        session.Run(nullptr);
        apartment.Leave(); // before the session goes, as the saver does
    }
    // The first pass also sets up the device behind the targets: it is shown apart.
    std::vector<double>&ms = thread.passes, &up = thread.uploadPasses;
    const size_t count = ms.size();
    if (count > 1) std::sort(ms.begin() + 1, ms.end());
    std::sort(up.begin(), up.end());
    std::wprintf(L"%ls %.0f %.0f %zu %.2f %.0f %.0f %zu %.0f\n", show, count ? ms[0] : 0,
                 thread.firstPhoto, count + up.size(),
                 (count + up.size()) * 1000.0 / std::max(thread.lastEnd - thread.firstStart, 1.0),
                 count > 1 ? ms[1 + (count - 1) / 2] : 0, count > 1 ? ms.back() : 0, up.size(),
                 up.empty() ? 0 : up[up.size() / 2]);
    return 0;
}

double PeakMb() {
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PeakWorkingSetSize / 1e6;
}

int Import(int runs, int count, wchar_t** files) {
    const double before = PeakMb();
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    const std::wstring copy = std::wstring(temporary) + L"lumivane-bench-import.part";
    Microsoft::WRL::ComPtr<IWICImagingFactory> factory; // one for all photos, as the import has
    CoCreateInstance(CLSID_WICImagingFactory1, nullptr, CLSCTX_INPROC_SERVER,
                     IID_PPV_ARGS(&factory));
    // The copy's size as the import asks for one monitor of 1920 x 1080.
    const auto fullHd = [](ImageSize upright) { return CopySize(upright, {1920, 1080}); };
    ImportedPhotoInfo info; // a first import loads the imaging DLLs, which no photo pays again
    ImportPhoto(files[0], copy, fullHd, info, factory.Get());
    for (int i = 0; i < count; ++i) {
        const double start = NowMs();
        for (int run = 0; run < runs; ++run)
            if (!ImportPhoto(files[i], copy, fullHd, info, factory.Get())) return 1;
        std::wprintf(L"%ux%u %.1f %ux%u %llu %ls\n", info.upright.width, info.upright.height,
                     (NowMs() - start) / runs, info.written.width, info.written.height,
                     static_cast<unsigned long long>(info.writtenBytes), files[i]);
    }
    DeleteFileW(copy.c_str());
    std::wprintf(L"peak %.1f %.1f\n", PeakMb(), before);
    return 0;
}

// The mean time of `runs` decodes of `path` to 1920 x 1080 through the chain with `transform`, the
// file opened anew each time, as the saver does; negative when one failed.
double OrientedDecodeMs(const wchar_t* path, int runs, uint32_t transform, ImageSize& size) {
    using Microsoft::WRL::ComPtr;
    const double start = NowMs();
    for (int i = 0; i < runs; ++i) {
        ComPtr<IWICImagingFactory> factory;
        ComPtr<IWICBitmapDecoder> decoder;
        ComPtr<IWICBitmapFrameDecode> frame;
        if (FAILED(CoCreateInstance(CLSID_WICImagingFactory1, nullptr, CLSCTX_INPROC_SERVER,
                                    IID_PPV_ARGS(&factory))) ||
            FAILED(factory->CreateDecoderFromFilename(path, nullptr, GENERIC_READ,
                                                      WICDecodeMetadataCacheOnDemand, &decoder)) ||
            FAILED(decoder->GetFrame(0, &frame)) ||
            FAILED(frame->GetSize(&size.width, &size.height)))
            return -1;
        const auto geometry = PlanDecode(size.width, size.height, transform, 1920, 1080, false);
        const auto chain =
            geometry ? BuildDecodeChain(factory.Get(), frame.Get(), transform, *geometry) : nullptr;
        if (!chain) return -1;
        std::vector<uint32_t> pixels(size_t{1920} * 1080);
        const WICRect copied{0, 0, static_cast<INT>(geometry->copied.width),
                             static_cast<INT>(geometry->copied.height)};
        if (FAILED(chain->CopyPixels(&copied, 1920 * 4, UINT(pixels.size() * 4),
                                     reinterpret_cast<BYTE*>(pixels.data()))))
            return -1;
    }
    return (NowMs() - start) / runs;
}

int Orientation(int runs, const wchar_t* path) {
    ImageSize size;
    const double upright = OrientedDecodeMs(path, runs, 0, size);
    const double quarter = OrientedDecodeMs(path, runs, WICBitmapTransformRotate90, size);
    const double upsideDown = OrientedDecodeMs(path, runs, WICBitmapTransformFlipVertical, size);
    std::wprintf(L"%ux%u %.1f %.1f %.1f\n", size.width, size.height, upright, quarter, upsideDown);
    return 0;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    ComApartment apartment;
    const std::wstring mode = argc > 1 ? argv[1] : L"";
    if (mode == L"show" && argc == 5) return Show(apartment, argv[2], argv[3], _wtof(argv[4]));
    if (mode == L"import" && argc >= 4) return Import(_wtoi(argv[2]), argc - 3, argv + 3);
    if (mode == L"orientation" && argc == 4) return Orientation(_wtoi(argv[2]), argv[3]);
    if (mode != L"decode" || argc < 4) {
        std::fprintf(stderr, "usage: see the top of tests/bench/wine_bench.cpp\n");
        return 2;
    }
    for (int i = 3; i < argc; ++i) {
        ImageSize size;
        if (!ReadOrientedSize(argv[i], size)) return 1;
        const int runs = _wtoi(argv[2]);
        std::wprintf(L"%ux%u %.1f %.1f %ls\n", size.width, size.height,
                     DecodeMs(argv[i], runs, 1920, 1080), DecodeMs(argv[i], runs, 3840, 2160),
                     argv[i]);
    }
    return 0;
}
