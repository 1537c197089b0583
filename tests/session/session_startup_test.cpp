// The start-up decisions of a session: the photos and their order, the options, the windows'
// start indices and scale.
#include <gtest/gtest.h>

#include <array>
#include <map>

#include "library/memory_registry.h"
#include "library/memory_tree.h"
#include "library/photo_listing.h"
#include "session/saver_session.h"

namespace {

using Paths = std::vector<std::wstring>;

// The in-memory tree with a write time for each name, which the tree itself doesn't keep.
struct DatedTree final : MemoryTree {
    std::map<std::wstring, uint64_t> times;
    bool List(const std::wstring& pattern, std::vector<FolderEntry>& entries) override {
        const bool found = MemoryTree::List(pattern, entries);
        for (FolderEntry& entry : entries) entry.writeTime = times[entry.name];
        return found;
    }
};

TEST(SessionStartup, PhotosAreTheFirstFoldersFilesNewestFirstOrElseTheSeconds) {
    DatedTree tree;
    tree.Add(L"C:\\a\\sub", kDirectoryBit);
    // A folder, however new, is no photo; a hidden system file is.
    const std::tuple<const wchar_t*, uint64_t, uint32_t> files[] = {
        {L"old.jpg", 1, 0x20}, {L"new.jpg", 3, 0x20}, {L"sub", 9, kDirectoryBit}, {L"mid.jpg", 2, 0x06}};
    for (const auto& [name, time, attributes] : files) {
        tree.Add(L"C:\\b\\" + std::wstring(name), attributes);
        tree.times[name] = time;
    }
    const PhotoLister list = [&](const std::wstring& folder) { return ListPhotosIn(tree, folder); };
    const Paths b{L"C:\\b\\new.jpg", L"C:\\b\\mid.jpg", L"C:\\b\\old.jpg"};
    EXPECT_EQ(ChoosePhotos(list, L"C:\\a", L"C:\\b"), b);
    EXPECT_EQ(ChoosePhotos(list, L"C:\\b", L"C:\\a"), b);
    EXPECT_EQ(ChoosePhotos(list, L"C:\\missing", L"C:\\a"), Paths{});
}

TEST(SessionStartup, SortsByFileNameFoldingOnlyAToZStablyOrShufflesFromTheTop) {
    Paths photos{L"C:\\x\\b.jpg", L"C:\\z\\A.jpg", L"C:\\y\\Same.jpg", L"C:\\a\\\u00C9.jpg",
                 L"C:\\a\\same.JPG", L"noslash.jpg"};
    OrderPhotos(photos, 0, []() -> uint32_t {
        ADD_FAILURE() << "a sort draws no numbers";
        return 0;
    });
    EXPECT_EQ(photos, (Paths{L"C:\\z\\A.jpg", L"C:\\x\\b.jpg", L"noslash.jpg", L"C:\\y\\Same.jpg",
                             L"C:\\a\\same.JPG", L"C:\\a\\\u00C9.jpg"}));
    // One number per step from the top: n=3: 0 swaps 2 with 0; n=2: 3 gives 1, its own place.
    photos = {L"a", L"b", L"c"};
    std::vector<uint32_t> numbers{3, 0};
    OrderPhotos(photos, -1, [&] {
        const uint32_t number = numbers.at(numbers.size() - 1);
        numbers.pop_back();
        return number;
    });
    EXPECT_EQ(photos, (Paths{L"c", L"b", L"a"}));
    EXPECT_TRUE(numbers.empty());
}

TEST(SessionStartup, WindowsStartShareApartAndScaleWithTheDpi) {
    // 10 photos on 2 monitors, 2 on 3, none on none: at least one apart.
    for (const auto [photos, windows, share] : {std::tuple{10, 2, 5}, {2, 3, 1}, {0, 0, 1}})
        EXPECT_EQ(PhotoShare(photos, windows), uint64_t(share));
    EXPECT_FLOAT_EQ(WindowScale(SaverMode::Fullscreen, 144, 200, 1080), 1.5f);
    EXPECT_EQ(WindowScale(SaverMode::Preview, 96, 200, 0), 200.0f); // no screen height: 1
}

// What a run takes from the options key, with the fallbacks of missing or mistyped values.
TEST(SessionStartup, ReadOptionsFallsBackPerValue) {
    // SaverShow, SaverPause, SaverFit, SaverTitle, SaverImportedTitle (-1: not there), then
    // the effect kind, the pause index, fit, title and importedTitle.
    const std::tuple<const wchar_t*, const wchar_t*, std::array<int, 3>, EffectKind, int32_t,
                     std::array<bool, 3>>
        cases[] = {{nullptr, nullptr, {-1, -1, -1}, EffectKind::Fader, 2, {false, true, true}},
                   {L"kber", L"0", {7, 0, 0}, EffectKind::Panner, 0, {true, false, false}},
                   {L"Slider", L"5", {-1, -1, 0}, EffectKind::Fader, 5, {false, true, false}},
                   {L"faller", L"6", {0, 1, -1}, EffectKind::Faller, 2, {false, true, true}},
                   {nullptr, L"10", {-1, 0, -1}, EffectKind::Fader, 2, {false, false, true}}};
    for (const auto& [show, pause, dwords, kind, pauseIndex, flags] : cases) {
        TestRegistry() = {};
        if (show) TestRegistry().PutString(L"SaverShow", show);
        if (pause) TestRegistry().PutString(L"SaverPause", pause);
        const wchar_t* names[] = {L"SaverFit", L"SaverTitle", L"SaverImportedTitle"};
        for (int i = 0; i < 3; ++i)
            if (dwords[i] >= 0) TestRegistry().Put(names[i], 4, {uint8_t(dwords[i]), 0, 0, 0});
        SaverSession session(SaverMode::Fullscreen);
        const SaverSession::RunOptions options = session.ReadOptions();
        EXPECT_EQ((std::array{session.fit, session.title, session.importedTitle}), flags);
        EXPECT_TRUE(options.kind == kind && options.effectOptions.pauseIndex == pauseIndex &&
                    options.effectOptions.fit == flags[0]);
    }
}

} // namespace
