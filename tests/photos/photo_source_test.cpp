// PhotoSource over the host's fake files and a real work queue on standard threads.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "photos/fake_image_files.h"
#include "photos/photo_source.h"
#include "photos/std_work_queue_system.h"
#include "photos/work_queue.h"

namespace {

std::wstring PathAt(int i) { return L"C:\\p\\Photo " + std::to_wstring(i) + L"-a0000000.jpg"; }

class PhotoSourceTest : public ::testing::Test {
protected:
    // `count` good 400 x 300 files; file i has the colour 0xFF100000 + i.
    void MakeFiles(int count) {
        FakeFiles() = {};
        for (int i = 0; i < count; ++i) {
            photos.push_back(PathAt(i));
            FakeFiles().files[PathAt(i)] = {400, 300, 0, 0xFF100000u + i};
        }
        queue.Start(reinterpret_cast<WindowHandle>(1), 0x8001);
    }

    // One request, waited for and drained as the window thread would.
    PhotoSource::Photo Request(PhotoSource& source, int32_t width, int32_t height,
                               PhotoSource::Shape shape = PhotoSource::Shape::Letterbox) {
        PhotoSource::Photo delivered;
        int calls = 0;
        source.Next(width, height, shape, [&](PhotoSource::Photo& photo) {
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
    size_t requests = 0;
};

TEST_F(PhotoSourceTest, TakesTenCandidatesFromTheCursorAndWrapsByModulo) {
    MakeFiles(25);
    for (auto& file : FakeFiles().files) file.second.damaged = true;
    PhotoSource source(&queue, &photos, 24, flags);

    const PhotoSource::Photo none = Request(source, 640, 480);
    std::vector<std::wstring> expected{PathAt(24)};
    for (int i = 0; i <= 8; ++i) expected.push_back(PathAt(i));
    EXPECT_EQ(FakeFiles().opened, expected);
    EXPECT_EQ(source.cursor, 25u);
    EXPECT_EQ(none.width, 0);
    EXPECT_EQ(none.height, 0);
    EXPECT_TRUE(none.pixels.empty());
    EXPECT_TRUE(none.title.empty());

    // The next request begins at position 0, and a good file within ten positions is found.
    FakeFiles().files[PathAt(9)].damaged = false;
    EXPECT_EQ(Request(source, 640, 480).title, PhotoCaption(PathAt(9), flags));
}

TEST_F(PhotoSourceTest, AShortListIsTriedOnceOverAndAWidthOfZeroOpensNothing) {
    MakeFiles(3);
    for (auto& file : FakeFiles().files) file.second.damaged = true;
    PhotoSource source(&queue, &photos, 1, flags);
    Request(source, 640, 480);
    EXPECT_EQ(FakeFiles().opened, (std::vector<std::wstring>{PathAt(1), PathAt(2), PathAt(0)}));

    FakeFiles() = {};
    EXPECT_TRUE(Request(source, 0, 480).pixels.empty());
    EXPECT_TRUE(FakeFiles().opened.empty());
}

TEST_F(PhotoSourceTest, ADamagedFileShowsAsItsNeighbourTwice) {
    MakeFiles(10);
    FakeFiles().files[PathAt(4)].damaged = true;
    PhotoSource source(&queue, &photos, 4, flags);
    for (const int shown : {5, 5, 6}) {
        const PhotoSource::Photo photo = Request(source, 8, 6);
        ASSERT_EQ(photo.pixels.size(), 48u);
        EXPECT_EQ(photo.pixels[0], 0xFF100000u + shown);
        EXPECT_EQ(photo.title, PhotoCaption(PathAt(shown), flags));
    }
}

TEST_F(PhotoSourceTest, TheShapeChoosesBarsCoverOrTheOwnProportions) {
    MakeFiles(1);
    PhotoSource source(&queue, &photos, 0, flags);
    struct Case {
        PhotoSource::Shape shape;
        int32_t width, height;
        uint32_t corner; // the top left pixel: a bar or the photo
    };
    // A 400 x 300 photo asked for at 160 x 90.
    const Case cases[] = {{PhotoSource::Shape::Letterbox, 160, 90, 0xFF000000},
                          {PhotoSource::Shape::Cover, 160, 90, 0xFF100000},
                          {PhotoSource::Shape::Exact, 120, 90, 0xFF100000}};
    for (const Case& c : cases) {
        const PhotoSource::Photo photo = Request(source, 160, 90, c.shape);
        EXPECT_EQ(photo.width, c.width);
        EXPECT_EQ(photo.height, c.height);
        ASSERT_FALSE(photo.pixels.empty());
        EXPECT_EQ(photo.pixels[0], c.corner);
    }
}

} // namespace
