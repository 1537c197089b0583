// The show as a user sees it: real JPEG files in the photo folder, drawn by the real saver with
// Direct2D, or with plain GDI when Direct2D can't be loaded; and the message of a user with no
// photos. Wine composes layers at full strength (PushLayer is a stub), so the show's pixels are
// judged only once a photo shows in its own colour, which under a real fade happens too.
#include "e2e/driver.h"

namespace e2e {
namespace {

// Two square photos of one colour each, captioned "Alpha" and "Beta" and shown in that order.
// On a 4:3 monitor a whole square photo leaves black bars at both sides.
constexpr uint32_t kColours[2] = {0x2E7D32, 0x1565C0};

// Makes them the saver's photos, 3 s apart (SaverPause "0"); returns the photo directory.
std::wstring MakePhotos() {
    const std::wstring imports = FreshFolder(L"photos");
    const std::wstring tree = imports + L"\\Lumivane\\Lumivane ScreenSaver\\";
    std::filesystem::create_directories(tree);
    EXPECT_TRUE(WriteJpeg(tree + L"Alpha-a0000000.jpg", kColours[0]) &&
                WriteJpeg(tree + L"Beta-b0000000.jpg", kColours[1]));
    SetOption(L"ImportsDir", imports);
    SetOption(L"SaverPause", L"0");
    return imports;
}

// Which photo `pixel` shows: 0 or 1, or -1 for neither.
int PhotoOf(uint32_t pixel) {
    return Off(pixel, kColours[0]) < 24 ? 0 : Off(pixel, kColours[1]) < 24 ? 1 : -1;
}

bool Dark(uint32_t pixel, int most) { return Off(pixel, 0) <= most; }

// Monitor `m` in a capture of the desktop, from its top left.
struct View {
    View(const Image& shot, const RECT& m)
        : shot(shot), left(m.left), top(m.top), w(m.right - m.left), h(m.bottom - m.top) {}
    const Image& shot;
    int left, top, w, h; // the desktop starts at 0,0: the harness's monitors are side by side

