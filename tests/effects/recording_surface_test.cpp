#include "effects/recording_surface.h"

#include <functional>

#include <gtest/gtest.h>

namespace {

using Op = SurfaceCall::Op;

TEST(RecordingSurface, HandlesKeepTheirNumbersAndOutliveTheSurface) {
    auto surface = std::make_unique<RecordingSurface>();
    const std::shared_ptr<SurfaceLog> log = surface->log;
    const uint32_t pixel = 0xFF102030;
    auto bitmap = surface->CreateBitmap(1, 1, &pixel);
    auto brush = surface->CreateSolidColorBrush({1, 0, 0, 1});
    auto offscreen = surface->CreateCompatibleRenderTarget({2, 2}, 2, 2);
    auto picture = offscreen->GetBitmap();
    ASSERT_TRUE(bitmap && brush && picture);

    EXPECT_EQ(RecordingSurface::IdOf(*bitmap), log->Calls(Op::CreateBitmap)[0].object);
    EXPECT_EQ(RecordingSurface::IdOf(*picture),
              log->Calls(Op::CreateCompatibleRenderTarget)[0].object);
    EXPECT_EQ(log->Calls(Op::CreateBitmap)[0].pixels, std::vector<uint32_t>{pixel});
    EXPECT_EQ(log->bitmapsCreated, 1); // the offscreen picture is no upload
    EXPECT_EQ(log->bitmapsAlive, 2);
    EXPECT_EQ(log->targetsAlive, 2);

    // Effects may hold device objects past their target; the counters must still be right.
    offscreen.reset();
    surface.reset();
    EXPECT_EQ(log->targetsAlive, 0);
    bitmap.reset();
    picture.reset();
    brush->SetColor({0, 1, 0, 1});
    brush.reset();
    EXPECT_EQ(log->bitmapsAlive, 0);
    EXPECT_EQ(log->brushesAlive, 0);
    EXPECT_EQ(log->calls.back().op, Op::SetColor);
}

TEST(RecordingSurface, ReportsWhatARealDeviceWouldRefuse) {
    struct Case {
        const char* name;
        std::function<void(RecordingSurface&, std::shared_ptr<SurfaceLog>)> draw;
        size_t misuses;
    };
    const Case cases[] = {
        {"correct frame with layer and offscreen",
         [](RecordingSurface& s, std::shared_ptr<SurfaceLog>) {
             auto layer = s.CreateLayer();
             auto offscreen = s.CreateCompatibleRenderTarget({4, 4}, 4, 4);
             offscreen->BeginDraw();
             offscreen->Clear({0, 0, 0, 0});
             offscreen->EndDraw();
             auto picture = offscreen->GetBitmap();
             s.BeginDraw();
             s.PushLayer(*layer, 0.5f, nullptr);
             s.DrawBitmap(*picture, {0, 0, 4, 4}, 1, nullptr);
             s.PopLayer();
             s.EndDraw();
         },
         0},
        {"draw outside a frame",
         [](RecordingSurface& s, std::shared_ptr<SurfaceLog>) {
             auto brush = s.CreateSolidColorBrush({});
             s.FillRectangle({0, 0, 1, 1}, *brush);
         },
         1},
        {"layer left pushed",
         [](RecordingSurface& s, std::shared_ptr<SurfaceLog>) {
             auto layer = s.CreateLayer();
             s.BeginDraw();
             s.PushLayer(*layer, 0.5f, nullptr);
             s.EndDraw();
         },
         1},
        {"one layer pushed twice",
         [](RecordingSurface& s, std::shared_ptr<SurfaceLog>) {
             auto layer = s.CreateLayer();
             s.BeginDraw();
             s.PushLayer(*layer, 0.5f, nullptr);
             s.PushLayer(*layer, 0.5f, nullptr);
             s.PopLayer();
             s.PopLayer();
             s.EndDraw();
         },
         1},
        {"bitmap kept across a lost target",
         [](RecordingSurface& s, std::shared_ptr<SurfaceLog> log) {
             auto bitmap = s.CreateBitmap(1, 1, nullptr);
             RecordingSurface remade(log);
             remade.BeginDraw();
             remade.DrawBitmap(*bitmap, {0, 0, 1, 1}, 1, nullptr);
             remade.EndDraw();
         },
         1},
    };
    for (const auto& c : cases) {
        RecordingSurface surface;
        c.draw(surface, surface.log);
        EXPECT_EQ(surface.log->misuses.size(), c.misuses) << c.name;
    }
}

TEST(RecordingSurface, KnobsMakeCreationFailAndAreRecorded) {
    RecordingSurface surface;
    SurfaceLog& log = *surface.log;
    log.maximumBitmapSize = 8;
    EXPECT_TRUE(surface.CreateBitmap(8, 1, nullptr));
    EXPECT_FALSE(surface.CreateBitmap(9, 1, nullptr));
    EXPECT_FALSE(surface.CreateCompatibleRenderTarget({1, 9}, 1, 9));
    log.failGradientBrushes = true;
    EXPECT_TRUE(surface.CreateSolidColorBrush({}));
    EXPECT_FALSE(surface.CreateLinearGradientBrush({}, {}, nullptr, 0));
    log.endDrawResults = {EndDrawResult::RecreateTarget};
    surface.BeginDraw();
    EXPECT_EQ(surface.EndDraw(), EndDrawResult::RecreateTarget);
    surface.BeginDraw();
    EXPECT_EQ(surface.EndDraw(), EndDrawResult::Ok);

    EXPECT_EQ(log.Trace(surface.id),
              (std::vector<std::string>{"CreateBitmap #2 8x1", "CreateBitmap #0 9x1",
                                        "CreateCompatibleRenderTarget #0 1x9 1x9px",
                                        "CreateSolidColorBrush #3 rgba(0,0,0,1)",
                                        "CreateLinearGradientBrush #0 (0,0)-(0,0)", "BeginDraw",
                                        "EndDraw RecreateTarget", "BeginDraw", "EndDraw Ok"}));
}

TEST(RecordingSurface, TraceKeepsFloatsExact) {
    RecordingSurface surface;
    surface.SetTransform({1, 0, 0, -1, 0.1f, 2.5e-8f});
    EXPECT_EQ(surface.log->Trace(),
              std::vector<std::string>{"@1 SetTransform [1,0,0,-1,0.1,2.5e-08]"});
}

} // namespace
