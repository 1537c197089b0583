// The show: real JPEG files in the photo folder, the real saver drawing them with Direct2D.
// Wine composes layers at full strength, so pixels are judged only once a photo shows in its own
// colour, which under a real fade happens at full strength.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <cstdlib>
#include <string>
#include <vector>

#include "e2e/files.h"
#include "e2e/saver_test.h"
#include "e2e/screen.h"

namespace e2e {
namespace {

// Two square photos of one colour each, shown in name order with the captions "Alpha" and
// "Beta". On a 4:3 monitor a whole square photo leaves black bars at both sides.
constexpr uint32_t kColours[2] = {0x2E7D32, 0x1565C0};
const wchar_t* const kNames[2] = {L"Alpha-a0000000.jpg", L"Beta-b0000000.jpg"};

// Which photo `pixel` shows: 0 or 1, or -1 for neither.
int PhotoOf(uint32_t pixel) {
    for (int photo = 0; photo < 2; ++photo) {
        int off = 0;
        for (int shift : {0, 8, 16})
            off = std::max(off, std::abs(static_cast<int>((pixel >> shift & 0xFF) -
                                                          (kColours[photo] >> shift & 0xFF))));
        if (off < 24) return photo;
    }
    return -1;
}

// The columns from the first to one past the last that aren't dark, between `from` and `to` of
// a one-row image, counted from `from`; {0, 0} when all are dark.
std::pair<int, int> LitSpan(const Image& row, int from, int to) {
    int left = to, right = from;
    for (int x = from; x < to; ++x) {
        const uint32_t p = row.At(x, 0);
        if ((p >> 16 & 0xFF) + (p >> 8 & 0xFF) + (p & 0xFF) < 60) continue;
        left = std::min(left, x);
        right = x + 1;
    }
    return left < right ? std::make_pair(left - from, right - from) : std::make_pair(0, 0);
}

// Light grey to white pixels: the caption is thin white text with a black shadow, and neither
// photo has all three channels this light.
int LightPixels(const Image& image) {
    return static_cast<int>(std::count_if(image.pixels.begin(), image.pixels.end(),
                                          [](uint32_t p) { return (p & 0x808080) == 0x808080; }));
}

struct Show {
    const char* name;
    const wchar_t* show; // SaverShow
    DWORD title, fit;    // SaverTitle, SaverFit
    bool moves;
};

const Show kShows[] = {
    {"Fader", L"", 1, 0, false},
    {"FaderCoveringWithoutCaptions", L"", 0, 1, false},
    {"Slider", L"slider", 1, 0, true},
    {"Kber", L"kber", 1, 0, true},
};

bool Dark(uint32_t pixel, int most) {
    return (pixel >> 16 & 0xFF) <= most && (pixel >> 8 & 0xFF) <= most && (pixel & 0xFF) <= most;
}

// A monitor's pixel, from its top left; a judgement of monitor m's picture, w x h.
using MonitorPixel = std::function<uint32_t(int x, int y)>;
using Looks = std::function<bool(size_t m, const MonitorPixel& at, int w, int h)>;

class ShowTest : public SaverTest, public ::testing::WithParamInterface<Show> {
protected:
    void SetUp() override {
        SaverTest::SetUp();
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        const std::wstring directory = std::wstring(temp) + L"LumivaneShow";
        const std::wstring folder = directory + L"\\Lumivane\\Lumivane ScreenSaver";
        ASSERT_TRUE(MakeFolders(folder));
        for (int i = 0; i < 2; ++i)
            ASSERT_TRUE(WriteJpeg(folder + L"\\" + kNames[i], 600, 600, kColours[i]));
        WriteSaverString(L"ImportsDir", directory);
        WriteSaverString(L"SaverPause", L"0"); // 3 s rests
    }
    // Runs `saverShow` and waits until `looks` has said yes of every monitor; the index lets a
    // check remember earlier frames.
    void ShowUntilEveryMonitor(const wchar_t* saverShow, const Looks& looks) {
        WriteSaverString(L"SaverShow", saverShow);
        const std::vector<RECT> monitors = MonitorRects();
        ASSERT_EQ(StartFullScreen().size(), monitors.size());
        const RECT desktop = DesktopRect();
        std::vector<bool> seen(monitors.size(), false);
        const bool done = WaitUntil([&] {
            const Image screen = CaptureScreen(desktop);
            for (size_t m = 0; m < monitors.size(); ++m) {
                const RECT& r = monitors[m];
                const MonitorPixel at = [&](int x, int y) {
                    return screen.At(r.left - desktop.left + x, r.top - desktop.top + y);
                };
                seen[m] = seen[m] || looks(m, at, r.right - r.left, r.bottom - r.top);
            }
            return std::find(seen.begin(), seen.end(), false) == seen.end();
        }, 45000, 100);
        if (!done) CaptureDesktopAs(saverShow);
        EXPECT_TRUE(done) << "not every monitor showed what it should";
    }
};

TEST_P(ShowTest, EachMonitorShowsAPhotoThenTheNext) {
    const Show& show = GetParam();
    WriteSaverString(L"SaverShow", show.show);
    WriteSaverDword(L"SaverTitle", show.title);
    WriteSaverDword(L"SaverFit", show.fit);
    const std::vector<RECT> monitors = MonitorRects();
    ASSERT_EQ(StartFullScreen().size(), monitors.size());
    const RECT desktop = DesktopRect();
    const LONG middle = (monitors[0].top + monitors[0].bottom) / 2;

    // Per monitor: the photos shown in turn, and the lowest and highest left and right ends of
    // the lit span of its middle row.
    struct Seen {
        std::vector<int> photos;
        int left[2] = {INT_MAX, 0}, right[2] = {INT_MAX, 0};
    };
    std::vector<Seen> seen(monitors.size());
    const auto bothChanged = [&] {
        const Image row = CaptureScreen({desktop.left, middle, desktop.right, middle + 1});
        for (size_t m = 0; m < monitors.size(); ++m) {
            const RECT& r = monitors[m];
            const int width = r.right - r.left;
            const auto [left, right] = LitSpan(row, r.left - desktop.left, r.right - desktop.left);
            Seen& s = seen[m];
            if (right > left) {
                s.left[0] = std::min(s.left[0], left), s.left[1] = std::max(s.left[1], left);
                s.right[0] = std::min(s.right[0], right), s.right[1] = std::max(s.right[1], right);
            }
            const int photo = PhotoOf(row.At(r.left - desktop.left + width / 2, 0));
            if (photo < 0 || (!s.photos.empty() && s.photos.back() == photo)) continue;
            s.photos.push_back(photo);
            if (show.moves || s.photos.size() > 1) continue;
            // The Fader at full strength: black bars beside the whole photo, none when it
            // covers; the caption at the top left.
            const int bar = show.fit ? 0 : (width - (r.bottom - r.top)) / 2;
            EXPECT_NEAR(left, bar, 3) << "monitor " << m;
            EXPECT_NEAR(right, width - bar, 3) << "monitor " << m;
            const RECT corner{r.left + 24, r.top + 24, r.left + 240, r.top + 72};
            const int light = LightPixels(CaptureScreen(corner));
            EXPECT_TRUE(show.title ? light > 20 : light == 0)
                << light << " light pixels at the top left of monitor " << m;
        }
        return std::all_of(seen.begin(), seen.end(),
                           [](const Seen& s) { return s.photos.size() > 1; });
    };
    EXPECT_TRUE(WaitUntil(bothChanged, 30000, 50)) << "a monitor didn't show two photos";
    for (const Seen& s : seen) {
        ASSERT_LE(s.left[0], s.left[1]) << "no photo";
        EXPECT_EQ(s.left[1] - s.left[0] > 16 || s.right[1] - s.right[0] > 16, show.moves)
            << "left end " << s.left[0] << "-" << s.left[1] << ", right " << s.right[0] << "-"
            << s.right[1];
    }
}

TEST_F(ShowTest, ReflectionsStandsFramedOverItsMirrorImageWithItsTitle) {
    // At rest: the square photo in the middle of the black frame of 80%, its mirror image below
    // the frame, the title under the frame, and the stage's dark grey around.
    ShowUntilEveryMonitor(L"reflections", [](size_t, const MonitorPixel& at, int w, int h) {
        const int photo = PhotoOf(at(w / 2, h / 2));
        int light = 0;
        for (int x = w / 2 - 40; x < w / 2 + 40; ++x)
            for (int y = h * 9 / 10 + 10; y < h * 9 / 10 + 50; ++y)
                light += (at(x, y) & 0x808080) == 0x808080;
        return photo >= 0 && PhotoOf(at(w / 2, h - 10)) == photo && Dark(at(w / 8, h / 2), 0) &&
               Dark(at(2, 2), 40) && !Dark(at(2, 2), 4) && light > 10;
    });
}

TEST_F(ShowTest, FallerPrintsMoveDownOverADarkStage) {
    // Pale paper around the photos; the pale rows' middle moves down from one capture to the next.
    std::vector<double> lastMiddle(2, -1);
    ShowUntilEveryMonitor(L"faller", [&](size_t m, const MonitorPixel& at, int w, int h) {
        double rows = 0, count = 0;
        for (int y = 0; y < h; y += 2)
            for (int x = 0; x < w; x += 2)
                if (Dark(~at(x, y) & 0xFFFFFF, 10)) rows += y, count += 1;
        const double middle = count > 50 ? rows / count : -1;
        const bool down = lastMiddle[m] >= 0 && middle > lastMiddle[m] + 4;
        lastMiddle[m] = middle;
        return down && Dark(at(w / 2, 1), 12) && !Dark(at(w / 2, 1), 0);
    });
}

TEST_F(ShowTest, FourUpShowsTheTopLeftPhotoFirstAndTheOthersLater) {
    // The columns are 496 wide on a 1024 monitor: top left at 8, bottom right at 528 across and
    // 16 below the top photos.
    std::vector<bool> topLeftAlone(2, false);
    ShowUntilEveryMonitor(L"fourup", [&](size_t m, const MonitorPixel& at, int w, int h) {
        const bool topLeft = PhotoOf(at(w / 4, h / 3)) >= 0;
        const bool others = PhotoOf(at(w * 3 / 4, h / 3)) >= 0 || !Dark(at(w * 3 / 4, h - 60), 0);
        topLeftAlone[m] = topLeftAlone[m] || (topLeft && !others && !Dark(at(w / 4, h / 3), 0));
        return topLeftAlone[m] && others && PhotoOf(at(w * 3 / 4, h - 60)) >= 0;
    });
}

INSTANTIATE_TEST_SUITE_P(Show, ShowTest, ::testing::ValuesIn(kShows),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace e2e
