// The crossfade's timing, alpha, caption size, and each window's loads and fades.
#include <gtest/gtest.h>

#include "session/crossfade.h"
#include "support/fake_window_thread.h"

namespace {

// Photo n, whose caption is "Photo n", and the path that the fake loaded into a bitmap.
std::wstring PhotoPath(size_t n) {
    return L"C:\\p\\Photo " + std::to_wstring(n) + L"_abcdefgh.jpg";
}
std::wstring Loaded(const PlatformObject& bitmap) {
    return bitmap ? *static_cast<std::wstring*>(bitmap.get()) : L"";
}

struct Fixture {
    FakeWindowThread thread;
    SaverSession session{SaverMode::Fullscreen, &thread};
    ScreenWindow window{&session, 0, 1920, 1080};
    explicit Fixture(size_t photos) {
        for (size_t n = 0; n < photos; ++n) session.photos.push_back(PhotoPath(n));
    }
};

TEST(Crossfade, PeriodFollowsThePauseIndexAlphaTheStepAndCaptionTheHeight) {
    const uint32_t periods[] = {13000, 6000, 8000, 13000, 23000, 33000, 63000, 13000};
    for (int32_t i = -1; i <= 6; ++i) EXPECT_EQ(CrossfadePeriodMs(i), periods[i + 1]) << i;
    for (auto [step, alpha] : {std::pair{0, 0}, {1, 2}, {50, 127}, {100, 255}, {101, 255}})
        EXPECT_EQ(FadeAlpha(step), alpha) << step;
    // The caption's place on a monitor is seen end to end; a preview's pane sets larger text.
    for (auto [mode, height, font] : {std::tuple{SaverMode::Fullscreen, 500, 12},
                                      {SaverMode::Preview, 100, 12},
                                      {SaverMode::Preview, 240, 20}})
        EXPECT_EQ(LayOutCaption(mode, 320, height).fontHeight, font);
}

TEST(Crossfade, LoadTriesAtMostTenPhotosAndEachOnceMovingOnOverFailures) {
    // Photos, cursor, the photos tried in order, how many of the first ones tried fail.
    const std::tuple<size_t, uint64_t, std::vector<size_t>, size_t> cases[] = {
        {1, 0, {0}, 1}, {2, 3, {1, 0}, 1}, {25, 0, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 9},
        {25, 20, {20, 21, 22, 23, 24, 0, 1, 2, 3, 4}, 10}};
    for (const auto& [photos, cursor, indices, failures] : cases) {
        Fixture f(photos);
        f.window.cursor = cursor;
        std::vector<std::wstring> tried;
        for (size_t n : indices) tried.push_back(PhotoPath(n));
        f.thread.unreadable.insert(tried.begin(), tried.begin() + failures);
        const bool loaded = failures < tried.size();
        std::wstring caption = L"old";
        EXPECT_EQ(f.window.LoadNext(f.window.currentBitmap, caption), loaded);
        EXPECT_EQ(f.thread.loads, tried);
        EXPECT_EQ(f.window.cursor, cursor + tried.size());
        EXPECT_EQ(Loaded(f.window.currentBitmap) + L"|" + caption,
                  loaded ? tried.back() + L"|Photo " + std::to_wstring(indices.back()) : L"|old");
    }
}

TEST(Crossfade, FadeSwitchesCaptionAtStep51AndEndsWithTheNextPhotoCurrent) {
    Fixture f(2), one(1);
    EXPECT_FALSE(one.window.StartFade()) << "one photo never fades";
    ASSERT_TRUE(f.window.LoadNext(f.window.currentBitmap, f.window.currentCaption) &&
                f.window.StartFade());
    EXPECT_FALSE(f.window.StartFade()) << "a period tick passes a fading window by";
    EXPECT_EQ(f.window.cursor, 2u);
    std::wstring captions; // at steps 50 and 51
    for (int32_t step = 2; step <= 100; ++step)
        if (!f.window.AdvanceFade() && (step == 50 || step == 51))
            captions += f.window.CrossfadeCaption() + L";";
    EXPECT_EQ(captions, L"Photo 0;Photo 1;");
    EXPECT_TRUE(f.window.AdvanceFade());
    EXPECT_EQ(Loaded(f.window.currentBitmap) + Loaded(f.window.nextBitmap), PhotoPath(1));
    EXPECT_TRUE(f.window.StartFade() && f.window.fadeStep == 1 &&
                Loaded(f.window.nextBitmap) == PhotoPath(0));
}

} // namespace
