// Slot's states and uploads, with photos delivered when the test says.
#include <gtest/gtest.h>

#include "effects/recording_surface.h"
#include "effects/slot.h"
#include "photos/fake_image_files.h"
#include "support/scripted_queue.h"

namespace {

using Op = SurfaceCall::Op;
constexpr auto kCover = PhotoSource::Shape::Cover;

TEST(Slot, HoldsOneRequestAtATimeAndUploadsOnlyTheShownPhotoOnce) {
    FakeFiles() = {};
    const std::vector<std::wstring> photos{L"C:\\p\\First photo-a0000000.jpg"};
    FakeFiles().files[photos[0]] = {3, 2, 0, 0xFF102030};
    ScriptedQueueSystem system;
    WorkQueue queue{system};
    queue.Start(reinterpret_cast<WindowHandle>(1), 0x8001);
    PhotoSource source{&queue, &photos, 0, {true, true}};
    const auto log = std::make_shared<SurfaceLog>();
    const auto target = MakeRecordingSurface(log);
    Slot slot;

    EXPECT_FALSE(slot.Advance(10));
    EXPECT_EQ(slot.shownAt, -1.0);
    slot.Request(source, 3, 2, kCover);
    slot.Request(source, 3, 2, kCover); // under way: ignored
    EXPECT_FALSE(slot.Advance(20));
    EXPECT_EQ(RunJobs(queue), 1u);
    slot.Request(source, 3, 2, kCover); // a delivered photo blocks requests too
    EXPECT_EQ(source.cursor, 1u);
    EXPECT_EQ(slot.Bitmap(*target), nullptr); // nothing shown yet: no call to the target
    EXPECT_TRUE(log->calls.empty());
    ASSERT_TRUE(slot.Advance(30));
    EXPECT_TRUE(slot.shownAt == 30 && slot.next.pixels.empty() && !slot.ready);

    log->failing = {Op::CreateBitmap};
    EXPECT_EQ(slot.Bitmap(*target), nullptr);
    log->failing.clear(); // a failed upload is tried again on the next call
    const SurfaceBitmap* first = slot.Bitmap(*target);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(slot.Bitmap(*target), first);
    slot.ReleaseBitmaps(); // the target was lost: the pixels, size and title stay
    EXPECT_EQ(log->bitmapsAlive, 0);
    EXPECT_EQ(slot.current.title, L"First photo");
    ASSERT_NE(slot.Bitmap(*target), nullptr);
    const auto uploads = log->Calls(Op::CreateBitmap);
    ASSERT_EQ(uploads.size(), 3u);
    for (const SurfaceCall& upload : uploads) { // rows of an odd width, without padding
        EXPECT_TRUE(upload.width == 3 && upload.height == 2);
        EXPECT_EQ(upload.pixels, std::vector<uint32_t>(6, 0xFF102030));
    }

    slot.Request(source, 0, 2, kCover); // every candidate fails: an empty photo
    RunJobs(queue);
    EXPECT_TRUE(slot.ready && slot.current.width == 3); // shown on until the next Advance
    ASSERT_TRUE(slot.Advance(50));
    EXPECT_TRUE(slot.current.width == 0 && slot.shownAt == 50 && log->bitmapsAlive == 0);
    EXPECT_EQ(slot.Bitmap(*target), nullptr);
    slot.Request(source, 3, 2, kCover);
    EXPECT_TRUE(slot.pending);
}

} // namespace
