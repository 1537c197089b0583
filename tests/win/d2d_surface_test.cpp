// The Direct2D surface on a real window: what it draws is read back from the screen with GDI.
#include "platform/d2d_surface_win.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/win_handles.h"

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

struct Rgb {
    int r, g, b;
};

// A plain popup window that nothing else paints.
class TestWindow {
public:
    TestWindow() {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = L"LumivaneSurfaceTest";
        RegisterClassW(&windowClass); // a second registration fails harmlessly
        hwnd = CreateWindowExW(WS_EX_TOPMOST, windowClass.lpszClassName, L"", WS_POPUP | WS_VISIBLE,
                               120, 90, kWidth, kHeight, nullptr, nullptr,
                               windowClass.hInstance, nullptr);
        Pump();
    }
    ~TestWindow() {
        if (hwnd) DestroyWindow(hwnd);
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    static void Pump() {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }

    // The window's pixels as the screen shows them, top row first, once the pixel at (x, y)
    // shows `ready`: Wine presents a moment after EndDraw returns.
    std::vector<uint32_t> Capture(int x, int y, Rgb ready) const;

    HWND hwnd = nullptr;
};

Rgb At(const std::vector<uint32_t>& pixels, int x, int y) {
    const uint32_t p = pixels[y * kWidth + x];
    return {static_cast<int>((p >> 16) & 0xFF), static_cast<int>((p >> 8) & 0xFF),
            static_cast<int>(p & 0xFF)};
}

::testing::AssertionResult Near(const Rgb& actual, const Rgb& expected) {
    if (std::abs(actual.r - expected.r) <= 3 && std::abs(actual.g - expected.g) <= 3 &&
        std::abs(actual.b - expected.b) <= 3) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "(" << actual.r << "," << actual.g << "," << actual.b << ") instead of ("
           << expected.r << "," << expected.g << "," << expected.b << ")";
}

std::vector<uint32_t> CaptureOnce(HWND hwnd) {
    RECT rect;
    GetWindowRect(hwnd, &rect);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = kWidth;
    info.bmiHeader.biHeight = -kHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    std::vector<uint32_t> pixels(kWidth * kHeight);
    WindowDc screen(nullptr);
    HDC memory = CreateCompatibleDC(screen.Get());
    void* bits = nullptr;
    HBITMAP dib = CreateDIBSection(screen.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (memory && dib) {
        HGDIOBJ old = SelectObject(memory, dib);
        BitBlt(memory, 0, 0, kWidth, kHeight, screen.Get(), rect.left, rect.top, SRCCOPY);
        GdiFlush();
        std::copy_n(static_cast<const uint32_t*>(bits), pixels.size(), pixels.begin());
        SelectObject(memory, old);
    }
    if (dib) DeleteObject(dib);
    if (memory) DeleteDC(memory);
    return pixels;
}

std::vector<uint32_t> TestWindow::Capture(int x, int y, Rgb ready) const {
    std::vector<uint32_t> pixels;
    for (int attempt = 0; attempt < 250; ++attempt) {
        Pump();
        pixels = CaptureOnce(hwnd);
        if (Near(At(pixels, x, y), ready)) break;
        Sleep(20);
    }
    return pixels;
}

// One window for the whole suite: under Wine without a window manager, hiding or destroying a
// shown window waits two seconds for a state change that never comes.
class D2dSurfaceTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        window = new TestWindow;
        LoadDrawingFactories(factories);
    }
    static void TearDownTestSuite() {
        delete window;
        factories.reset();
    }
    void SetUp() override {
        ASSERT_TRUE(factories && factories->d2dFactory && factories->dwriteFactory);
        ASSERT_TRUE(window->hwnd);
        surface = CreateHwndSurface(*factories, window->hwnd, kWidth, kHeight, true);
        ASSERT_TRUE(surface);
        // Start every test from magenta, a colour that no check looks for, so that nothing a
        // test reads can be left over from the one before.
        surface->BeginDraw();
        surface->Clear({1, 0, 1, 1});
        ASSERT_EQ(surface->EndDraw(), EndDrawResult::Ok);
        ASSERT_TRUE(Near(At(window->Capture(0, 0, {255, 0, 255}), 0, 0), {255, 0, 255}));
    }

    static std::shared_ptr<DrawingFactories> factories;
    static TestWindow* window;
    std::unique_ptr<DrawingSurface> surface;
};

std::shared_ptr<DrawingFactories> D2dSurfaceTest::factories;
TestWindow* D2dSurfaceTest::window = nullptr;

