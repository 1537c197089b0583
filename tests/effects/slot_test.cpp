// Slot's states and uploads, with photos from the host's fake files through a real work queue.
#include <gtest/gtest.h>

#include "effects/recording_surface.h"
#include "effects/slot.h"
#include "photos/fake_image_files.h"
#include "photos/std_work_queue_system.h"
#include "photos/work_queue.h"

namespace {

using Shape = PhotoSource::Shape;

class SlotTest : public ::testing::Test {
protected:
    SlotTest() {
        FakeFiles() = {};
        FakeFiles().files[photos[0]] = {4, 3, 0, 0xFF102030};
        FakeFiles().files[photos[1]] = {4, 3, 0, 0xFF405060};
        queue.Start(reinterpret_cast<WindowHandle>(1), 0x8001);
    }

    // Lets the posted jobs answer, and runs their completions as the window thread would.
    void Deliver() {
        ASSERT_TRUE(system.WaitForNotifies(++requests));
        queue.Drain();
    }

    std::vector<std::wstring> photos{L"C:\\p\\First photo-a0000000.jpg",
                                     L"C:\\p\\Second photo-a0000000.jpg"};
    StdWorkQueueSystem system;
    WorkQueue queue{system};
    PhotoSource source{&queue, &photos, 0, {true, true}};
    Slot slot;
    RecordingSurface target;
    size_t requests = 0;
};

TEST_F(SlotTest, WalksIdleRequestedDeliveredAndBackWithOneJobPerRequest) {
    EXPECT_FALSE(slot.Advance(10));
    EXPECT_EQ(slot.shownAt, -1.0);

    slot.Request(source, 3, 2, Shape::Cover);
    slot.Request(source, 3, 2, Shape::Cover); // busy: ignored
    EXPECT_TRUE(slot.pending);
    EXPECT_FALSE(slot.Advance(20));
    Deliver();
    EXPECT_TRUE(slot.ready);
    EXPECT_FALSE(slot.pending);
    slot.Request(source, 3, 2, Shape::Cover); // a delivered photo blocks requests too
    EXPECT_EQ(source.cursor, 1u);
    EXPECT_TRUE(slot.current.pixels.empty());

    EXPECT_TRUE(slot.Advance(30));
    EXPECT_EQ(slot.shownAt, 30.0);
    EXPECT_FALSE(slot.ready);
    EXPECT_EQ(slot.current.width, 3);
    EXPECT_EQ(slot.current.height, 2);
    EXPECT_EQ(slot.current.pixels, std::vector<uint32_t>(6, 0xFF102030));
    EXPECT_EQ(slot.current.title, L"First photo");
    EXPECT_EQ(slot.next.width, 0);
    EXPECT_TRUE(slot.next.pixels.empty());
    slot.Request(source, 3, 2, Shape::Cover); // accepted again in the same frame
    EXPECT_TRUE(slot.pending);
    EXPECT_EQ(source.cursor, 2u);
}

TEST_F(SlotTest, UploadsOnceAndAgainAfterReleaseFromPixelsThatStay) {
    SurfaceLog& log = *target.log;
    EXPECT_EQ(slot.Bitmap(target), nullptr); // empty: no call to the target
    EXPECT_TRUE(log.calls.empty());

    slot.Request(source, 3, 1, Shape::Cover); // rows of width 3: no padding
    Deliver();
    slot.Advance(0);
    log.failBitmaps = true;
    EXPECT_EQ(slot.Bitmap(target), nullptr);
    log.failBitmaps = false;
    const SurfaceBitmap* first = slot.Bitmap(target);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(slot.Bitmap(target), first);
    EXPECT_EQ(log.bitmapsCreated, 1);

    slot.ReleaseBitmaps();
    EXPECT_EQ(log.bitmapsAlive, 0);
    EXPECT_EQ(slot.current.pixels.size(), 3u);
    EXPECT_EQ(slot.current.title, L"First photo");
    ASSERT_NE(slot.Bitmap(target), nullptr);
    EXPECT_EQ(log.bitmapsCreated, 2);
    const auto uploads = log.Calls(SurfaceCall::Op::CreateBitmap);
    ASSERT_EQ(uploads.size(), 3u);
    for (const SurfaceCall& upload : uploads) {
        EXPECT_EQ(upload.width, 3u);
        EXPECT_EQ(upload.height, 1u);
        EXPECT_EQ(upload.pixels, std::vector<uint32_t>(3, 0xFF102030));
    }

    // A new photo lets the old bitmap go at once.
    slot.Request(source, 3, 1, Shape::Cover);
    Deliver();
    slot.Advance(1);
    EXPECT_EQ(log.bitmapsAlive, 0);
}

TEST_F(SlotTest, AnEmptyPhotoReplacesTheShownOneOnlyAtAdvance) {
    slot.Request(source, 4, 3, Shape::Letterbox);
    Deliver();
    slot.Advance(0);
    ASSERT_NE(slot.Bitmap(target), nullptr);

    slot.Request(source, 0, 3, Shape::Letterbox); // every candidate fails
    Deliver();
    EXPECT_TRUE(slot.ready);
    EXPECT_EQ(slot.current.width, 4);
    EXPECT_NE(slot.Bitmap(target), nullptr);

    EXPECT_TRUE(slot.Advance(50));
    EXPECT_EQ(slot.shownAt, 50.0);
    EXPECT_EQ(slot.current.width, 0);
    EXPECT_EQ(slot.Bitmap(target), nullptr);
    EXPECT_EQ(target.log->bitmapsCreated, 1);
    slot.Request(source, 4, 3, Shape::Letterbox);
    EXPECT_TRUE(slot.pending);
}

} // namespace
