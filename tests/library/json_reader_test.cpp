// The reader of the companion's settings file. What it makes of "data-dir" is in the photo
// directory's table.
#include <gtest/gtest.h>

#include "library/json_reader.h"

TEST(JsonReader, DocumentsParseByTheRulesAndStringsKeepTheirEscapes) {
    const std::pair<std::string, bool> documents[] = {
        // White space wherever it may stand; only white space may follow the root.
        {" { \"a\" : [ 1 , { } , [ ] ] , \"b\" : [true,false,null] } \t\r\n", true},
        {"{} x", false}, {"\xEF\xBB\xBF{}", false}, {"{\"a\":1,}", false}, {"[1,]", false},
        {"{\"a\" 1}", false}, {"{\"a\":1 \"b\":2}", false}, {"{\"a\":1", false}, {"[1", false},
        {"truex", false}, {"-", false}, {"\"\\q\"", false}, {"\"\\u12\"", false},
        {"\"abc", false}, {"", false},
        {std::string(65, '[') + std::string(65, ']'), true}, // 64 levels below the root
        {std::string(66, '[') + std::string(66, ']'), false},
    };
    JsonValue value;
    for (const auto& [text, parses] : documents) {
        value.type = JsonValue::Number;
        EXPECT_EQ(JsonValue::Parse(text, value), parses) << text;
        if (!parses) EXPECT_EQ(value.type, JsonValue::Null) << text;
    }
    ASSERT_TRUE(JsonValue::Parse(R"({"k":"A","n":-1.5e2,"k":"B"})", value));
    EXPECT_EQ(value.GetString("k", "-"), "A"); // the first of equal keys
    EXPECT_EQ(value.Find("n").number, -150);

    const std::pair<std::string, std::string> strings[] = {
        {R"("\ud83dx\udc00")", "\xEF\xBF\xBDx\xEF\xBF\xBD"}, // lone halves of a pair
        {R"("\ud800\udc00\u0800\u007f")", "\xF0\x90\x80\x80\xE0\xA0\x80\x7F"},
        {R"("\udbff\udfff\u00e9")", "\xF4\x8F\xBF\xBF\xC3\xA9"}, // the highest code point
        {R"("\uD83D\u0041")", "\xEF\xBF\xBD"}, // the second escape is used up all the same
        {R"("\u0000\"\\\/\b\f\n\r\t")", std::string(1, '\0') + "\"\\/\b\f\n\r\t"},
        {"\"\x01\xFF\"", "\x01\xFF"}, // control characters and invalid UTF-8 as they are
    };
    for (const auto& [text, expected] : strings) {
        ASSERT_TRUE(JsonValue::Parse(text, value)) << text;
        EXPECT_EQ(value.text, expected) << text;
    }
}
