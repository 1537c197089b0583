#include "diagnostics/log.h"

#include <gtest/gtest.h>

TEST(Log, LineHasLocalTimeProcessTextAndCrLfAndTheLogRotatesOnlyAboveOneMebibyte) {
    EXPECT_EQ(LogLine({2026, 5, 3, 9, 5, 7}, 7, L"saver: caf\u00e9"),
              L"2026-05-03 09:05:07 [7] saver: caf\u00e9\r\n");
    EXPECT_EQ(LogLine({999, 12, 31, 23, 59, 59}, 4294967295u, L""),
              L"0999-12-31 23:59:59 [4294967295] \r\n");
    EXPECT_FALSE(LogNeedsRotation(1048576));
    EXPECT_TRUE(LogNeedsRotation(1048577));
}
