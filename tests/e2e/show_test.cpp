// The show as a user sees it: real JPEG files in the photo folder, drawn by the real saver with
// Direct2D, or with plain GDI when Direct2D can't be loaded, until input of a user ends it. Wine
// composes layers at full strength (PushLayer is a stub), so the show's pixels are judged only once
// a photo shows in its own colour, which under a real fade happens too.
#include "e2e/driver.h"
#include "support/wic_image_writer.h"

namespace e2e {
namespace {

// Two square photos of one colour each, captioned "Alpha" and "Beta" and shown in that order. On a
// 4:3 monitor a whole square photo leaves black bars at both sides.
constexpr uint32_t kColours[2] = {0x2E7D32, 0x1565C0};

// Makes them the saver's photos, 3 s apart (SaverPause "0"); returns the photo directory.
std::wstring MakePhotos() {
    const std::wstring imports = FreshFolder(L"photos");
    const std::wstring tree = imports + L"\\Lumivane\\Lumivane ScreenSaver\\";
    std::filesystem::create_directories(tree);
    for (const uint32_t colour : kColours) {
        std::vector<BYTE> pixels; // 24-bit BGR, what the JPEG encoder takes
        for (int i = 0; i < 600 * 600; ++i)
            pixels.insert(pixels.end(), {BYTE(colour), BYTE(colour >> 8), BYTE(colour >> 16)});
        const wchar_t* name = colour == kColours[0] ? L"Alpha-a0000000.jpg" : L"Beta-b0000000.jpg";
        EXPECT_TRUE(WriteWicImage(tree + name, GUID_ContainerFormatJpeg,
                                  GUID_WICPixelFormat24bppBGR, 600, 600, 1800, pixels.data()));
    }
    SetOption(L"ImportsDir", imports);
    SetOption(L"SaverPause", L"0");
    return imports;
}

// Which photo `pixel` shows: 0 or 1, or -1 for neither.
int PhotoOf(uint32_t pixel) {
    return Off(pixel, kColours[0]) < 24 ? 0 : Off(pixel, kColours[1]) < 24 ? 1 : -1;
}

// Monitor `m` in a capture of the desktop, from its top left (the harness's desktop starts at 0,0,
// with its monitors side by side).
struct View {
    const Image& shot;
    const RECT& m;
    int w = m.right - m.left, h = m.bottom - m.top;

