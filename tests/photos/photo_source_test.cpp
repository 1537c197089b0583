// The work queue's background loop and its stop, PhotoSource on a queue, and the captions it
// gives, over the host's fake files.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "photos/fake_image_files.h"
#include "photos/photo_source.h"
#include "support/scripted_queue.h"

namespace {

WindowHandle const kWindow = reinterpret_cast<WindowHandle>(0x10);
constexpr uint32_t kMessage = 0x8001;

TEST(WorkQueue, JobsRunInOrderCompletionsComeBackAndStopDropsWhatIsLeft) {
    ScriptedQueueSystem system;
    WorkQueue queue(system);
    std::string ran;
    queue.Start(kWindow, kMessage);
    auto token = std::make_shared<int>(); // held by the last three items; alive while any is
    queue.Post([&] {
        ran += "j0";
        queue.PostResult([&] { ran += "d0"; });
    });
    queue.Post([&] {
        ran += "j1";
        queue.PostResult([&] { ran += "d1"; });
        queue.Drain(); // the window thread meanwhile
    });
    // Stop comes while a job runs, with a completion not yet drained and a job behind it: the
    // running job ends, the others are dropped unrun.
    queue.Post([&, token] {
        queue.PostResult([&, token] { ran += "d2"; });
        queue.Stop();
        ran += "j2";
    });
    queue.Post([&, token] { ran += "j3"; });
    system.loop(); // the background thread, on this one
    EXPECT_EQ(system.waited, WorkQueue::kStopWaitMilliseconds);
    queue.Drain();
    EXPECT_EQ(ran, "j0j1d0d1j2");
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_EQ(system.notified,
              (std::vector<std::pair<WindowHandle, uint32_t>>(3, {kWindow, kMessage})));
}

// A job that outlasts the queue still finds the lock and the queues in the block that its thread
// holds (AddressSanitizer watches); its completion never runs, and goes when the thread ends.
TEST(WorkQueue, AJobThatOutlivesItsQueuePostsSafely) {
    ScriptedQueueSystem system;
    auto queue = std::make_unique<WorkQueue>(system);
    queue->Start(kWindow, kMessage);
    auto token = std::make_shared<int>();
    const std::weak_ptr<int> completion = token;
    WorkQueue::Shared* results = queue->shared.get();
    queue->Post([&, results, token = std::move(token)]() mutable {
        queue.reset(); // the window thread ends the run meanwhile
        results->PostResult([token = std::move(token)] { ADD_FAILURE() << "ran"; });
    });
    system.loop();
    EXPECT_TRUE(system.notified.size() == 1 && !completion.expired());
    system.loop = nullptr; // the thread ends
    EXPECT_TRUE(completion.expired());
}

std::wstring PathAt(int i) { return L"C:\\p\\Photo " + std::to_wstring(i) + L"-a0000000.jpg"; }

// `count` 400 x 300 files, file i in the colour 0xFF100000 + i, all damaged or all good, and a
// started queue. Request asks a source for one photo of 160 x 90, runs its job as the
// background thread would and then drains the queue as the window thread would.
struct Files {
    explicit Files(int count, bool damaged = false) {
        FakeFiles() = {};
        for (int i = 0; i < count; ++i) {
            photos.push_back(PathAt(i));
            FakeFiles().files[PathAt(i)] = {400, 300, 0, 0xFF100000u + i, damaged};
        }
        queue.Start(kWindow, kMessage);
    }
    PhotoSource::Photo Request(PhotoSource& source, PhotoSource::Shape shape) {
        PhotoSource::Photo delivered;
        int calls = 0;
        source.Next(160, 90, shape, [&](PhotoSource::Photo& photo) {
            delivered = std::move(photo);
            ++calls;
        });
        queue.shared->jobs.at(0)();
        queue.shared->jobs.clear();
        EXPECT_EQ(calls, 0); // the answer waits for the window thread
        queue.Drain();
        EXPECT_EQ(calls, 1);
        return delivered;
    }

