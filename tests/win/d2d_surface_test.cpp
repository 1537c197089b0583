// The Direct2D surface on a real window: what it draws is read back from the screen with GDI.
#include "platform/d2d_surface_win.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/win_handles.h"
#include "win/pixel_near.h"

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

// One window for the whole suite: under Wine without a window manager, hiding or destroying a
// shown window waits two seconds for a state change that never comes.
class D2dSurfaceTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = L"LumivaneSurfaceTest";
        RegisterClassW(&windowClass);
        window = CreateWindowExW(WS_EX_TOPMOST, windowClass.lpszClassName, L"",
                                 WS_POPUP | WS_VISIBLE, 120, 90, kWidth, kHeight, nullptr, nullptr,
                                 windowClass.hInstance, nullptr);
        LoadDrawingFactories(factories);
    }
    static void TearDownTestSuite() {
        DestroyWindow(window);
        factories.reset();
    }
    void SetUp() override {
        ASSERT_TRUE(window && factories && factories->d2dFactory && factories->dwriteFactory);
        surface = CreateHwndSurface(*factories, window, kWidth, kHeight, true);
        ASSERT_TRUE(surface);
        // Magenta, which no check looks for, so that nothing is left over from the test before.
        surface->BeginDraw();
        surface->Clear({1, 0, 1, 1});
        ASSERT_EQ(surface->EndDraw(), EndDrawResult::Ok);
        ASSERT_TRUE(WaitFor(0, 0, 0xFF00FF));
    }

    // 0xRRGGBB of what the screen shows at (x, y) of the window.
    static uint32_t Pixel(int x, int y) {
        RECT rect;
        GetWindowRect(window, &rect);
        WindowDc screen(nullptr);
        const COLORREF pixel = GetPixel(screen.Get(), rect.left + x, rect.top + y);
        return GetRValue(pixel) << 16 | GetGValue(pixel) << 8 | GetBValue(pixel);
    }

    // Waits until (x, y) shows `ready`: Wine presents a moment after EndDraw returns.
    static ::testing::AssertionResult WaitFor(int x, int y, uint32_t ready) {
        for (int attempt = 0; attempt < 250 && !Near(Pixel(x, y), ready, 3); ++attempt, Sleep(20)) {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        }
        return Near(Pixel(x, y), ready, 3);
    }

    static inline std::shared_ptr<DrawingFactories> factories;
    static inline HWND window = nullptr;
    std::unique_ptr<DrawingSurface> surface;
};

// Both libraries come from the system folder, never from beside the program, and stay loaded
// after the factories are gone.
TEST(LoadDrawingFactories, LoadsFromTheSystemFolderAndKeepsTheLibraries) {
    std::shared_ptr<DrawingFactories> pair;
    ASSERT_TRUE(LoadDrawingFactories(pair));
    ASSERT_TRUE(pair && pair->d2dFactory && pair->dwriteFactory);
    pair.reset();
    wchar_t system[MAX_PATH];
    ASSERT_GT(GetSystemDirectoryW(system, MAX_PATH), 0u);
    for (const wchar_t* name : {L"d2d1.dll", L"dwrite.dll"}) {
        const HMODULE module = GetModuleHandleW(name);
        ASSERT_TRUE(module) << "unloaded";
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(module, path, MAX_PATH);
        EXPECT_EQ(_wcsicmp(path, (std::wstring(system) + L"\\" + name).c_str()), 0);
    }
}

TEST_F(D2dSurfaceTest, DrawsFillsBitmapsAndOffscreenPicturesWhereAsked) {
    EXPECT_FALSE(surface->IsOccluded());
    EXPECT_GE(surface->MaximumBitmapSize(), 4096u);
    EXPECT_FALSE(surface->GetBitmap()); // a window target has no picture
    auto red = surface->CreateSolidColorBrush({0, 0, 0, 1});
    ASSERT_TRUE(red);
    red->SetColor({1, 0, 0, 1});
    // Two texels stretched over 32 pixels: green on the left, white on the right.
    const uint32_t stripes[] = {0xFF00FF00, 0xFFFFFFFF};
    auto stripesBitmap = surface->CreateBitmap(2, 1, stripes);
    // Half-strength red, premultiplied: over blue it gives half red plus half blue.
    const uint32_t halfRed = 0x80800000;
    auto halfRedBitmap = surface->CreateBitmap(1, 1, &halfRed);
    ASSERT_TRUE(stripesBitmap && halfRedBitmap);

    surface->BeginDraw();
    surface->Clear({0, 0, 1, 1});
    surface->FillRectangle({0, 0, 32, 24}, *red);
    surface->DrawBitmap(*stripesBitmap, {32, 0, 64, 24}, 1, nullptr);
    surface->DrawBitmap(*halfRedBitmap, {32, 24, 64, 48}, 1, nullptr);
    {
        // Made in the middle of the window's frame, as a composite is.
        auto offscreen = surface->CreateCompatibleRenderTarget({16, 16}, 16, 16);
        ASSERT_TRUE(offscreen);
        auto cyan = offscreen->CreateSolidColorBrush({0, 1, 1, 1});
        ASSERT_TRUE(cyan);
        offscreen->BeginDraw();
        offscreen->Clear({1, 1, 0, 1});
        offscreen->FillRectangle({0, 0, 8, 16}, *cyan);
        EXPECT_EQ(offscreen->EndDraw(), EndDrawResult::Ok);
        auto picture = offscreen->GetBitmap();
        ASSERT_TRUE(picture);
        // Only the yellow right half of the square, stretched into the bottom-left quarter.
        const RectF source{8, 0, 16, 16};
        surface->DrawBitmap(*picture, {0, 24, 32, 48}, 1, &source);
    }
    ASSERT_EQ(surface->EndDraw(), EndDrawResult::Ok);

    EXPECT_TRUE(WaitFor(4, 4, 0xFF0000));
    EXPECT_TRUE(Near(Pixel(34, 12), 0x00FF00, 3));
    EXPECT_TRUE(Near(Pixel(62, 12), 0xFFFFFF, 3));
    EXPECT_TRUE(Near(Pixel(4, 28), 0xFFFF00, 3));
    EXPECT_TRUE(Near(Pixel(48, 36), 0x80007F, 3));
}

