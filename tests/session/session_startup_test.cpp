// The start-up decisions of a session: the list, its order, the options, the windows' start
// indices and scale.
#include <gtest/gtest.h>

#include <map>

#include "library/memory_registry.h"
#include "library/random.h"
#include "session/saver_session.h"
#include "support/fake_window_thread.h"
#include "support/random_fake.h"

namespace {

using Paths = std::vector<std::wstring>;

TEST(SessionStartup, TakesTheSecondFolderOnlyWhenTheFirstIsEmpty) {
    std::map<std::wstring, Paths> folders{{L"C:\\saver", {}},
                                          {L"C:\\cache", {L"C:\\cache\\a.jpg"}}};
    const auto list = [&](const std::wstring& folder) { return folders[folder]; };
    EXPECT_EQ(ChoosePhotos(list, L"C:\\saver", L"C:\\cache"), Paths{L"C:\\cache\\a.jpg"});
    folders[L"C:\\saver"] = {L"C:\\saver\\b.jpg"};
    EXPECT_EQ(ChoosePhotos(list, L"C:\\saver", L"C:\\cache"), Paths{L"C:\\saver\\b.jpg"});
}

TEST(SessionStartup, SortsByFileNameStablyWhenNotRandom) {
    Paths photos{L"C:\\x\\b.jpg", L"C:\\z\\A.jpg", L"C:\\y\\Same.jpg", L"C:\\a\\same.JPG",
                 L"noslash.jpg"};
    const auto drawn = RandomDrawCount();
    OrderPhotos(photos, 0, RandomU32);
    EXPECT_EQ(photos, (Paths{L"C:\\z\\A.jpg", L"C:\\x\\b.jpg", L"noslash.jpg", L"C:\\y\\Same.jpg",
                             L"C:\\a\\same.JPG"}));
    EXPECT_EQ(RandomDrawCount(), drawn);
}

TEST(SessionStartup, ShufflesFromTheTopWithOneNumberPerStep) {
    struct Case {
        Paths photos;
        std::vector<uint32_t> numbers;
        Paths expected;
    };
    const Case cases[] = {
        {{L"a"}, {}, {L"a"}}, // one photo draws nothing
        {{}, {}, {}},
        // n=3: r=0 swaps 2 and 0; n=2: r=3 gives 1, its own place.
        {{L"a", L"b", L"c"}, {0, 3}, {L"c", L"b", L"a"}},
        // n=4: r=7 gives 3 (stays); n=3: r=4 gives 1; n=2: r=0xFFFFFFFF gives 1 (stays).
        {{L"a", L"b", L"c", L"d"}, {7, 4, 0xFFFFFFFFu}, {L"a", L"c", L"b", L"d"}},
    };
    for (const auto& c : cases) {
        size_t next = 0;
        Paths photos = c.photos;
        OrderPhotos(photos, -1, [&] { return c.numbers.at(next++); });
        EXPECT_EQ(photos, c.expected);
        EXPECT_EQ(next, c.numbers.size());
    }
}

TEST(SessionStartup, PauseIndexIsOneDigitFromZeroToFiveAndScaleFollowsDpiAndPreview) {
    const std::pair<std::wstring, int32_t> cases[] = {{L"0", 0}, {L"5", 5}, {L"6", 2},
                                                      {L"10", 2}, {L"", 2}, {L"/", 2}};
    for (const auto& [text, index] : cases) EXPECT_EQ(PauseIndex(text), index) << index;
    EXPECT_FLOAT_EQ(WindowScale(SaverMode::Fullscreen, 144, 200, 1080), 1.5f);
    EXPECT_EQ(WindowScale(SaverMode::Preview, 192, 200, 1080), (200.0f / 1080.0f) * 2.0f);
    EXPECT_EQ(WindowScale(SaverMode::Preview, 96, 200, 0), 200.0f); // no screen height: 1
}

TEST(SessionStartup, WindowsStartShareApartAndAFailedOneKeepsItsPlace) {
    // Photos, rectangles, the one whose window fails (9: none), the windows' start indices.
    const std::tuple<size_t, int32_t, int32_t, std::vector<uint64_t>> cases[] = {
        {10, 2, 9, {0, 5}}, {2, 3, 9, {0, 1, 2}}, {10, 3, 1, {0, 6}}, {0, 2, 9, {0, 1}},
        {5, 0, 9, {}}};
    for (const auto& [photos, count, failing, cursors] : cases) {
        FakeWindowThread thread;
        SaverSession session(SaverMode::Fullscreen, &thread);
        session.photos.assign(photos, L"p.jpg");
        std::vector<SaverSession::Rectangle> rectangles;
        for (int32_t i = 0; i < count; ++i) rectangles.push_back({1920 * i, -10, 1920 * i + 9, 70});
        int32_t index = 0;
        session.OpenWindows(rectangles, [&](ScreenWindow& window, const SaverSession::Rectangle&) {
            EXPECT_TRUE(window.session == &session && window.width == 9 && window.height == 80);
            return index++ != failing;
        });
        std::vector<uint64_t> opened;
        for (const auto& window : session.windows) opened.push_back(window->cursor);
        EXPECT_EQ(opened, cursors);
    }
}

TEST(SessionStartup, EffectKindParsesExactlyAndRandomDrawsOnce) {
    const std::pair<std::wstring, EffectKind> cases[] = {
        {L"", EffectKind::Fader},         {L"faller", EffectKind::Faller},
        {L"fourup", EffectKind::FourUp},  {L"kber", EffectKind::Panner},
        {L"slider", EffectKind::Slider},  {L"reflections", EffectKind::Reflections},
        {L"KBER", EffectKind::Fader},     {L"slider ", EffectKind::Fader}};
    for (const auto& [text, kind] : cases) EXPECT_EQ(ParseEffectKind(text), kind);
    SetNextRandom(6 * 1000 + 4);
    const auto drawn = RandomDrawCount();
    EXPECT_EQ(ParseEffectKind(L"random"), EffectKind::Slider);
    EXPECT_EQ(RandomDrawCount(), drawn + 1);
}

// What a run takes from the options key, with the fallbacks of missing or mistyped values.
TEST(SessionStartup, ReadOptionsFallsBackPerValue) {
    struct Case {
        const char* what;
        std::vector<std::pair<std::wstring, std::wstring>> strings;
        std::vector<std::pair<std::wstring, uint8_t>> dwords;
        bool fit, title, importedTitle;
        EffectKind kind;
        int32_t pauseIndex;
    };
    const Case cases[] = {
        {"no key", {}, {}, false, true, true, EffectKind::Fader, 2},
        {"every value set", {{L"SaverShow", L"slider"}, {L"SaverPause", L"5"}},
         {{L"SaverFit", 7}, {L"SaverTitle", 0}, {L"SaverImportedTitle", 0}}, true, false, false,
         EffectKind::Slider, 5},
        {"one title off", {}, {{L"SaverImportedTitle", 0}}, false, true, false, EffectKind::Fader,
         2},
    };
    for (const Case& c : cases) {
        TestRegistry() = {};
        for (const auto& [name, text] : c.strings) TestRegistry().PutString(name, text);
        for (const auto& [name, value] : c.dwords) TestRegistry().Put(name, 4, {value, 0, 0, 0});
        FakeWindowThread thread;
        SaverSession session(SaverMode::Fullscreen, &thread);
        const SaverSession::RunOptions options = session.ReadOptions();
        EXPECT_EQ((std::vector<bool>{session.fit, session.title, session.importedTitle,
                                     options.effectOptions.fit}),
                  (std::vector<bool>{c.fit, c.title, c.importedTitle, c.fit}))
            << c.what;
        EXPECT_EQ(options.kind, c.kind) << c.what;
        EXPECT_EQ(options.effectOptions.pauseIndex, c.pauseIndex) << c.what;
    }
}

} // namespace
