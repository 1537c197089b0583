// The real show under Wine, timed from outside the product's code:
//
//   lumivane_show_bench.exe <photo directory> <SaverShow> <seconds> [<Lumivane.scr>]
//
// sets ImportsDir, SaverShow and SaverPause "0" in the registry; with a saver given, starts it
// full-screen and times its start until the middle of the first monitor is no longer black;
// then runs a full-screen session in this process for <seconds>, behind a window thread that
// times every pass of the render loop and drawing surfaces that count photo uploads. Prints
//   <show> <first photo ms> <first pass ms> <passes> <fps> <median ms> <worst ms>
//          <upload passes> <their median ms> <their worst ms>
// where median and worst leave out the first pass and the passes that uploaded a photo.
#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/win_handles.h"
#include "platform/window_thread_win.h"
#include "session/saver_session.h"

namespace {

// Forwards everything to the real target, counting CreateBitmap calls in `uploads`.
class CountingSurface final : public DrawingSurface {
public:
    CountingSurface(std::unique_ptr<DrawingSurface> real, int& count)
        : inner(std::move(real)), uploads(&count) {}
    void BeginDraw() override { inner->BeginDraw(); }
    void Clear(const ColorF& c) override { inner->Clear(c); }
    EndDrawResult EndDraw() override { return inner->EndDraw(); }
    void SetTransform(const Matrix3x2F& m) override { inner->SetTransform(m); }
    bool IsOccluded() override { return inner->IsOccluded(); }
    void UseGrayscaleTextAntialiasing() override { inner->UseGrayscaleTextAntialiasing(); }
    uint32_t MaximumBitmapSize() override { return inner->MaximumBitmapSize(); }
    std::unique_ptr<SurfaceBitmap> CreateBitmap(uint32_t w, uint32_t h, const uint32_t* p) override {
        ++*uploads;
        return inner->CreateBitmap(w, h, p);
    }
    std::unique_ptr<SurfaceBrush> CreateSolidColorBrush(const ColorF& c) override {
        return inner->CreateSolidColorBrush(c);
    }
    std::unique_ptr<SurfaceBrush> CreateLinearGradientBrush(PointF a, PointF b, const GradientStop* s,
                                                            uint32_t n) override {
        return inner->CreateLinearGradientBrush(a, b, s, n);
    }
    std::unique_ptr<SurfaceLayer> CreateLayer() override { return inner->CreateLayer(); }
    std::unique_ptr<DrawingSurface> CreateCompatibleRenderTarget(SizeF s, uint32_t w,
                                                                 uint32_t h) override {
        return inner->CreateCompatibleRenderTarget(s, w, h);
    }
    std::unique_ptr<SurfaceBitmap> GetBitmap() override { return inner->GetBitmap(); }
    std::unique_ptr<TextFormat> CreateTextFormat(const TextFormatParams& f) override {
        return inner->CreateTextFormat(f);
    }
    void DrawBitmap(const SurfaceBitmap& b, const RectF& d, float o, const RectF* s) override {
        inner->DrawBitmap(b, d, o, s);
    }
    void FillRectangle(const RectF& r, const SurfaceBrush& b) override { inner->FillRectangle(r, b); }
    void DrawString(std::wstring_view t, const TextFormat& f, const RectF& r,
                    const SurfaceBrush& b) override {
        inner->DrawString(t, f, r, b);
    }
    void PushLayer(SurfaceLayer& l, float o, const SurfaceBrush* b) override { inner->PushLayer(l, o, b); }
    void PopLayer() override { inner->PopLayer(); }

private:
    std::unique_ptr<DrawingSurface> inner;
    int* uploads;
};

// The real window thread; a pass runs from the empty message queue to the next look at it.
// After `seconds` it answers the quit message.
class TimedThread final : public WindowThread {
public:
    struct Pass {
        double ms;
        bool uploaded;
    };

    explicit TimedThread(double seconds) : deadline(Now() + seconds * 1000) {}
    double Now() { return static_cast<double>(real.Counter()) * 1000 / real.CounterFrequency(); }

