#include "session/command_line.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t kWindow = 777;

struct Case {
    std::vector<std::wstring> arguments;
    bool run;
    SaverMode mode;
    uint64_t handle;
};

TEST(CommandLine, DecidesModeHandleAndSilentExits) {
    const auto settings = SaverMode::Settings;
    const auto full = SaverMode::Fullscreen;
    const auto preview = SaverMode::Preview;
    const Case cases[] = {
        // No usable switch opens the settings; unknown letters end at once.
        {{}, true, settings, 0}, {{L"foo"}, true, settings, 0}, {{L"/"}, true, settings, 0},
        {{L"-"}, true, settings, 0}, {{L"/x"}, false, settings, 0},
        // Only the letter behind the switch character counts, in any case.
        {{L"/S"}, true, full, 0}, {{L"-saver"}, true, full, 0}, {{L"/s", L"777"}, true, full, 0},
        // Preview takes its value after the colon or from the next argument.
        {{L"/p:777"}, true, preview, kWindow}, {{L"-P", L"777"}, true, preview, kWindow},
        {{L"/p:777", L"888"}, true, preview, kWindow}, {{L"/p:", L"777"}, true, preview, kWindow},
        {{L"/pq", L"777"}, true, preview, kWindow}, {{L"/p", L"777abc"}, true, preview, kWindow},
        // A missing, unreadable or foreign handle ends silently.
        {{L"/p"}, false, preview, 0}, {{L"/p:"}, false, preview, 0},
        {{L"/p:abc"}, false, preview, 0}, {{L"/p:888"}, false, preview, 888},
        // Settings ignore any handle.
        {{L"/c:777"}, true, settings, 0}, {{L"/C", L"777"}, true, settings, 0},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const Case& c = cases[i];
        int asked = 0;
        const auto choice = ParseCommandLine(c.arguments, [&](uint64_t handle) {
            ++asked;
            return handle == kWindow;
        });
        EXPECT_EQ(choice.run, c.run) << i;
        if (c.run || c.mode == SaverMode::Preview)
            EXPECT_TRUE(choice.mode == c.mode && choice.handle == c.handle) << i;
        // Only a preview ever asks whether its number is a window.
        if (c.mode != SaverMode::Preview) EXPECT_EQ(asked, 0) << i;
    }
}

} // namespace
