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
    PhotoSource& MakeFiles(int count, bool damaged, uint64_t cursor) {
        FakeFiles() = {};
        for (int i = 0; i < count; ++i) {
            photos.push_back(PathAt(i));
            FakeFiles().files[PathAt(i)] = {400, 300, 0, 0xFF100000u + i, damaged};
        }
        queue.Start(reinterpret_cast<WindowHandle>(1), 0x8001);
        source.cursor = cursor;
        return source;
    }

    // One request, waited for and drained as the window thread would.
    PhotoSource::Photo Request(int32_t width, int32_t height, Shape shape = Shape::Letterbox) {
        return RequestFrom(source, width, height, shape);
    }
    PhotoSource::Photo RequestFrom(PhotoSource& from, int32_t width, int32_t height,
                                   Shape shape = Shape::Letterbox) {
        PhotoSource::Photo delivered;
        int calls = 0;
        from.Next(width, height, shape, [&](PhotoSource::Photo& photo) {
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

TEST_F(PhotoSourceTest, TakesTenCandidatesFromTheCursorAndWrapsByModulo) {
    MakeFiles(25, true, 24);
    const PhotoSource::Photo none = Request(640, 480);
    std::vector<std::wstring> expected{PathAt(24)};
    for (int i = 0; i <= 8; ++i) expected.push_back(PathAt(i));
    EXPECT_EQ(FakeFiles().opened, expected);
    EXPECT_EQ(source.cursor, 25u);
    EXPECT_TRUE(none.width == 0 && none.height == 0 && none.pixels.empty() && none.title.empty());

    // The next request begins at position 0, and a good file within ten positions is found.
    FakeFiles().files[PathAt(9)].damaged = false;
    EXPECT_EQ(Request(640, 480).title, PhotoCaption(PathAt(9), flags));
}

TEST_F(PhotoSourceTest, AShortListIsTriedOnceOverAndAWidthOfZeroOpensNothing) {
    MakeFiles(3, true, 1);
    Request(640, 480);
    EXPECT_EQ(FakeFiles().opened, (std::vector<std::wstring>{PathAt(1), PathAt(2), PathAt(0)}));
    FakeFiles() = {};
    EXPECT_TRUE(Request(0, 480).pixels.empty());
    EXPECT_TRUE(FakeFiles().opened.empty());
}

TEST_F(PhotoSourceTest, AnEmptyListStillAnswersAndMovesTheCursor) {
    MakeFiles(0, false, 3);
    const PhotoSource::Photo none = Request(640, 480);
    EXPECT_TRUE(none.pixels.empty() && none.width == 0 && none.title.empty());
    EXPECT_EQ(source.cursor, 4u);
    EXPECT_TRUE(FakeFiles().opened.empty());
}

TEST_F(PhotoSourceTest, TwoSourcesOnOneListKeepTheirOwnCursors) {
    MakeFiles(10, false, 0);
    PhotoSource other{&queue, &photos, 5, flags};
    for (const auto& [from, shown] : {std::pair{&source, 0}, {&other, 5}, {&other, 6}, {&source, 1}})
        EXPECT_EQ(RequestFrom(*from, 8, 6).pixels.at(0), 0xFF100000u + shown);
    EXPECT_EQ(source.cursor, 2u);
    EXPECT_EQ(other.cursor, 7u);
}

TEST_F(PhotoSourceTest, ADamagedFileShowsAsItsNeighbourTwice) {
    MakeFiles(10, false, 4);
    FakeFiles().files[PathAt(4)].damaged = true;
    for (const int shown : {5, 5, 6}) {
        const PhotoSource::Photo photo = Request(8, 6);
        ASSERT_EQ(photo.pixels.size(), 48u);
        EXPECT_EQ(photo.pixels[0], 0xFF100000u + shown);
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
        EXPECT_EQ(photo.width, width);
        EXPECT_EQ(photo.height, 90);
        ASSERT_FALSE(photo.pixels.empty());
        EXPECT_EQ(photo.pixels[0], corner);
    }
}

} // namespace