    int64_t CounterFrequency() override { return real.CounterFrequency(); }
    int64_t Counter() override { return real.Counter(); }
    Dispatched DispatchNext() override {
        EndPass();
        if (Now() >= deadline) return Dispatched::Quit;
        const Dispatched dispatched = real.DispatchNext();
        if (dispatched == Dispatched::Nothing) {
            passStart = Now();
            uploads = 0;
        }
        return dispatched;
    }
    void WaitForInput(uint32_t ms) override {
        EndPass();
        real.WaitForInput(ms);
    }
    void HideWindow(WindowHandle w) override { real.HideWindow(w); }
    void InvalidateWindow(WindowHandle w) override { real.InvalidateWindow(w); }
    void PostQuit() override { real.PostQuit(); }
    uint32_t WindowDpi(WindowHandle w) override { return real.WindowDpi(w); }
    int32_t ScreenHeight() override { return real.ScreenHeight(); }
    std::unique_ptr<DrawingSurface> CreateWindowTarget(const DrawingFactories* f, WindowHandle w,
                                                       int32_t width, int32_t height,
                                                       bool primary) override {
        auto target = real.CreateWindowTarget(f, w, width, height, primary);
        if (!target) return nullptr;
        return std::make_unique<CountingSurface>(std::move(target), uploads);
    }

    std::vector<Pass> passes;
    double firstStart = -1, lastEnd = 0; // of the first and the last pass

private:
    void EndPass() {
        if (passStart < 0) return;
        const double now = Now();
        passes.push_back({now - passStart, uploads > 0});
        if (firstStart < 0) firstStart = passStart;
        lastEnd = now;
        passStart = -1;
    }

    Win32WindowThread real;
    double deadline;
    double passStart = -1;
    int uploads = 0;
};

// Milliseconds from starting `saver` /s until the middle of the first monitor isn't black.
double FirstPhotoMs(const std::wstring& saver) {
    const ULONGLONG start = GetTickCount64();
    std::wstring command = L"\"" + saver + L"\" /s";
    STARTUPINFOW startup{sizeof startup};
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process))
        return -1;
    const POINT middle{GetSystemMetrics(SM_CXSCREEN) / 2, GetSystemMetrics(SM_CYSCREEN) / 2};
    double ms = -1;
    HDC screen = GetDC(nullptr);
    while (GetTickCount64() - start < 30000) {
        const COLORREF pixel = GetPixel(screen, middle.x, middle.y);
        if (pixel != CLR_INVALID && (GetRValue(pixel) + GetGValue(pixel) + GetBValue(pixel)) > 30) {
            ms = static_cast<double>(GetTickCount64() - start);
            break;
        }
        Sleep(5);
    }
    ReleaseDC(nullptr, screen);
    TerminateProcess(process.hProcess, 0);
    WaitForSingleObject(process.hProcess, 10000);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    return ms;
}

// The median and the largest of `ms`; zeros when empty.
std::pair<double, double> MedianAndWorst(std::vector<double> ms) {
    if (ms.empty()) return {0, 0};
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.back()};
}

void SetOption(const wchar_t* name, const std::wstring& value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\LumivaneW", name, REG_SZ, value.c_str(),
                    static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: lumivane_show_bench <photo directory> <show> <seconds> [scr]\n");
        return 2;
    }
    SetOption(L"ImportsDir", argv[1]);
    SetOption(L"SaverShow", argv[2]);
    SetOption(L"SaverPause", L"0");
    const double firstPhoto = argc > 4 ? FirstPhotoMs(argv[4]) : -1;

    ComApartment apartment;
    TimedThread thread(_wtof(argv[3]));
    {
        SaverSession session(SaverMode::Fullscreen, &thread);
        session.Run(nullptr);
        apartment.Leave();
    }
    // The first pass also sets up the device behind the targets: it is shown apart.
    std::vector<double> plain, upload;
    for (size_t i = 1; i < thread.passes.size(); ++i)
        (thread.passes[i].uploaded ? upload : plain).push_back(thread.passes[i].ms);
    const double firstPass = thread.passes.empty() ? 0 : thread.passes.front().ms;
    const auto [median, worst] = MedianAndWorst(plain);
    const auto [uploadMedian, uploadWorst] = MedianAndWorst(upload);
    std::wprintf(L"%ls %.0f %.0f %zu %.2f %.0f %.0f %zu %.0f %.0f\n", argv[2], firstPhoto,
                 firstPass, thread.passes.size(),
                 thread.passes.size() * 1000.0 / std::max(thread.lastEnd - thread.firstStart, 1.0),
                 median, worst, upload.size(), uploadMedian, uploadWorst);
    return 0;
}
