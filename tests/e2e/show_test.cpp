// The show: real JPEG files in the photo folder, the real saver drawing them with Direct2D.
// Wine composes layers at full strength, so pixels are judged only once a photo shows in its own
// colour, which under a real fade happens at full strength.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "e2e/files.h"
#include "e2e/saver_registry.h"
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
        bool alike = true;
        for (int shift : {0, 8, 16})
            alike = alike && std::abs(static_cast<int>((pixel >> shift & 0xFF) -
                                                     (kColours[photo] >> shift & 0xFF))) < 24;
        if (alike) return photo;
    }
    return -1;
}

bool Dark(uint32_t pixel) { return (pixel >> 16 & 0xFF) + (pixel >> 8 & 0xFF) + (pixel & 0xFF) < 60; }

// The columns from the first to one past the last that aren't dark, in row `y` of `image`
// between `from` and `to`; {0, 0} when all are dark.
std::pair<int, int> LitSpan(const Image& image, int y, int from, int to) {
    int left = to, right = from;
    for (int x = from; x < to; ++x) {
        if (Dark(image.At(x, y))) continue;
        left = std::min(left, x);
        right = x + 1;
    }
    return left < right ? std::make_pair(left - from, right - from) : std::make_pair(0, 0);
}

// Light grey to white pixels in `rect` of `image`: the caption is thin white text with a black
// shadow, and neither photo has a channel this light.
int LightPixels(const Image& image, const RECT& rect) {
    int count = 0;
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x)
            count += (image.At(x, y) & 0x808080) == 0x808080;
    return count;
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
        saver_registry::WriteString(L"ImportsDir", directory);
        saver_registry::WriteString(L"SaverPause", L"0"); // 3 s rests
    }
};

TEST_P(ShowTest, EachMonitorShowsAPhotoThenTheNext) {
    const Show& show = GetParam();
    saver_registry::WriteString(L"SaverShow", show.show);
    saver_registry::WriteDword(L"SaverTitle", show.title);
    saver_registry::WriteDword(L"SaverFit", show.fit);
    const std::vector<RECT> monitors = MonitorRects();
    ASSERT_EQ(StartFullScreen().size(), monitors.size());
    const RECT desktop = DesktopRect();
    const int middle = (monitors[0].top + monitors[0].bottom) / 2;
    const RECT row{desktop.left, middle, desktop.right, middle + 1};

    // The photos each monitor showed in turn, and the lit span of the first monitor's middle row.
    std::vector<std::vector<int>> seen(monitors.size());
    int lowestLeft = INT_MAX, highestLeft = 0, lowestRight = INT_MAX, highestRight = 0;
    const auto bothChanged = [&] {
        const Image line = CaptureScreen(row);
        for (size_t m = 0; m < monitors.size(); ++m) {
            const RECT& r = monitors[m];
            const int photo = PhotoOf(line.At((r.left + r.right) / 2 - desktop.left, 0));
            if (photo < 0 || (!seen[m].empty() && seen[m].back() == photo)) continue;
            seen[m].push_back(photo);
            if (show.moves || seen[m].size() > 1) continue;
            // The Fader at full strength: the whole monitor, with its bars and caption.
            const Image shot = CaptureScreen(r);
            SavePng(shot, L"show-" + std::to_wstring(m) + L"-" +
                              std::wstring(show.name, show.name + strlen(show.name)) + L".png");
            const int width = r.right - r.left, height = r.bottom - r.top;
            const auto span = LitSpan(shot, height / 2, 0, width);
            const int left = show.fit ? 0 : (width - height) / 2;
            EXPECT_NEAR(span.first, left, 3) << "monitor " << m;
            EXPECT_NEAR(span.second, width - left, 3) << "monitor " << m;
            const int white = LightPixels(shot, {24, 24, 240, 72});
            if (show.title) EXPECT_GT(white, 20) << "no caption at the top left, monitor " << m;
            else EXPECT_EQ(white, 0) << "a caption with SaverTitle 0, monitor " << m;
        }
        const auto span = LitSpan(line, 0, monitors[0].left - desktop.left,
                                  monitors[0].right - desktop.left);
        if (span.second > span.first) {
            lowestLeft = std::min(lowestLeft, span.first);
            highestLeft = std::max(highestLeft, span.first);
            lowestRight = std::min(lowestRight, span.second);
            highestRight = std::max(highestRight, span.second);
        }
        return std::all_of(seen.begin(), seen.end(), [](const auto& s) { return s.size() > 1; });
    };
    EXPECT_TRUE(WaitUntil(bothChanged, 30000, 50)) << "a monitor didn't show two photos";
    ASSERT_LE(lowestLeft, highestLeft) << "no photo on the first monitor";
    const bool moved = highestLeft - lowestLeft > 16 || highestRight - lowestRight > 16;
    EXPECT_EQ(moved, show.moves) << "edges from " << lowestLeft << "-" << highestLeft << " to "
                                 << lowestRight << "-" << highestRight;
}

INSTANTIATE_TEST_SUITE_P(Show, ShowTest, ::testing::ValuesIn(kShows),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace e2e