    uint32_t At(int x, int y) const { return shot.At(left + x, top + y); }
    // Light grey to white pixels from (x0, y0) to (x1, y1): a caption is thin white text with a
    // black shadow, and neither photo has all three channels this light.
    int Light(int x0, int y0, int x1, int y1) const {
        int light = 0;
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x) light += Off(At(x, y), 0xFFFFFF) < 128;
        return light;
    }
};

// What the watch of one monitor has seen so far.
struct Seen {
    bool done = false;
    int photo = -1, photos = 0;      // the photo at the middle, and how many showed there in turn
    int left = -1, right = -1;       // the lit span of the middle row when first lit
    bool moved = false;              // either end of the span since more than 16 pixels away
    double paleMiddle = -1;          // the pale rows' middle in the capture before
    bool topLeftAlone = false;       // the top-left photo shown without the others
};

struct Show {
    const char* name;
    const wchar_t* show; // SaverShow
    DWORD title, fit;    // SaverTitle, SaverFit
    bool moves;
    // Whether one monitor has shown what it should, after each capture.
    bool (*looks)(const Show&, Seen&, const View&);
};

// A photo and then the other at the middle, the lit span of the middle row moving exactly when
// the show moves. The Fader's photos stand whole between black bars with SaverFit 0 and cover
// the row with 1; light caption pixels are at the top left exactly with SaverTitle 1.
bool PhotoThenTheNext(const Show& show, Seen& s, const View& v) {
    int left = v.w, right = 0;
    for (int x = 0; x < v.w; ++x) {
        if (Dark(v.At(x, v.h / 2), 20)) continue;
        left = std::min(left, x);
        right = x + 1;
    }
    if (right > left && s.right < 0) {
        s.left = left;
        s.right = right;
    }
    s.moved = s.moved ||
              (right > left && (std::abs(left - s.left) > 16 || std::abs(right - s.right) > 16));
    const int photo = PhotoOf(v.At(v.w / 2, v.h / 2));
    if (photo < 0 || photo == s.photo) return s.photos > 1 && s.moved == show.moves;
    s.photo = photo;
    ++s.photos;
    if (!show.moves) {
        const int bar = show.fit ? 0 : (v.w - v.h) / 2;
        EXPECT_NEAR(left, bar, 3);
        EXPECT_NEAR(right, v.w - bar, 3);
        const int light = v.Light(24, 24, 240, 72);
        EXPECT_TRUE(show.title ? light > 20 : light == 0) << light << " light caption pixels";
    }
    return false;
}

// At rest: the square photo in the middle of a black frame, its mirror image below the frame,
// the title under the frame, and the stage's dark grey around.
bool FramedOverItsMirrorImage(const Show&, Seen&, const View& v) {
    const int photo = PhotoOf(v.At(v.w / 2, v.h / 2));
    const int title = v.Light(v.w / 2 - 40, v.h * 9 / 10 + 10, v.w / 2 + 40, v.h * 9 / 10 + 50);
    return photo >= 0 && PhotoOf(v.At(v.w / 2, v.h - 10)) == photo &&
           Dark(v.At(v.w / 8, v.h / 2), 0) && Dark(v.At(2, 2), 40) && !Dark(v.At(2, 2), 4) &&
           title > 10;
}

// Prints on pale paper whose rows' middle moves down from one capture to the next, over a dark
// stage that isn't black.
bool PrintsMoveDown(const Show&, Seen& s, const View& v) {
    double rows = 0, count = 0;
    for (int y = 0; y < v.h; y += 2) {
        for (int x = 0; x < v.w; x += 2) {
            if (Off(v.At(x, y), 0xFFFFFF) > 10) continue;
            rows += y;
            ++count;
        }
    }
    const double middle = count > 50 ? rows / count : -1;
    const bool down = s.paleMiddle >= 0 && middle > s.paleMiddle + 4;
    s.paleMiddle = middle;
    return down && Dark(v.At(v.w / 2, 1), 12) && !Dark(v.At(v.w / 2, 1), 0);
}

// The top-left photo first, the others later (columns of 496 on a 1024 monitor: the top right
// photo at 528 across, the bottom ones 16 below the top ones).
bool TopLeftFirst(const Show&, Seen& s, const View& v) {
    const bool topLeft = PhotoOf(v.At(v.w / 4, v.h / 3)) >= 0;
    const bool bottomRight = PhotoOf(v.At(v.w * 3 / 4, v.h - 60)) >= 0;
    const bool others = PhotoOf(v.At(v.w * 3 / 4, v.h / 3)) >= 0 ||
                        !Dark(v.At(v.w * 3 / 4, v.h - 60), 0);
    s.topLeftAlone = s.topLeftAlone || (topLeft && !others);
    return s.topLeftAlone && bottomRight;
}

const Show kShows[] = {
    {"Fader", L"", 1, 0, false, PhotoThenTheNext},
    {"FaderCoveringWithoutCaptions", L"", 0, 1, false, PhotoThenTheNext},
    {"Slider", L"slider", 1, 0, true, PhotoThenTheNext},
    {"Kber", L"kber", 1, 0, true, PhotoThenTheNext},
    {"Reflections", L"reflections", 1, 0, false, FramedOverItsMirrorImage},
    {"Faller", L"faller", 1, 0, false, PrintsMoveDown},
    {"FourUp", L"fourup", 1, 0, false, TopLeftFirst},
};

class ShowTest : public SaverTest, public ::testing::WithParamInterface<Show> {};

TEST_P(ShowTest, EveryMonitorShowsWhatThePresentationDraws) {
    const Show& show = GetParam();
    MakePhotos();
    SetOption(L"SaverShow", show.show);
    SetOption(L"SaverTitle", show.title);
    SetOption(L"SaverFit", show.fit);
    StartFullScreen();
    const std::vector<RECT> monitors = MonitorRects();
    std::vector<Seen> seen(monitors.size());
    const bool done = WaitUntil(
        [&] {
            const Image shot = CaptureScreen();
            for (size_t m = 0; m < monitors.size(); ++m)
                seen[m].done = seen[m].done || show.looks(show, seen[m], View(shot, monitors[m]));
            return std::all_of(seen.begin(), seen.end(), [](const Seen& s) { return s.done; });
        },
        45000, 100);
    if (!done) KeepShot(L"show-" + std::wstring(show.show));
    EXPECT_TRUE(done) << "not every monitor showed what it should";
}

INSTANTIATE_TEST_SUITE_P(Show, ShowTest, ::testing::ValuesIn(kShows),
                         [](const auto& info) { return std::string(info.param.name); });

// The white pixels of a monitor must be `text` in one line at the bottom left, one font height
// (a 45th of the monitor's) in from the edges, as wide as the caption font sets it.
void ExpectCaption(const View& v, const std::wstring& text) {
    const int h = std::max(v.h / 45, 12);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(
        dc, CreateFontW(-h, 0, 0, 0, 600, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 5, 0, L"Segoe UI"));
    SIZE size{};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    DeleteObject(SelectObject(dc, old));
    DeleteDC(dc);
    RECT ink{v.w, v.h, 0, 0};
    for (int y = 0; y < v.h; ++y)
        for (int x = 0; x < v.w; ++x)
            if (Off(v.At(x, y), 0xFFFFFF) < 64)
                ink = {std::min<LONG>(ink.left, x), std::min<LONG>(ink.top, y),
                       std::max<LONG>(ink.right, x + 1), y + 1};
    EXPECT_NEAR(ink.left, h, 3) << "left edge of the caption";
    EXPECT_NEAR(ink.right - ink.left, size.cx, 4) << "width of the caption";
    EXPECT_TRUE(ink.bottom <= v.h - h + 1 && ink.top >= v.h - 3 * h)
        << ink.top << "-" << ink.bottom;
}

TEST_F(SaverTest, WithoutPhotosEveryMonitorShowsTheMessageInTheUsersLanguage) {
    SetOption(L"ImportsDir", FreshFolder(L"no-photos"));
    SetOption(L"Language", L"de");
    StartFullScreen();
    Sleep(1500);
    const Image shot = KeepShot(L"no-photos-de");
    for (const RECT& monitor : MonitorRects())
        ExpectCaption(View(shot, monitor),
                      L"Lumivane hat noch keine Fotos. Öffnen Sie es über den Infobereich, um sich "
                      L"anzumelden.");
    PressKey(VK_SPACE);
    ExpectExitZero();
}

TEST_F(SaverTest, WithoutDirect2DPhotosCrossfadeAtThePauseOfSaverPauseWithTheirCaptions) {
    // A copy of the saver under a name of its own, for which Wine disables d2d1.dll (its
    // per-program DllOverrides; WINEDLLOVERRIDES set in here wouldn't reach the child's loader).
    const std::wstring noD2D = MakePhotos() + L"\\LumivaneNoD2D.scr";
    ASSERT_TRUE(CopyFileW(SaverPath().c_str(), noD2D.c_str(), FALSE));
    RegSetKeyValueW(HKEY_CURRENT_USER,
                    L"Software\\Wine\\AppDefaults\\LumivaneNoD2D.scr\\DllOverrides", L"d2d1",
                    REG_SZ, L"", sizeof(wchar_t));
    const std::vector<RECT> monitors = MonitorRects();
    StartFullScreen(noD2D);
    const ULONGLONG shown = GetTickCount64();
    const auto centre = [](const View& v) { return v.At(v.w / 2, v.h / 2); };
    Sleep(1500);
    const Image still = KeepShot(L"crossfade-1-still");
    // Two photos over two monitors: the second starts one photo further on.
    EXPECT_LT(Off(centre(View(still, monitors[0])), kColours[0]), 12);
    EXPECT_LT(Off(centre(View(still, monitors[1])), kColours[1]), 12);
    ExpectCaption(View(still, monitors[0]), L"Alpha");
    ExpectCaption(View(still, monitors[1]), L"Beta");
    ULONGLONG fadeStart = 0, fadeEnd = 0;
    WaitUntil(
        [&] {
            const uint32_t pixel = centre(View(CaptureScreen(), monitors[0]));
            if (!fadeStart && Off(pixel, kColours[0]) >= 12) fadeStart = GetTickCount64();
            return Off(pixel, kColours[1]) < 12 && (fadeEnd = GetTickCount64());
        },
        20000, 20);
    ASSERT_NE(fadeEnd, 0u) << "no change to the next photo";
    // 6 s for SaverPause "0" (the default would be 13 s), a little later on a loaded machine.
    EXPECT_TRUE(fadeStart - shown >= 5000 && fadeStart - shown <= 10000) << fadeStart - shown;
    // A cut would end the change as soon as it began.
    EXPECT_GE(fadeEnd - fadeStart, 2000u) << "a fade takes 100 ticks of 30 ms";
    ExpectCaption(View(KeepShot(L"crossfade-2-next"), monitors[0]), L"Beta");
    PressKey(VK_SPACE);
    ExpectExitZero();
}

} // namespace
} // namespace e2e