    uint32_t At(int x, int y) const { return shot.At(m.left + x, m.top + y); }
    uint32_t Centre() const { return At(w / 2, h / 2); }
    // The bounds of the pixels from (x0, y0) to (x1, y1) whose every channel is within `most` of
    // white: with 127 light caption text (neither photo has all three channels this light), with
    // 245 anything but black.
    RECT Ink(int most, int x0, int y0, int x1, int y1) const {
        RECT ink{x1, y1, x0, y0};
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x)
                if (Off(At(x, y), 0xFFFFFF) <= most)
                    ink = {std::min<LONG>(ink.left, x), std::min<LONG>(ink.top, y),
                           std::max<LONG>(ink.right, x + 1), y + 1};
        return ink;
    }
};

// A Fader run: every monitor shows a photo and then the other at the middle. Each time a photo
// first shows in its own colour, it stands whole between black bars (SaverFit 0) with light caption
// pixels at the top left (SaverTitle 1). A move of 8 pixels leaves the run alone; a click on the
// last monitor hides every window at once and ends it with 0.
TEST_F(SaverTest, FaderShowsPhotoAfterPhotoBetweenBarsWithCaptionsUntilAClick) {
    MakePhotos();
    const std::vector<HWND> windows = StartFullScreen();
    const std::vector<RECT> monitors = MonitorRects();
    std::vector<int> photo(monitors.size(), -1), shown(monitors.size(), 0);
    EXPECT_TRUE(WaitUntil(
        [&] {
            const Image shot;
            for (size_t m = 0; m < monitors.size(); ++m) {
                const View v{shot, monitors[m]};
                if (PhotoOf(v.Centre()) < 0 || PhotoOf(v.Centre()) == photo[m]) continue;
                photo[m] = PhotoOf(v.Centre());
                ++shown[m];
                const RECT lit = v.Ink(245, 0, v.h / 2, v.w, v.h / 2 + 1); // the middle row
                EXPECT_NEAR(lit.left, (v.w - v.h) / 2, 3);
                EXPECT_NEAR(lit.right, (v.w + v.h) / 2, 3);
                EXPECT_LT(v.Ink(127, 24, 24, 240, 72).left, 240) << "no light caption pixels";
            }
            return std::all_of(shown.begin(), shown.end(), [](int n) { return n > 1; });
        },
        45000, 100))
        << "not every monitor showed a photo and then the other";
    const auto hidden = [&] {
        return std::none_of(windows.begin(), windows.end(), IsWindowVisible);
    };
    ASSERT_TRUE(MoveMouseTo(kRestingCursor.x + 8, kRestingCursor.y));
    EXPECT_FALSE(WaitUntil(hidden, kSettleMs)) << "a move of 8 pixels ended the run";
    const RECT& last = monitors.back();
    MoveMouseTo((last.left + last.right) / 2, (last.top + last.bottom) / 2, MOUSEEVENTF_MIDDLEDOWN);
    EXPECT_TRUE(WaitUntil(hidden, 1000, 1)) << "every window hidden within a second of the click";
    ExpectExitZero();
}

// The white pixels of a monitor must be `text` in one line at the bottom left, one font height (a
// 45th of the monitor's) in from the edges, as wide as the caption font sets it.
void ExpectCaption(const View& v, const std::wstring& text) {
    const int h = std::max(v.h / 45, 12);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(
        dc, CreateFontW(-h, 0, 0, 0, 600, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 5, 0, L"Segoe UI"));
    SIZE size{};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    DeleteObject(SelectObject(dc, old));
    DeleteDC(dc);
    const RECT ink = v.Ink(63, 0, 0, v.w, v.h);
    EXPECT_NEAR(ink.left, h, 3) << "left edge of the caption";
    EXPECT_NEAR(ink.right - ink.left, size.cx, 4) << "width of the caption";
    EXPECT_TRUE(ink.bottom <= v.h - h + 1 && ink.top >= v.h - 3 * h)
        << ink.top << "-" << ink.bottom;
}

TEST_F(SaverTest, WithoutDirect2DPhotosCrossfadeAtThePauseOfSaverPauseWithTheirCaptions) {
    // A copy of the saver under a name of its own, for which Wine disables d2d1.dll (its
    // per-program DllOverrides; WINEDLLOVERRIDES set in here wouldn't reach the child's loader).
    const std::wstring noD2D = MakePhotos() + L"\\LumivaneNoD2D.scr";
    ASSERT_TRUE(CopyFileW(saverPath.c_str(), noD2D.c_str(), FALSE));
    RegSetKeyValueW(HKEY_CURRENT_USER,
                    L"Software\\Wine\\AppDefaults\\LumivaneNoD2D.scr\\DllOverrides", L"d2d1",
                    REG_SZ, L"", sizeof(wchar_t));
    const std::vector<RECT> monitors = MonitorRects();
    StartFullScreen(noD2D);
    const ULONGLONG shown = GetTickCount64();
    Sleep(1500);
    const Image still;
    // Two photos over two monitors: the second starts one photo further on.
    EXPECT_LT(Off(View{still, monitors[0]}.Centre(), kColours[0]), 12);
    EXPECT_LT(Off(View{still, monitors[1]}.Centre(), kColours[1]), 12);
    ExpectCaption({still, monitors[0]}, L"Alpha");
    ExpectCaption({still, monitors[1]}, L"Beta");
    ULONGLONG fadeStart = 0, fadeEnd = 0;
    WaitUntil(
        [&] {
            const uint32_t pixel = View{Image(), monitors[0]}.Centre();
            if (!fadeStart && Off(pixel, kColours[0]) >= 12) fadeStart = GetTickCount64();
            return Off(pixel, kColours[1]) < 12 && (fadeEnd = GetTickCount64());
        },
        20000, 20);
    ASSERT_NE(fadeEnd, 0u) << "no change to the next photo";
    // 6 s for SaverPause "0" (the default would be 13 s), a little later on a loaded machine.
    EXPECT_TRUE(fadeStart - shown >= 5000 && fadeStart - shown <= 10000) << fadeStart - shown;
    // A cut would end the change as soon as it began.
    EXPECT_GE(fadeEnd - fadeStart, 2000u) << "a fade takes 100 ticks of 30 ms";
    ExpectCaption({Image(), monitors[0]}, L"Beta");
    // A move of 9 pixels in all ends it (a key ends the capture runs of tests/e2e/scenarios.sh).
    ASSERT_TRUE(MoveMouseTo(kRestingCursor.x + 9, kRestingCursor.y));
    ExpectExitZero();
}

} // namespace
} // namespace e2e
