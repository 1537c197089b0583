// The real show under Wine, timed from outside the product's code:
//
//   lumivane_show_bench.exe <photo directory> <SaverShow> <seconds>
//
// sets ImportsDir, SaverShow and SaverPause "0" in the registry and runs a full-screen session of
// the saver in this process for <seconds>, behind a window thread that times every pass of the
// render loop and window targets that count photo uploads and bitmaps drawn. Prints
//   <show> <first photo ms> <first pass ms> <passes> <fps> <median ms> <worst ms>
//          <upload passes> <their median ms> <their worst ms>
// where the first photo is the end of the first pass that drew a bitmap, counted from the
// creation of this process, and median and worst leave out the first pass and the passes that
// uploaded a photo.
#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/probe_surface.h"
#include "platform/win_handles.h"
#include "platform/window_thread_win.h"
#include "session/saver_session.h"

namespace {

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
class TimedThread final : public Win32WindowThread {
public:
    struct Pass {
        double ms;
        bool uploaded;
    };

    explicit TimedThread(double seconds) : deadline(Now() + seconds * 1000) {}
    double Now() { return static_cast<double>(Counter()) * 1000 / CounterFrequency(); }

    Dispatched DispatchNext() override {
        EndPass();
        if (Now() >= deadline) return Dispatched::Quit;
        const Dispatched dispatched = Win32WindowThread::DispatchNext();
        if (dispatched == Dispatched::Nothing) {
            passStart = Now();
            for (ProbeSurface* target : targets) target->uploads = target->bitmapsDrawn = 0;
        }
        return dispatched;
    }
    void WaitForInput(uint32_t ms) override {
        EndPass();
        Win32WindowThread::WaitForInput(ms);
    }
    std::unique_ptr<DrawingSurface> CreateWindowTarget(const DrawingFactories* f, WindowHandle w,
                                                       int32_t width, int32_t height,
                                                       bool primary) override {
        auto real = Win32WindowThread::CreateWindowTarget(f, w, width, height, primary);
        if (!real) return nullptr;
        auto target = std::make_unique<ProbeSurface>(std::move(real));
        targets.push_back(target.get()); // a lost target stays listed: fine for a short run
        return target;
    }

    std::vector<Pass> passes;
    double firstStart = -1, lastEnd = 0; // of the first and the last pass
    double firstPhoto = -1;              // ProcessAgeMs at the end of the first pass with a photo

private:
    void EndPass() {
        if (passStart < 0) return;
        const double now = Now();
        bool uploaded = false, drawn = false;
        for (ProbeSurface* target : targets) {
            uploaded = uploaded || target->uploads > 0;
            drawn = drawn || target->bitmapsDrawn > 0;
        }
        passes.push_back({now - passStart, uploaded});
        if (drawn && firstPhoto < 0) firstPhoto = ProcessAgeMs();
        if (firstStart < 0) firstStart = passStart;
        lastEnd = now;
        passStart = -1;
    }

    std::vector<ProbeSurface*> targets;
    double deadline;
    double passStart = -1;
};

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
    if (argc != 4) {
        std::fprintf(stderr, "usage: lumivane_show_bench <photo directory> <show> <seconds>\n");
        return 2;
    }
    SetOption(L"ImportsDir", argv[1]);
    SetOption(L"SaverShow", argv[2]);
    SetOption(L"SaverPause", L"0");
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
    std::wprintf(L"%ls %.0f %.0f %zu %.2f %.0f %.0f %zu %.0f %.0f\n", argv[2], thread.firstPhoto,
                 firstPass, thread.passes.size(),
                 thread.passes.size() * 1000.0 / std::max(thread.lastEnd - thread.firstStart, 1.0),
                 median, worst, upload.size(), uploadMedian, uploadWorst);
    return 0;
}
