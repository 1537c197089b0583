// The Direct2D surface on a real window: what it draws is read back from the screen with GDI.
// Text, layers, offscreen pictures, parts of bitmaps and the loading of the libraries are seen end
// to end (captions, Reflections, the planted DLL); here is what the presentations rely on without
// a check of their own there.
#include "platform/d2d_surface_win.h"

#include <gtest/gtest.h>

#include "platform/win_handles.h"
#include "win/pixel_near.h"

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

struct Probe {
    int x, y;
    uint32_t rgb; // 0xRRGGBB
    int tolerance;
};

// What the frame below must show; the first is waited for, as Wine presents a moment after
// EndDraw returns.
const Probe kProbes[] = {
    {40, 44, 0x808080, 3}, // the mirrored bitmap at half opacity
    {20, 16, 0xFFFFFF, 3}, // the turned one
    {28, 4, 0, 3},         // where it would be with m12 and m21 swapped
    {8, 4, 0, 3},
    {40, 4, 0, 3},
    {60, 0, 0, 16}, // the gradient: black at its start, grey halfway, white beyond its end
    {60, 12, 0x808080, 64},
    {60, 40, 0xFFFFFF, 3},
    {4, 44, 0xFF0000, 3},  // a brush's colour, set after it was made
    {52, 32, 0x800000, 3}, // half-strength red, premultiplied, over black
};

void DrawFrame(DrawingSurface& surface) {
    const uint32_t white = 0xFFFFFFFF, halfRed = 0x80800000;
    auto whiteBitmap = surface.CreateBitmap(1, 1, &white);
    auto halfRedBitmap = surface.CreateBitmap(1, 1, &halfRed);
    auto red = surface.CreateSolidColorBrush({0, 0, 0, 1});
    const GradientStop stops[] = {{0, {0, 0, 0, 1}}, {1, {1, 1, 1, 1}}};
    auto gradient = surface.CreateLinearGradientBrush({0, 0}, {0, 24}, stops, 2);
    ASSERT_TRUE(whiteBitmap && halfRedBitmap && red && gradient);
    red->SetColor({1, 0, 0, 1});
    surface.Clear({0, 0, 0, 1});
    // Mirrored about y = 24 and moved right by 32: (0, 0, 16, 8) lands on (32, 40, 48, 48).
    surface.SetTransform({1, 0, 0, -1, 32, 48});
    surface.DrawBitmap(*whiteBitmap, {0, 0, 16, 8}, 0.5f, nullptr);
    // Turned a quarter about the origin and moved by (24, 8): (0, 0, 16, 8) lands on
    // (16, 8, 24, 24). With m12 and m21 swapped it would land on (24, -8, 32, 8).
    surface.SetTransform({0, 1, -1, 0, 24, 8});
    surface.DrawBitmap(*whiteBitmap, {0, 0, 16, 8}, 1.0f, nullptr);
    surface.SetTransform(Matrix3x2F{});
    surface.FillRectangle({56, 0, 64, 48}, *gradient);
    surface.FillRectangle({0, 40, 8, 48}, *red);
    surface.DrawBitmap(*halfRedBitmap, {48, 24, 56, 40}, 1.0f, nullptr);
}

// 0xRRGGBB of what the screen shows at (x, y) of `window`.
uint32_t Pixel(HWND window, int x, int y) {
    RECT rect;
    GetWindowRect(window, &rect);
    WindowDc screen(nullptr);
    const COLORREF pixel = GetPixel(screen.Get(), rect.left + x, rect.top + y);
    return GetRValue(pixel) << 16 | GetGValue(pixel) << 8 | GetBValue(pixel);
}

TEST(D2dSurface, TransformsOpacityGradientAndColoursShowWhereAsked) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"LumivaneSurfaceTest";
    RegisterClassW(&windowClass);
    // Never hidden or destroyed: under Wine without a window manager, that waits two seconds for
    // a state change that never comes. It goes with the process.
    const HWND window = CreateWindowExW(WS_EX_TOPMOST, windowClass.lpszClassName, L"",
                                        WS_POPUP | WS_VISIBLE, 120, 90, kWidth, kHeight, nullptr,
                                        nullptr, windowClass.hInstance, nullptr);
    std::shared_ptr<DrawingFactories> factories;
    ASSERT_TRUE(window && LoadDrawingFactories(factories));
    const auto surface = CreateHwndSurface(*factories, window, kWidth, kHeight, true);
    ASSERT_TRUE(surface);
    surface->BeginDraw();
    DrawFrame(*surface);
    ASSERT_EQ(surface->EndDraw(), EndDrawResult::Ok);
    const auto shows = [window](const Probe& p) {
        return Near(Pixel(window, p.x, p.y), p.rgb, p.tolerance);
    };
    for (int wait = 0; wait < 250 && !shows(kProbes[0]); ++wait, Sleep(20)) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    for (const Probe& p : kProbes) EXPECT_TRUE(shows(p)) << p.x << "," << p.y;
}

} // namespace
