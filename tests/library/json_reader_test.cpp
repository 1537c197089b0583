// The reader of the companion's settings file. What it makes of "data-dir" is in the photo
// directory's table.
#include <gtest/gtest.h>

#include "library/json_reader.h"

TEST(JsonReader, DocumentsParseByTheRulesAndStringsKeepTheirEscapes) {
    // White space wherever it may stand, only white space after the root, and containers at most
    // 64 levels below it.
    JsonValue value;
    EXPECT_TRUE(JsonValue::Parse(
        " { \"a\" : [ 1 , { } , [ ] ] , \"b\" : [true,false,null] } \t\r\n", value));
    EXPECT_TRUE(JsonValue::Parse(std::string(65, '[') + std::string(65, ']'), value));
    EXPECT_FALSE(JsonValue::Parse(std::string(66, '[') + std::string(66, ']'), value));
    for (const char* text :
         {"{} x", "\xEF\xBB\xBF{}", "{\"a\":1,}", "[1,]", "{\"a\" 1}", "{\"a\":1 \"b\":2}",
          "{\"a\":1", "[1", "truex", "-", "\"\\q\"", "\"\\u12\"", "\"abc", ""})
        EXPECT_FALSE(JsonValue::Parse(text, value)) << text;
    ASSERT_TRUE(JsonValue::Parse(R"({"k":"A","n":-1.5e2,"k":"B"})", value));
    EXPECT_EQ(value.GetString("k", "-"), "A"); // the first of equal keys
    EXPECT_EQ(value.Find("n").number, -150);

    // Lone halves of a pair, pairs up to the highest code point, each length of UTF-8, a second
    // escape after a high half used up all the same, the short escapes, and control characters
    // and invalid UTF-8 as they are.
    ASSERT_TRUE(
        JsonValue::Parse(R"("\ud83dx\udc00\ud800\udc00\udbff\udfff\u007f\u00e9\u0800\uD83D\u0041)"
                         R"(\u0000\"\\\/\b\f\n\r\t)"
                         "\x01\xFF\"",
                         value));
    EXPECT_EQ(value.text, "\xEF\xBF\xBDx\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\x7F\xC3\xA9"
                          "\xE0\xA0\x80\xEF\xBF\xBD" +
                              std::string(1, '\0') + "\"\\/\b\f\n\r\t\x01\xFF");
}