    std::vector<std::wstring> photos;
    ScriptedQueueSystem system;
    WorkQueue queue{system};
};

using S = PhotoSource::Shape;

TEST(PhotoSource, TriesTenPositionsFromTheCursorByModuloAndMovesItByOne) {
    // Damaged files, the cursor, the positions tried.
    const std::tuple<int, uint64_t, std::vector<int>> cases[] = {
        {25, 24, {24, 0, 1, 2, 3, 4, 5, 6, 7, 8}}, {3, 1, {1, 2, 0}}, {0, 3, {}}};
    for (const auto& [count, cursor, tried] : cases) {
        Files files(count, true);
        PhotoSource source{&files.queue, &files.photos, cursor, {true, true}};
        const PhotoSource::Photo none = files.Request(source, S::Letterbox);
        std::vector<std::wstring> expected;
        for (const int i : tried) expected.push_back(PathAt(i));
        EXPECT_EQ(FakeFiles().opened, expected);
        EXPECT_EQ(source.cursor, cursor + 1);
        EXPECT_TRUE(none.width == 0 && none.pixels.empty() && none.title.empty());
    }
    Files files(25, true); // a good file at the tenth position is still found
    FakeFiles().files[PathAt(9)].damaged = false;
    PhotoSource source{&files.queue, &files.photos, 0, {true, true}};
    EXPECT_EQ(files.Request(source, S::Letterbox).title, L"Photo 9");
}

TEST(PhotoSource, EachSourceKeepsItsCursorAndFlagsAndTheShapeChoosesTheSize) {
    Files files(10);
    PhotoSource one{&files.queue, &files.photos, 0, {true, false}};
    PhotoSource other{&files.queue, &files.photos, 5, {false, true}};
    // A 400 x 300 photo asked for at 160 x 90: the source, the shape, the photo shown, the width
    // delivered, whether the top left pixel is a bar.
    const std::tuple<PhotoSource*, S, int, int32_t, bool> cases[] = {
        {&one, S::Letterbox, 0, 160, true}, {&other, S::Cover, 5, 160, false},
        {&other, S::Exact, 6, 120, false}, {&one, S::Cover, 1, 160, false}};
    for (const auto& [source, shape, shown, width, bar] : cases) {
        const PhotoSource::Photo photo = files.Request(*source, shape);
        EXPECT_TRUE(photo.width == width && photo.height == 90);
        EXPECT_EQ(photo.pixels.at(0), bar ? 0xFF000000 : 0xFF100000u + shown);
        EXPECT_EQ(photo.title, source == &one ? L"Photo " + std::to_wstring(shown) : L"");
    }
    EXPECT_TRUE(one.cursor == 2 && other.cursor == 7);
}

TEST(PhotoTitles, CaptionIsTheNameWithoutItsTailWhenItsKindsFlagIsOn) {
    // The name, whether it is an imported photo, its caption.
    const std::tuple<const wchar_t*, bool, const wchar_t*> cases[] = {
        {L"Golden Gate-z1234567.jpg", true, L"Golden Gate"},
        {L"Golden Gate-Z1234567.jpg", false, L"Golden Gate"},
        {L"abcdefghijklm.jpg", false, L"abcd"}, {L"IMG_0001.jpg", false, L""},
        {L"-z1234567.jpg", true, L""}, {L"a-z1234567.jpg", true, L"a"}};
    for (const auto& [name, imported, caption] : cases) {
        const std::wstring path = std::wstring(L"C:\\long folder name\\") + name;
        // Only the flag of the photo's own kind counts.
        const TitleFlags ownOff = imported ? TitleFlags{true, false} : TitleFlags{false, true};
        EXPECT_EQ(PhotoCaption(path, ownOff), L"") << path;
        EXPECT_EQ(PhotoCaption(path, {!ownOff[0], !ownOff[1]}), caption) << path;
    }
    EXPECT_EQ(PhotoCaption(L"", {true, true}), L"");
}

} // namespace
