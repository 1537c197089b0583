// The import's logic: the names of copies, the index file, a run's plan and the copies' size.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "companion/utf8_text.h"

namespace {

TEST(Utf8Text, WideTextEncodesAlikeFromCodePointsAndFromSurrogatePairs) {
    std::string out;
    ASSERT_TRUE(Utf8FromWide(L"a\u00e9\u20ac\U0001F600", out));
    EXPECT_EQ(out, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    ASSERT_TRUE(Utf8FromWide({wchar_t(0xD83D), wchar_t(0xDE00)}, out)); // as Windows holds it
    EXPECT_EQ(out, "\xF0\x9F\x98\x80");
}

} // namespace
