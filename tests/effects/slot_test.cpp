// Slot's states and uploads, with photos from the host's fake files through a real work queue.
#include <gtest/gtest.h>

#include "effects/recording_surface.h"
#include "effects/slot.h"
#include "photos/fake_image_files.h"
#include "photos/std_work_queue_system.h"
#include "photos/work_queue.h"

namespace {

constexpr auto kCover = PhotoSource::Shape::Cover;

class SlotTest : public ::testing::Test {
protected:
    SlotTest() {
        FakeFiles() = {};
        FakeFiles().files[photos[0]] = {4, 3, 0, 0xFF102030};
        queue.Start(reinterpret_cast<WindowHandle>(1), 0x8001);
    }
    // Lets the posted job answer, and runs its completion as the window thread would.
    void Deliver() {
        ASSERT_TRUE(system.WaitForNotifies(++requests));
        queue.Drain();
    }
    // One request answered and shown.
    void Show(int32_t width, int32_t height, double now = 0) {
        slot.Request(source, width, height, kCover);
        Deliver();
        ASSERT_TRUE(slot.Advance(now));
    }

    std::vector<std::wstring> photos{L"C:\\p\\First photo-a0000000.jpg"};
    StdWorkQueueSystem system;
    WorkQueue queue{system};
    PhotoSource source{&queue, &photos, 0, {true, true}};
    Slot slot;
    const std::shared_ptr<SurfaceLog> log = std::make_shared<SurfaceLog>();
    const std::unique_ptr<DrawingSurface> target = MakeRecordingSurface(log);
    size_t requests = 0;
};

TEST_F(SlotTest, WalksIdleRequestedDeliveredAndBackWithOneJobPerRequest) {
    EXPECT_FALSE(slot.Advance(10));
    EXPECT_EQ(slot.shownAt, -1.0);
    slot.Request(source, 3, 2, kCover);
    slot.Request(source, 3, 2, kCover); // pending: ignored
    EXPECT_FALSE(slot.Advance(20));
    Deliver();
    EXPECT_TRUE(slot.ready && !slot.pending);
    slot.Request(source, 3, 2, kCover); // a delivered photo blocks requests too
    EXPECT_EQ(source.cursor, 1u);
    EXPECT_TRUE(slot.current.pixels.empty()); // shown only at Advance

    EXPECT_TRUE(slot.Advance(30));
    EXPECT_EQ(slot.shownAt, 30.0);
    EXPECT_FALSE(slot.ready);
    EXPECT_TRUE(slot.current.width == 3 && slot.current.height == 2);
    EXPECT_EQ(slot.current.pixels, std::vector<uint32_t>(6, 0xFF102030));
    EXPECT_EQ(slot.current.title, L"First photo");
    EXPECT_TRUE(slot.next.pixels.empty() && slot.next.width == 0); // moved, not copied
    slot.Request(source, 3, 2, kCover); // idle again in the same frame
    EXPECT_TRUE(slot.pending);
    EXPECT_EQ(source.cursor, 2u);
}

TEST_F(SlotTest, UploadsOnceAndAgainAfterReleaseFromPixelsThatStay) {
    EXPECT_EQ(slot.Bitmap(*target), nullptr); // empty: no call to the target
    EXPECT_TRUE(log->calls.empty());
    Show(3, 1); // rows of width 3: no padding
    log->failing = {SurfaceCall::Op::CreateBitmap};
    EXPECT_EQ(slot.Bitmap(*target), nullptr);
    log->failing.clear(); // a failed upload is tried again
    const SurfaceBitmap* first = slot.Bitmap(*target);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(slot.Bitmap(*target), first);
    EXPECT_EQ(log->bitmapsCreated, 1);

    slot.ReleaseBitmaps();
    EXPECT_EQ(log->bitmapsAlive, 0);
    ASSERT_NE(slot.Bitmap(*target), nullptr);
    EXPECT_EQ(log->bitmapsCreated, 2);
    const auto uploads = log->Calls(SurfaceCall::Op::CreateBitmap);
    ASSERT_EQ(uploads.size(), 3u);
    for (const SurfaceCall& upload : uploads) {
        EXPECT_TRUE(upload.width == 3 && upload.height == 1);
        EXPECT_EQ(upload.pixels, std::vector<uint32_t>(3, 0xFF102030));
    }
    Show(3, 1, 1); // a new photo lets the old bitmap go at once
    EXPECT_EQ(log->bitmapsAlive, 0);
}

TEST_F(SlotTest, AnEmptyPhotoReplacesTheShownOneOnlyAtAdvance) {
    Show(4, 3);
    ASSERT_NE(slot.Bitmap(*target), nullptr);
    slot.Request(source, 0, 3, kCover); // every candidate fails
    Deliver();
    EXPECT_TRUE(slot.ready);
    EXPECT_EQ(slot.current.width, 4);
    EXPECT_NE(slot.Bitmap(*target), nullptr);

    EXPECT_TRUE(slot.Advance(50));
    EXPECT_EQ(slot.current.width, 0);
    EXPECT_EQ(slot.Bitmap(*target), nullptr);
    EXPECT_EQ(log->bitmapsCreated, 1);
    slot.Request(source, 4, 3, kCover);
    EXPECT_TRUE(slot.pending);
}

} // namespace
