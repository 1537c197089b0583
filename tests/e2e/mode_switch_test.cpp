// Command lines that open no window: the saver must end by itself with exit code 0.
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "e2e/driver_window.h"
#include "e2e/saver_test.h"
#include "e2e/saver_windows.h"

namespace e2e {
namespace {

struct QuietRun {
    const char* name;
    const wchar_t* arguments;
};

void PrintTo(const QuietRun& run, std::ostream* out) { *out << run.name; }

class QuietRunTest : public SaverTest, public ::testing::WithParamInterface<QuietRun> {};

TEST_P(QuietRunTest, EndsWithZeroAndNoWindow) {
    // The companion's tray is there, so that the settings handoff has someone to tell and
    // never falls back to a message box that would wait for a click.
    DriverWindow tray(FakeTrayOptions());
    SaverProcess& saver = Start(GetParam().arguments);
    bool sawWindow = false;
    std::optional<DWORD> code;
    for (int polls = 0; polls < static_cast<int>(kExitMs / 10) && !code; ++polls) {
        sawWindow = sawWindow || !TopLevelSaverWindows(saver.Id()).empty();
        code = saver.WaitForExit(10);
    }
    ASSERT_TRUE(code.has_value()) << "still running after " << kExitMs << " ms";
    EXPECT_EQ(*code, 0u);
    EXPECT_FALSE(sawWindow);
}

INSTANTIATE_TEST_SUITE_P(
    Switches, QuietRunTest,
    ::testing::Values(QuietRun{"UnknownLetter", L"/x"}, QuietRun{"UnknownLetterWithValue", L"-z:1"},
                      QuietRun{"PreviewOfNoWindow", L"/p 123456"},
                      QuietRun{"PreviewWithoutHandle", L"/p"},
                      QuietRun{"PreviewOfText", L"/p:abc"}, QuietRun{"Settings", L"/c"}),
    [](const ::testing::TestParamInfo<QuietRun>& info) { return std::string(info.param.name); });

} // namespace
} // namespace e2e