// A secondary window's target, which presents at once rather than with the display's refresh.
TEST_F(D2dSurfaceTest, SecondaryTargetAppliesTransformAndOpacityToBitmaps) {
    auto secondary = CreateHwndSurface(*factories, window, kWidth, kHeight, false);
    ASSERT_TRUE(secondary);
    const uint32_t white = 0xFFFFFFFF;
    auto bitmap = secondary->CreateBitmap(1, 1, &white);
    ASSERT_TRUE(bitmap);
    secondary->BeginDraw();
    secondary->Clear({0, 0, 0, 1});
    // Mirrored about y = 24 and moved right by 32: (0, 0, 16, 8) lands on (32, 40, 48, 48).
    secondary->SetTransform({1, 0, 0, -1, 32, 48});
    secondary->DrawBitmap(*bitmap, {0, 0, 16, 8}, 0.5f, nullptr);
    // Turned a quarter about the origin and moved by (24, 8): (0, 0, 16, 8) lands on
    // (16, 8, 24, 24). With m12 and m21 swapped it would land on (24, -8, 32, 8).
    secondary->SetTransform({0, 1, -1, 0, 24, 8});
    secondary->DrawBitmap(*bitmap, {0, 0, 16, 8}, 1.0f, nullptr);
    secondary->SetTransform(Matrix3x2F{});
    ASSERT_EQ(secondary->EndDraw(), EndDrawResult::Ok);

    EXPECT_TRUE(WaitFor(40, 44, 0x808080));
    EXPECT_TRUE(Near(Pixel(20, 16), 0xFFFFFF, 3));
    EXPECT_TRUE(Near(Pixel(28, 4), 0x000000, 3));
    EXPECT_TRUE(Near(Pixel(8, 4), 0x000000, 3));
    EXPECT_TRUE(Near(Pixel(40, 4), 0x000000, 3));
}

TEST_F(D2dSurfaceTest, GradientRunsFromStartToEndAndClampsBeyond) {
    const GradientStop stops[] = {{0, {0, 0, 0, 1}}, {1, {1, 1, 1, 1}}};
    auto brush = surface->CreateLinearGradientBrush({0, 0}, {0, 24}, stops, 2);
    ASSERT_TRUE(brush);
    brush->SetColor({1, 0, 0, 1}); // ignored by a gradient
    surface->BeginDraw();
    surface->FillRectangle({0, 0, kWidth, kHeight}, *brush);
    ASSERT_EQ(surface->EndDraw(), EndDrawResult::Ok);

    EXPECT_TRUE(WaitFor(32, 40, 0xFFFFFF)) << "white beyond the end";
    const uint32_t middle = Pixel(32, 12), level = middle & 0xFF;
    EXPECT_LT(Pixel(32, 0) & 0xFF, 16u);
    EXPECT_TRUE(Near(middle, level * 0x010101, 3)) << "grey, not red";
    EXPECT_GT(level, 64u);
    EXPECT_LT(level, 192u);
}

// Text shows only where the prefix maps "Segoe UI" to a font it has, as the test scripts do.
TEST_F(D2dSurfaceTest, TextAndLayersDrawInsideAFrame) {
    auto format = surface->CreateTextFormat({L"Segoe UI", 600, 0, 5, 24});
    ASSERT_TRUE(format);
    format->SetTextAlignment(TextAlignment::Center);
    format->SetParagraphAlignment(ParagraphAlignment::Center);
    format->SetWordWrapping(WordWrapping::NoWrap);
    auto white = surface->CreateSolidColorBrush({1, 1, 1, 1});
    auto red = surface->CreateSolidColorBrush({1, 0, 0, 1});
    auto layer = surface->CreateLayer();
    ASSERT_TRUE(white && red && layer);
    surface->UseGrayscaleTextAntialiasing();

    surface->BeginDraw();
    surface->Clear({0, 0, 0, 1});
    surface->DrawString(L"HH", *format, {0, 0, kWidth, 40}, *white);
    surface->PushLayer(*layer, 0.5f, white.get());
    surface->FillRectangle({60, 44, 64, 48}, *red);
    surface->PopLayer();
    surface->FillRectangle({0, 44, 4, 48}, *white); // after the layer, at full strength
    ASSERT_EQ(surface->EndDraw(), EndDrawResult::Ok);

    ASSERT_TRUE(WaitFor(2, 46, 0xFFFFFF));
    // Inside the layer: red at half strength, or at full under Wine, whose layers ignore opacity.
    EXPECT_GE(Pixel(62, 46) >> 16, 0x70u);
    EXPECT_TRUE(Near(Pixel(62, 46) & 0xFFFF, 0, 3));
    int lit = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < kWidth; ++x) lit += (Pixel(x, y) >> 8 & 0xFF) > 128;
    EXPECT_GT(lit, 20) << "the text left no mark";
    EXPECT_TRUE(Near(Pixel(2, 2), 0x000000, 3)) << "centred text stays off the corner";
}

} // namespace
