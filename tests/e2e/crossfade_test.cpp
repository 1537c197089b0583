// The plain GDI view, seen on the screen: the message of a user with no photos, and photos that
// crossfade with their captions when Direct2D can't be loaded.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "e2e/files.h"
#include "e2e/saver_test.h"
#include "e2e/screen.h"

namespace e2e {
namespace {

bool Near(uint32_t pixel, uint32_t colour) {
    int distance = 0;
    for (int shift : {0, 8, 16})
        distance += std::abs(int(pixel >> shift & 0xFF) - int(colour >> shift & 0xFF));
    return distance < 30;
}

// The white pixels of monitor `m` in a capture of the desktop must be `text` in one line at the
// bottom left, one font height (a 45th of the monitor's) in from the edges, as wide as the
// saver's caption font sets it.
void ExpectCaption(const Image& shot, const RECT& m, const std::wstring& text) {
    const int h = std::max<int>((m.bottom - m.top) / 45, 12);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(
        dc, CreateFontW(-h, 0, 0, 0, 600, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 5, 0, L"Segoe UI"));
    SIZE size{};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    DeleteObject(SelectObject(dc, old));
    DeleteDC(dc);
    RECT ink{m.right, m.bottom, m.left, m.top};
    for (int y = m.top; y < m.bottom; ++y)
        for (int x = m.left; x < m.right; ++x)
            if ((shot.At(x, y) & 0xC0C0C0) == 0xC0C0C0)
                ink = {std::min<LONG>(ink.left, x), std::min<LONG>(ink.top, y),
                       std::max<LONG>(ink.right, x + 1), y + 1};
    EXPECT_NEAR(ink.left - m.left, h, 3) << "left edge of the caption";
    EXPECT_NEAR(ink.right - ink.left, size.cx, 4) << "width of the caption";
    EXPECT_TRUE(ink.bottom <= m.bottom - h + 1 && ink.top >= m.bottom - 3 * h)
        << ink.top << "-" << ink.bottom;
}

TEST_F(SaverTest, WithoutPhotosEveryMonitorShowsTheMessageInTheUsersLanguage) {
    WriteSaverString(L"ImportsDir", FreshFolder(L"no-photos"));
    WriteSaverString(L"Language", L"de");
    StartFullScreen();
    Sleep(1500);
    const Image shot = CaptureDesktopAs(L"no-photos-de");
    for (const RECT& monitor : MonitorRects())
        ExpectCaption(shot, monitor,
                      L"Lumivane hat noch keine Fotos. Öffnen Sie es über den Infobereich, um sich "
                      L"anzumelden.");
    PressKey(VK_SPACE);
    ExpectExitZero();
}

TEST_F(SaverTest, WithoutDirect2DPhotosCrossfadeAtThePauseOfSaverPauseWithTheirCaptions) {
    const std::wstring imports = FreshFolder(L"photos"),
                       photos = imports + L"\\Lumivane\\Lumivane ScreenSaver\\";
    constexpr uint32_t kAmber = 0xC08020, kBlue = 0x2040C0;
    ASSERT_TRUE(MakeFolders(photos) &&
                WriteJpeg(photos + L"Amber Field_abcdefgh.jpg", 640, 480, kAmber) &&
                WriteJpeg(photos + L"Blue Lake_abcdefgh.jpg", 640, 480, kBlue));
    WriteSaverString(L"ImportsDir", imports);
    WriteSaverString(L"SaverPause", L"0"); // 3 s still, then a fade of 3 s
    // A copy of the saver under a name of its own, for which Wine disables d2d1.dll (its
    // per-program DllOverrides; WINEDLLOVERRIDES set in here wouldn't reach the child's loader).
    const std::wstring saver = imports + L"\\LumivaneNoD2D.scr";
    ASSERT_TRUE(CopyFileW(SaverPath().c_str(), saver.c_str(), FALSE));
    RegSetKeyValueW(HKEY_CURRENT_USER,
                    L"Software\\Wine\\AppDefaults\\LumivaneNoD2D.scr\\DllOverrides", L"d2d1",
                    REG_SZ, L"", sizeof(wchar_t));
    const std::vector<RECT> monitors = MonitorRects();
    StartFullScreen(saver);
    const ULONGLONG shown = GetTickCount64();
    const auto centre = [](const RECT& m) {
        const LONG x = (m.left + m.right) / 2, y = (m.top + m.bottom) / 2;
        return CaptureScreen({x, y, x + 1, y + 1}).At(0, 0);
    };
    Sleep(1500);
    Image shot = CaptureDesktopAs(L"crossfade-1-still");
    // Two photos over two monitors: the second starts one photo further on.
    EXPECT_TRUE(Near(centre(monitors[0]), kAmber) && Near(centre(monitors[1]), kBlue));
    ExpectCaption(shot, monitors[0], L"Amber Field");
    ExpectCaption(shot, monitors[1], L"Blue Lake");
    ULONGLONG fadeStart = 0, fadeEnd = 0;
    bool halfway = false; // a capture to look at
    WaitUntil(
        [&] {
            const uint32_t pixel = centre(monitors[0]);
            const ULONGLONG now = GetTickCount64();
            if (!fadeStart && !Near(pixel, kAmber)) fadeStart = now;
            if (fadeStart && now - fadeStart > 1300 && !halfway) {
                CaptureDesktopAs(L"crossfade-2-halfway");
                halfway = true;
            }
            return Near(pixel, kBlue) && (fadeEnd = now);
        },
        20000, 20);
    ASSERT_NE(fadeEnd, 0u) << "no change to the next photo";
    std::printf("fade began %llu ms after the windows showed and took %llu ms\n", fadeStart - shown,
                fadeEnd - fadeStart);
    // 6 s for SaverPause "0" (the default would be 13 s), a little later on a loaded machine.
    EXPECT_TRUE(fadeStart - shown >= 5000 && fadeStart - shown <= 10000) << fadeStart - shown;
    // A cut would end the change as soon as it began.
    EXPECT_GE(fadeEnd - fadeStart, 2000u) << "a fade takes 100 ticks of 30 ms";
    shot = CaptureDesktopAs(L"crossfade-3-next");
    EXPECT_TRUE(Near(centre(monitors[1]), kAmber));
    ExpectCaption(shot, monitors[0], L"Blue Lake");
    PressKey(VK_SPACE);
    ExpectExitZero();
}

} // namespace
} // namespace e2e
