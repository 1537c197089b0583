// Captions and the name order, from file names alone.
#include <gtest/gtest.h>

#include "photos/photo_titles.h"

namespace {

TEST(PhotoTitles, CaptionIsTheNameWithoutItsTailWhenItsKindsFlagIsOn) {
    struct Case {
        const wchar_t* name;
        bool imported;
        const wchar_t* caption;
    };
    const Case cases[] = {
        {L"Golden Gate-z1234567.jpg", true, L"Golden Gate"},
        {L"Golden Gate-a1234567.jpg", false, L"Golden Gate"},
        {L"Golden Gate-Z1234567.jpg", false, L"Golden Gate"},
        {L"abcdefghijklm.jpg", false, L"abcd"},
        {L"Holiday at the lake.jpg", false, L"Holiday at"},
        {L"IMG_0001.jpg", false, L""},
        {L"-z1234567.jpg", true, L""},
        {L"a-z1234567.jpg", true, L"a"},
    };
    for (const Case& c : cases) {
        const std::wstring path = std::wstring(L"C:\\long folder name\\") + c.name;
        EXPECT_EQ(PhotoCaption(path, {true, true}), c.caption) << path;
        // Only the flag of the photo's own kind counts.
        const TitleFlags ownOff = c.imported ? TitleFlags{true, false} : TitleFlags{false, true};
        EXPECT_EQ(PhotoCaption(path, ownOff), L"") << path;
        EXPECT_EQ(PhotoCaption(path, {!ownOff[0], !ownOff[1]}), c.caption) << path;
    }
    EXPECT_EQ(PhotoCaption(L"", {true, true}), L"");
}

TEST(PhotoTitles, NamesCompareAsTheRuntimeFoldsThem) {
    struct Case {
        const wchar_t* a;
        const wchar_t* b;
        bool less;
    };
    const Case cases[] = {
        {L"D:\\b\\Alpha.jpg", L"C:\\z\\beta.jpg", true}, // folders don't count
        {L"C:\\z\\beta.jpg", L"D:\\b\\Alpha.jpg", false},
        {L"A.jpg", L"a.jpg", false}, {L"a.jpg", L"A.jpg", false}, {L"ab", L"abc", true},
        {L"_x.jpg", L"A.jpg", true},           // letters compare as lower case, above "_"
        {L"Z.jpg", L"\u00C9.jpg", true},       // an accented letter isn't folded: after "z"
        {L"\u00E9.jpg", L"\u00C9.jpg", false}, // ... nor the same letter in two cases
        {L"C:\\x\\b", L"a\\B", false},
    };
    for (const Case& c : cases) EXPECT_EQ(ComparePhotoNames(c.a, c.b), c.less) << c.a << " " << c.b;
}

} // namespace