// Both libraries come from the system folder, never from beside the program, and stay loaded
// after the factories are gone.
TEST(LoadDrawingFactories, LoadsFromTheSystemFolderAndKeepsTheLibraries) {
    std::shared_ptr<DrawingFactories> pair;
    ASSERT_TRUE(LoadDrawingFactories(pair));
    ASSERT_TRUE(pair && pair->d2dFactory && pair->dwriteFactory);
    pair.reset();
    wchar_t system[MAX_PATH];
    const UINT length = GetSystemDirectoryW(system, MAX_PATH);
    ASSERT_GT(length, 0u);
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
        // Built in the middle of the window's frame, as a composite is.
        auto offscreen = surface->CreateCompatibleRenderTarget({16, 16}, 16, 16);
        ASSERT_TRUE(offscreen);
        EXPECT_FALSE(offscreen->IsOccluded());
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

    const auto pixels = window->Capture(4, 4, {255, 0, 0});
    EXPECT_TRUE(Near(At(pixels, 4, 4), {255, 0, 0}));
    EXPECT_TRUE(Near(At(pixels, 28, 20), {255, 0, 0}));
    EXPECT_TRUE(Near(At(pixels, 34, 12), {0, 255, 0}));
    EXPECT_TRUE(Near(At(pixels, 62, 12), {255, 255, 255}));
    EXPECT_TRUE(Near(At(pixels, 4, 28), {255, 255, 0}));
    EXPECT_TRUE(Near(At(pixels, 28, 44), {255, 255, 0}));
    EXPECT_TRUE(Near(At(pixels, 48, 36), {128, 0, 127}));
}

TEST_F(D2dSurfaceTest, TransformAndOpacityApplyToBitmaps) {
    const uint32_t white = 0xFFFFFFFF;
    auto bitmap = surface->CreateBitmap(1, 1, &white);
    ASSERT_TRUE(bitmap);
    surface->BeginDraw();
    surface->Clear({0, 0, 0, 1});
    // Mirrored about y = 24 and moved right by 32: (0, 0, 16, 8) lands on (32, 40, 48, 48).
    surface->SetTransform({1, 0, 0, -1, 32, 48});
    surface->DrawBitmap(*bitmap, {0, 0, 16, 8}, 0.5f, nullptr);
    surface->SetTransform(Matrix3x2F{});
    ASSERT_EQ(surface->EndDraw(), EndDrawResult::Ok);

    const auto pixels = window->Capture(40, 44, {128, 128, 128});
    EXPECT_TRUE(Near(At(pixels, 40, 44), {128, 128, 128}));
    EXPECT_TRUE(Near(At(pixels, 8, 4), {0, 0, 0}));
    EXPECT_TRUE(Near(At(pixels, 40, 4), {0, 0, 0}));
}

TEST_F(D2dSurfaceTest, GradientRunsFromStartToEndAndClampsBeyond) {
    const GradientStop stops[] = {{0, {0, 0, 0, 1}}, {1, {1, 1, 1, 1}}};
    auto brush = surface->CreateLinearGradientBrush({0, 0}, {0, 24}, stops, 2);
    ASSERT_TRUE(brush);
    brush->SetColor({1, 0, 0, 1}); // ignored by a gradient
    surface->BeginDraw();
    surface->FillRectangle({0, 0, kWidth, kHeight}, *brush);
    ASSERT_EQ(surface->EndDraw(), EndDrawResult::Ok);

    const auto pixels = window->Capture(32, 40, {255, 255, 255});
    const Rgb top = At(pixels, 32, 0), middle = At(pixels, 32, 12);
    EXPECT_LT(top.r, 16);
    EXPECT_TRUE(Near(middle, {middle.r, middle.r, middle.r})) << "grey, not red";
    EXPECT_GT(middle.r, 64);
    EXPECT_LT(middle.r, 192);
    EXPECT_TRUE(Near(At(pixels, 32, 40), {255, 255, 255})) << "white beyond the end";
}

// Text shows only where the prefix maps "Segoe UI" to a font it has, as the test scripts do.
TEST_F(D2dSurfaceTest, TextAndLayersDrawInsideAFrame) {
    const TextFormatParams font{L"Segoe UI", 600, 0, 5, 24};
    auto format = surface->CreateTextFormat(font);
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
    ASSERT_EQ(surface->EndDraw(), EndDrawResult::Ok);

    const auto pixels = window->Capture(62, 46, {255, 0, 0});
    int lit = 0;
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < kWidth; ++x) lit += At(pixels, x, y).g > 128;
    }
    EXPECT_GT(lit, 20) << "the text left no mark";
    EXPECT_TRUE(Near(At(pixels, 2, 2), {0, 0, 0})) << "centred text stays off the corner";
}

TEST_F(D2dSurfaceTest, SecondaryWindowsGetATargetToo) {
    auto secondary = CreateHwndSurface(*factories, window->hwnd, kWidth, kHeight, false);
    ASSERT_TRUE(secondary);
    secondary->BeginDraw();
    secondary->Clear({0, 1, 0, 1});
    EXPECT_EQ(secondary->EndDraw(), EndDrawResult::Ok);
    EXPECT_TRUE(Near(At(window->Capture(32, 24, {0, 255, 0}), 32, 24), {0, 255, 0}));
}

} // namespace
