// The reader of the companion's settings file, and the "data-dir" taken from it.
#include <gtest/gtest.h>

#include "library/data_dir_setting.h"
#include "library/json_reader.h"
#include "library/memory_tree.h"

namespace {

TEST(JsonReader, AcceptsAndRefusesDocuments) {
    const std::pair<std::string, bool> cases[] = {
        // What may follow the root, and what may come before it.
        {"{}", true}, {"{} \t\r\n", true}, {"{} x", false}, {"\xEF\xBB\xBF{}", false},
        {"[1,2]", true}, {"{\"a\":1,}", false}, {"[1,]", false}, {"{\"a\" 1}", false},
        {"{\"a\":1 \"b\":2}", false}, {"truex", false}, {"[nulll]", false}, {"-", false},
        {"{\"a\":[true,false,null,-1.5e2,\"\x01\xFF\"]}", true}, {"\"\\q\"", false},
        {"\"\\u12\"", false}, {"\"\\ud83d\\u12\"", false}, {"{\"a\": 1}", true}, {"{\"\\a:1}", false}, {"{\"ab", false}, {"{\"a\":", false},
        {"\"abc", false}, {"[", false}, {"", false},
        {std::string(65, '[') + std::string(65, ']'), true}, // 64 levels below the root
        {std::string(66, '[') + std::string(66, ']'), false},
    };
    for (const auto& [text, parses] : cases) {
        JsonValue value;
        value.type = JsonValue::Number;
        EXPECT_EQ(JsonValue::Parse(text, value), parses) << text;
        if (!parses) EXPECT_EQ(value.type, JsonValue::Null) << text;
    }
}

TEST(JsonReader, StringsKeepTheirEscapeRules) {
    const std::pair<std::string, std::string> cases[] = {
        {R"("\ud83d\ude00")", "\xF0\x9F\x98\x80"},
        {R"("\ud83dx")", "\xEF\xBF\xBDx"},
        {R"("\udc00")", "\xEF\xBF\xBD"},
        {R"("\ud800\udc00\u0800")", "\xF0\x90\x80\x80\xE0\xA0\x80"},
        {R"("\udbff\udfff")", "\xF4\x8F\xBF\xBF"}, // the highest code point
        {R"("\uD83D\u0041")", "\xEF\xBF\xBD"}, // the second escape is used up all the same
        {R"("\u00e9\u20AC")", "\xC3\xA9\xE2\x82\xAC"},
        {R"("\u0000")", std::string(1, '\0')},
        {R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"},
    };
    for (const auto& [text, expected] : cases) {
        JsonValue value;
        ASSERT_TRUE(JsonValue::Parse(text, value)) << text;
        EXPECT_EQ(value.text, expected) << text;
    }
}

TEST(JsonReader, FindTakesTheFirstOfEqualKeysAndOnlyInObjects) {
    JsonValue value;
    ASSERT_TRUE(JsonValue::Parse(R"({"k":"A","n":5,"k":"B"})", value));
    EXPECT_EQ(value.GetString("k", "-"), "A");
    EXPECT_EQ(value.GetString("n", "-"), "-");
    EXPECT_EQ(value.Find("n").number, 5);
    EXPECT_EQ(value.Find("K").type, JsonValue::Null);
    EXPECT_EQ(value.items[1].Find("k").type, JsonValue::Null);
    ASSERT_TRUE(JsonValue::Parse(R"([5,"k"])", value));
    EXPECT_EQ(value.items.size(), 2u);
}

TEST(JsonReader, DataDirLosesTrailingSlashesBeyondTheThirdCharacter) {
    const std::pair<std::string, std::wstring> cases[] = {
        {R"({"data-dir":"C:\\Photos\\"})", L"C:\\Photos"},
        {R"({"data-dir":"C:\\Photos\\\\"})", L"C:\\Photos"},
        {R"({"data-dir":"D:\\"})", L"D:\\"},
        {R"({"data-dir":"C:/Photos/"})", L"C:/Photos"},
        {R"({"data-dir":5})", L""},
        {R"(["data-dir"])", L""},
        {R"({"data-dir":"X")", L""},
    };
    for (const auto& [content, expected] : cases) {
        MemoryTree tree;
        tree.Add(L"C:\\U\\Roaming\\Lumivane\\Settings", 0x20, 0, content);
        EXPECT_EQ(ReadDataDirSetting(tree), expected) << content;
    }
    MemoryTree noFile;
    EXPECT_EQ(ReadDataDirSetting(noFile), L"");
}

} // namespace
