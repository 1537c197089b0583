// The arithmetic of decoding and its front ends, the work queue's background loop and its stop,
// PhotoSource on a queue, and the captions it gives, over the host's fake files.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <tuple>

#include "photos/fake_image_files.h"
#include "photos/image_decoder.h"
#include "photos/photo_source.h"
#include "support/scripted_queue.h"

namespace {

TEST(ImageDecoder, OrientationsMapPlansScaleCropAndPlaceAndExactCoversItsRoundedSize) {
    // Tag values 0 to 9: only 2 to 8 transform, and 5 to 8 swap the axes.
    const uint32_t expected[] = {0, 0, 8, 2, 16, 9, 1, 11, 3, 0};
    for (uint32_t tag = 0; tag < 10; ++tag) {
        EXPECT_EQ(OrientationTransform(tag), expected[tag]) << tag;
        EXPECT_EQ(OrientedSize(40, 30, expected[tag]).width, tag >= 5 && tag <= 8 ? 30u : 40u);
    }

    // The frame's width, height and transform, the target's width and height, cover, and the
    // plan: scaled w h, scaler w h, source x y, copied w h, destination x y.
    using Plan = std::array<uint32_t, 10>;
    const std::tuple<uint32_t, uint32_t, uint32_t, int32_t, int32_t, bool, Plan> cases[] = {
        {4000, 3000, 0, 1920, 1080, false, {1440, 1080, 1440, 1080, 0, 0, 1440, 1080, 240, 0}},
        {4000, 3000, 0, 1920, 1080, true, {1920, 1440, 1920, 1440, 0, 180, 1920, 1080, 0, 0}},
        // Orientation 6: the scaler works in the frame's axes, before the rotation.
        {4000, 3000, 1, 1920, 1080, false, {810, 1080, 1080, 810, 0, 0, 810, 1080, 555, 0}},
        // A half pixel rounds up: 2000 / 3 is 666.67.
        {3000, 2000, 0, 1000, 1000, false, {1000, 667, 1000, 667, 0, 0, 1000, 667, 0, 166}},
        // The second pass of an Exact 5000 x 3 photo into 1536 x 864.
        {5000, 3, 0, 1536, 1, true, {1667, 1, 1667, 1, 65, 0, 1536, 1, 0, 0}},
        // A very thin photo still gets a side of 1.
        {100000, 1, 0, 1920, 1080, false, {1920, 1, 1920, 1, 0, 0, 1920, 1, 0, 539}}};
    for (const auto& [frameWidth, frameHeight, transform, width, height, cover, plan] : cases) {
        const auto g = PlanDecode(frameWidth, frameHeight, transform, width, height, cover);
        ASSERT_TRUE(g) << frameWidth << "x" << frameHeight;
        EXPECT_EQ(
            (Plan{g->scaled.width, g->scaled.height, g->scaler.width, g->scaler.height, g->sourceX,
                  g->sourceY, g->copied.width, g->copied.height, g->destinationX, g->destinationY}),
            plan)
            << frameWidth << "x" << frameHeight << " cover " << cover;
    }
    EXPECT_FALSE(PlanDecode(4000, 3000, 0, 0, 1080, false));
    EXPECT_FALSE(PlanDecode(4000, 3000, 0, 1920, -1, true));
    EXPECT_FALSE(PlanDecode(0, 3000, 0, 1920, 1080, false));

    FakeFiles() = {};
    FakeFiles().files[L"C:\\wide.jpg"] = {300, 199, 0, 0xFF445566};
    // 300 x 199 into 100 x 100 is 100 x 66, which only the second pass's cover fills: fitted
    // inside, the photo would be 99 wide beside a black column. 1 x 1 is the smallest target.
    PhotoSource::Photo photo;
    for (const auto& [side, height] : {std::pair{100, 66}, {1, 1}}) {
        ASSERT_TRUE(LoadPhotoExact(L"C:\\wide.jpg", side, side, photo));
        EXPECT_TRUE(photo.width == side && photo.height == height);
        EXPECT_EQ(photo.pixels, std::vector<uint32_t>(side * height, 0xFF445566));
    }
    // A side below one opens nothing and leaves the photo as it was (failures: PhotoSource's).
    FakeFiles().opened.clear();
    EXPECT_FALSE(LoadPhotoSized(L"C:\\wide.jpg", 0, 1080, false, photo) ||
                 LoadPhotoExact(L"C:\\wide.jpg", 1536, 0, photo));
    EXPECT_TRUE(FakeFiles().opened.empty() && photo.width == 1);
}

WindowHandle const kWindow = reinterpret_cast<WindowHandle>(0x10);
constexpr uint32_t kMessage = 0x8001;

TEST(WorkQueue, JobsRunInOrderStopDropsWhatIsLeftAndALateJobPostsSafely) {
    ScriptedQueueSystem system;
    auto queue = std::make_unique<WorkQueue>(system);
    std::string ran;
    queue->Start(kWindow, kMessage);
    auto token = std::make_shared<int>(); // held by the last two items; alive while any is
    queue->Post([&] {
        ran += "j0";
        queue->PostResult([&] { ran += "d0"; });
        queue->PostResult([&] { ran += "d1"; });
        queue->Drain(); // the window thread meanwhile
    });
    // Stop comes while a job runs, with a completion not yet drained and a job behind it: the
    // running job ends, the others are dropped unrun.
    queue->Post([&, token] {
        queue->PostResult([&, token] { ran += "d2"; });
        queue->Stop();
        ran += "j1";
    });
    queue->Post([&, token] { ran += "j2"; });
    system.loop(); // the background thread, on this one
    EXPECT_EQ(system.waited, WorkQueue::kStopWaitMilliseconds);
    queue->Drain();
    EXPECT_EQ(ran, "j0d0d1j1");
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_EQ(system.notified,
              (std::vector<std::pair<WindowHandle, uint32_t>>(3, {kWindow, kMessage})));

    // A job that outlasts its queue still finds the lock and the queues in the block that its
    // thread holds (AddressSanitizer watches), and the run ends with it; its completion never runs
    // and goes with the block when the thread ends (LeakSanitizer would see it stay).
    queue = std::make_unique<WorkQueue>(system);
    queue->Start(kWindow, kMessage);
    WorkQueue::Shared* results = queue->shared.get();
    queue->Post([&, results] {
        queue.reset(); // the window thread ends the run meanwhile
        results->PostResult([] { ADD_FAILURE() << "ran"; });
    });
    system.loop();
    EXPECT_EQ(system.notified.size(), 4u);
}

// Photo i; the odd ones are imported, their names ending in "-z" and seven more characters.
std::wstring PathAt(int i) {
    return L"C:\\p\\Photo " + std::to_wstring(i) + (i % 2 ? L"-z" : L"-a") + L"0000000.jpg";
}

TEST(PhotoSource, TriesTenPlacesFromItsCursorAndDeliversTheFirstGoodOneInItsShape) {
    using S = PhotoSource::Shape;
    // 400 x 300 files, file i in the colour 0xFF100000 + i and all damaged but `good`, asked for
    // at 160 x 90 with captions for plain photos when `titled`, else for imported ones: the places
    // tried, the width delivered (0: none) and whether its top left pixel is a bar.
    // clang-format off
    const std::tuple<int, int, uint64_t, S, bool, std::vector<int>, int32_t, bool> cases[] = {
        {25, -1, 24, S::Letterbox, true, {24, 0, 1, 2, 3, 4, 5, 6, 7, 8}, 0, false},
        {3, -1, 1, S::Exact, true, {1, 2, 0}, 0, false}, {0, -1, 3, S::Cover, true, {}, 0, false},
        {25, 9, 0, S::Letterbox, true, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 160, true},
        {10, 5, 5, S::Cover, false, {5}, 160, false},
        {10, 6, 6, S::Exact, true, {6, 6}, 120, false}}; // Exact reads the size first
    // clang-format on
    for (const auto& [count, good, cursor, shape, titled, places, width, bar] : cases) {
        FakeFiles() = {};
        std::vector<std::wstring> photos, tried;
        for (int i = 0; i < count; ++i) {
            photos.push_back(PathAt(i));
            FakeFiles().files[PathAt(i)] = {400, 300, 0, 0xFF100000u + i, i != good};
        }
        for (const int i : places) tried.push_back(PathAt(i));
        ScriptedQueueSystem system;
        WorkQueue queue(system);
        queue.Start(kWindow, kMessage);
        PhotoSource source{&queue, &photos, cursor, {titled, !titled}};
        PhotoSource::Photo photo;
        int calls = 0;
        source.Next(160, 90, shape, [&](PhotoSource::Photo& delivered) {
            photo = std::move(delivered);
            ++calls;
        });
        queue.shared->jobs.at(0)();
        EXPECT_EQ(calls, 0); // the answer waits for the window thread
        queue.Drain();
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(FakeFiles().opened, tried);
        EXPECT_EQ(source.cursor, cursor + 1);
        EXPECT_TRUE(photo.width == width && photo.height == (width ? 90 : 0));
        if (width) EXPECT_EQ(photo.pixels.at(0), bar ? 0xFF000000 : 0xFF100000u + good);
        // The caption is the name without its tail when the flag of the photo's own kind is on.
        const bool shown = width && titled == (good % 2 == 0);
        EXPECT_EQ(photo.title, shown ? L"Photo " + std::to_wstring(good) : L"");
    }
}

} // namespace
