// PhotoSource over the host's fake files and a real work queue on standard threads.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "photos/fake_image_files.h"
#include "photos/photo_source.h"
#include "photos/std_work_queue_system.h"
#include "photos/work_queue.h"

namespace {

using Shape = PhotoSource::Shape;

std::wstring PathAt(int i) { return L"C:\\p\\Photo " + std::to_wstring(i) + L"-a0000000.jpg"; }

class PhotoSourceTest : public ::testing::Test {
protected:
    // `count` 400 x 300 files, file i in the colour 0xFF100000 + i, all damaged or all good; a
    // source whose cursor is at `cursor`.
    void MakeFiles(int count, bool damaged, uint64_t cursor) {
        FakeFiles() = {};
        photos.clear();
        for (int i = 0; i < count; ++i) {
            photos.push_back(PathAt(i));
            FakeFiles().files[PathAt(i)] = {400, 300, 0, 0xFF100000u + i, damaged};
        }
        if (!queue.window) queue.Start(reinterpret_cast<WindowHandle>(1), 0x8001);
        source.cursor = cursor;
    }

    // One request, waited for and drained as the window thread would.
    PhotoSource::Photo Request(int32_t width, int32_t height, Shape shape = Shape::Letterbox,
                               PhotoSource* from = nullptr) {
        PhotoSource::Photo delivered;
        int calls = 0;
        (from ? *from : source).Next(width, height, shape, [&](PhotoSource::Photo& photo) {
            EXPECT_EQ(std::this_thread::get_id(), windowThread);
            delivered = std::move(photo);
            ++calls;
        });
        EXPECT_TRUE(system.WaitForNotifies(++requests));
        queue.Drain();
        EXPECT_EQ(calls, 1);
        return delivered;
    }

    const TitleFlags flags{true, true};
    const std::thread::id windowThread = std::this_thread::get_id();
    std::vector<std::wstring> photos;
    StdWorkQueueSystem system;
    WorkQueue queue{system};
    PhotoSource source{&queue, &photos, 0, flags};
    size_t requests = 0;
};

TEST_F(PhotoSourceTest, TriesTenPositionsFromTheCursorByModuloAndMovesItByOne) {
    // Damaged files, the cursor, the positions tried.
    const std::tuple<int, uint64_t, std::vector<int>> cases[] = {
        {25, 24, {24, 0, 1, 2, 3, 4, 5, 6, 7, 8}}, {3, 1, {1, 2, 0}}, {0, 3, {}}};
    for (const auto& [count, cursor, tried] : cases) {
        MakeFiles(count, true, cursor);
        const PhotoSource::Photo none = Request(640, 480);
        std::vector<std::wstring> expected;
        for (const int i : tried) expected.push_back(PathAt(i));
        EXPECT_EQ(FakeFiles().opened, expected);
        EXPECT_EQ(source.cursor, cursor + 1);
        EXPECT_TRUE(none.width == 0 && none.height == 0 && none.pixels.empty() &&
                    none.title.empty());
    }
    // The next request begins at position 0, and a good file within ten positions is found.
    MakeFiles(25, true, 25);
    FakeFiles().files[PathAt(9)].damaged = false;
    EXPECT_EQ(Request(640, 480).title, PhotoCaption(PathAt(9), flags));
    FakeFiles().opened.clear();
    EXPECT_TRUE(Request(0, 480).pixels.empty());
    EXPECT_TRUE(FakeFiles().opened.empty());
}

TEST_F(PhotoSourceTest, TwoSourcesOnOneListKeepTheirOwnCursors) {
    MakeFiles(10, false, 0);
    PhotoSource other{&queue, &photos, 5, flags};
    for (const auto& [from, shown] :
         {std::pair{&source, 0}, {&other, 5}, {&other, 6}, {&source, 1}})
        EXPECT_EQ(Request(8, 6, Shape::Letterbox, from).pixels.at(0), 0xFF100000u + shown);
    EXPECT_EQ(source.cursor, 2u);
    EXPECT_EQ(other.cursor, 7u);
}

TEST_F(PhotoSourceTest, ADamagedFileShowsAsItsNeighbourTwice) {
    MakeFiles(10, false, 4);
    FakeFiles().files[PathAt(4)].damaged = true;
    for (const int shown : {5, 5, 6}) {
        const PhotoSource::Photo photo = Request(8, 6);
        EXPECT_EQ(photo.pixels, std::vector<uint32_t>(48, 0xFF100000u + shown));
        EXPECT_EQ(photo.title, PhotoCaption(PathAt(shown), flags));
    }
}

TEST_F(PhotoSourceTest, TheShapeChoosesBarsCoverOrTheOwnProportions) {
    MakeFiles(1, false, 0);
    // A 400 x 300 photo asked for at 160 x 90; the top left pixel is a bar or the photo.
    const std::tuple<Shape, int32_t, uint32_t> cases[] = {
        {Shape::Letterbox, 160, 0xFF000000}, {Shape::Cover, 160, 0xFF100000},
        {Shape::Exact, 120, 0xFF100000}};
    for (const auto& [shape, width, corner] : cases) {
        const PhotoSource::Photo photo = Request(160, 90, shape);
        EXPECT_TRUE(photo.width == width && photo.height == 90);
        EXPECT_EQ(photo.pixels.at(0), corner);
    }
}

} // namespace
