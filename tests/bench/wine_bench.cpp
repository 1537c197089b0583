// The Windows side of the benchmarks, run under Wine:
//
//   lumivane_wine_bench.exe decode <runs> <file.jpg>...
//       times LoadPhotoSized to 1920x1080 and to 3840x2160, in milliseconds per photo; prints one
//       line per file: "<width>x<height> <ms to 1920x1080> <ms to 3840x2160> <file>"
//   lumivane_wine_bench.exe show <photo directory> <SaverShow> <seconds>
//       sets ImportsDir, SaverShow and SaverPause "0" and runs a full-screen session of the saver
//       in this process for <seconds>, behind a window thread that times every pass of the render
//       loop and window targets that count photo uploads and bitmaps drawn. Prints
//       <show> <first photo ms> <first pass ms> <passes> <fps> <median ms> <worst ms>
//              <upload passes> <their median ms> <their worst ms>
//       where the first photo is the end of the first pass that drew a bitmap, counted from the
//       creation of this process, and median and worst leave out the first pass and the passes
//       that uploaded a photo.
#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "photos/image_decoder.h"
#include "platform/win_handles.h"
#include "platform/window_thread_win.h"
#include "session/saver_session.h"

namespace {

template <class T> using Own = std::unique_ptr<T>;

double NowMs() {
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// A window target that forwards every call to the real one and counts uploads and bitmaps drawn.
struct ProbeSurface final : DrawingSurface {
    explicit ProbeSurface(Own<DrawingSurface> real) : in(std::move(real)) {}
    void BeginDraw() override { in->BeginDraw(); }
    void Clear(const ColorF& c) override { in->Clear(c); }
    EndDrawResult EndDraw() override { return in->EndDraw(); }
    void SetTransform(const Matrix3x2F& m) override { in->SetTransform(m); }
    bool IsOccluded() override { return in->IsOccluded(); }
    void UseGrayscaleTextAntialiasing() override { in->UseGrayscaleTextAntialiasing(); }
    uint32_t MaximumBitmapSize() override { return in->MaximumBitmapSize(); }
    Own<SurfaceBitmap> CreateBitmap(uint32_t w, uint32_t h, const uint32_t* p) override {
        ++uploads;
        return in->CreateBitmap(w, h, p);
    }
    Own<SurfaceBrush> CreateSolidColorBrush(const ColorF& c) override {
        return in->CreateSolidColorBrush(c);
    }
    Own<SurfaceBrush> CreateLinearGradientBrush(PointF a, PointF b, const GradientStop* g,
                                                uint32_t n) override {
        return in->CreateLinearGradientBrush(a, b, g, n);
    }
    Own<SurfaceLayer> CreateLayer() override { return in->CreateLayer(); }
    // Offscreen targets aren't wrapped: what goes into them isn't counted.
    Own<DrawingSurface> CreateCompatibleRenderTarget(SizeF z, uint32_t w, uint32_t h) override {
        return in->CreateCompatibleRenderTarget(z, w, h);
    }
    Own<SurfaceBitmap> GetBitmap() override { return in->GetBitmap(); }
    Own<TextFormat> CreateTextFormat(const TextFormatParams& f) override {
        return in->CreateTextFormat(f);
    }
    void DrawBitmap(const SurfaceBitmap& b, const RectF& d, float o, const RectF* r) override {
        ++bitmapsDrawn;
        in->DrawBitmap(b, d, o, r);
    }
    void FillRectangle(const RectF& r, const SurfaceBrush& b) override { in->FillRectangle(r, b); }
    void DrawString(std::wstring_view t, const TextFormat& f, const RectF& r,
                    const SurfaceBrush& b) override {
        in->DrawString(t, f, r, b);
    }
    void PushLayer(SurfaceLayer& l, float o, const SurfaceBrush* b) override {
        in->PushLayer(l, o, b);
    }
    void PopLayer() override { in->PopLayer(); }

    Own<DrawingSurface> in;
    int uploads = 0, bitmapsDrawn = 0; // since the start of the pass
};

// Milliseconds since the creation of this process.
double ProcessAgeMs() {
    FILETIME created, exited, kernel, user, now;
    GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user);
    GetSystemTimeAsFileTime(&now);
    const auto ms = [](FILETIME t) {
        return (static_cast<double>(t.dwHighDateTime) * 4294967296.0 + t.dwLowDateTime) / 10000.0;
    };
    return ms(now) - ms(created);
}

// The real window thread; a pass runs from the empty message queue to the next look at it.
// After `seconds` it answers the quit message.
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
    Own<DrawingSurface> CreateWindowTarget(const DrawingFactories* f, WindowHandle w, int32_t width,
                                           int32_t height, bool primary) override {
        auto real = Win32WindowThread::CreateWindowTarget(f, w, width, height, primary);
        if (!real) return nullptr;
        auto target = std::make_unique<ProbeSurface>(std::move(real));
        targets.push_back(target.get()); // a lost target stays listed: fine for a short run
        return target;
    }
    void EndPass() {
        if (passStart < 0) return;
        bool uploaded = false, drawn = false;
        for (ProbeSurface* target : targets) {
            uploaded = uploaded || target->uploads > 0;
            drawn = drawn || target->bitmapsDrawn > 0;
            target->uploads = target->bitmapsDrawn = 0;
        }
        passes.push_back({NowMs() - passStart, uploaded});
        if (drawn && firstPhoto < 0) firstPhoto = ProcessAgeMs();
        if (firstStart < 0) firstStart = passStart;
        lastEnd = NowMs();
        passStart = -1;
    }

    std::vector<ProbeSurface*> targets;
    std::vector<std::pair<double, bool>> passes; // milliseconds, and whether a photo was uploaded
    double deadline, passStart = -1, firstStart = -1, lastEnd = 0, firstPhoto = -1;
};

// The median and the largest of `ms`; zeros when empty.
std::pair<double, double> MedianAndWorst(std::vector<double> ms) {
    if (ms.empty()) return {0, 0};
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.back()};
}

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
    std::vector<double> plain, upload;
    for (size_t i = 1; i < thread.passes.size(); ++i)
        (thread.passes[i].second ? upload : plain).push_back(thread.passes[i].first);
    const auto [median, worst] = MedianAndWorst(plain);
    const auto [uploadMedian, uploadWorst] = MedianAndWorst(upload);
    const size_t count = thread.passes.size();
    std::wprintf(L"%ls %.0f %.0f %zu %.2f %.0f %.0f %zu %.0f %.0f\n", show, thread.firstPhoto,
                 count ? thread.passes[0].first : 0, count,
                 count * 1000.0 / std::max(thread.lastEnd - thread.firstStart, 1.0), median, worst,
                 upload.size(), uploadMedian, uploadWorst);
    return 0;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    ComApartment apartment;
    const std::wstring mode = argc > 1 ? argv[1] : L"";
    if (mode == L"show" && argc == 5) return Show(apartment, argv[2], argv[3], _wtof(argv[4]));
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
