// Command lines that open no window: the saver must end by itself with exit code 0.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "e2e/driver_window.h"
#include "e2e/saver_test.h"

namespace e2e {
namespace {

class QuietRunTest : public SaverTest, public ::testing::WithParamInterface<const wchar_t*> {};

TEST_P(QuietRunTest, EndsWithZeroAndNoWindow) {
    // The tray takes the settings handoff, so no message box waits for a click.
    DriverWindow tray(FakeTrayOptions());
    SaverProcess& saver = Start(GetParam());
    bool sawWindow = false;
    std::optional<DWORD> code;
    for (DWORD waited = 0; waited < kExitMs && !code; waited += 10) {
        sawWindow = sawWindow || !SaverWindows(saver.Id()).empty();
        code = saver.WaitForExit(10);
    }
    ASSERT_TRUE(code.has_value()) << "still running after " << kExitMs << " ms";
    EXPECT_EQ(*code, 0u);
    EXPECT_FALSE(sawWindow);
}

// An unknown switch, a preview of a window that doesn't exist, the settings (the parsing rules
// are a host test).
INSTANTIATE_TEST_SUITE_P(Switches, QuietRunTest, ::testing::Values(L"/x", L"/p 123456", L"/c"));

} // namespace
} // namespace e2e
