// The import's logic: the names of copies, the index file, a run's plan and the copies' size.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "companion/import_index.h"
#include "companion/import_naming.h"
#include "companion/import_plan.h"
#include "companion/import_size.h"
#include "companion/utf8_text.h"

namespace {

TEST(ImportNaming, CameraCounterNamesAreRecognisedInAnyCase) {
    // clang-format off
    for (const wchar_t* stem : {L"IMG_0001", L"img0001", L"IMG-20240812-WA0003", L"DSC01234",
             L"DSCN1234", L"dscf1234", L"_DSC1234", L"PXL_20240812_123456789.MP", L"P1010001",
             L"GOPR1234", L"GH011234", L"MVIMG_20240812_123456", L"VID_20240812_123456",
             L"20240812_123456", L"IMG_0001 (1)", L"Photo 2024-08-12 14 33 21",
             L"Screenshot_20240812-143321", L"WhatsApp Image 2024-08-12 at 14.33.21"})
        EXPECT_TRUE(IsCameraCounterName(stem)) << stem;
    for (const wchar_t* stem : {L"Golden Gate", L"Anna 2019", L"", L"IMG", L"IMG_Holiday",
             L"Pictures 2019", L"Vida 2", L"IMG_0001 & Co", L"DSC01234 Anna"})
        EXPECT_FALSE(IsCameraCounterName(stem)) << stem;
    // clang-format on
}

TEST(ImportNaming, CameraCounterNamesTakeTheFolderAndMonth) {
    // clang-format off
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*> cases[] = {
        {L"C:\\Pics\\v1.2 Anna.png",                    L"May 2019",    L"v1.2 Anna"},
        {L"C:\\Pics\\Holiday\\IMG_0001.JPG",            L"August 2024", L"Holiday, August 2024"},
        {L"C:\\Pics\\Rome\\2024\\08\\DSC01234.jpg",     L"Mai 2024",    L"Rome, Mai 2024"},
        {L"\\\\nas\\photos\\DCIM\\PXL_20240812_1.MP.jpg", L"",          L"photos"},
        {L"E:\\DCIM\\100CANON\\IMG_0001.JPG",           L"August 2024", L"August 2024"},
        {L"E:\\DCIM\\100CANON\\IMG_0001.JPG",           L"",            L"IMG_0001"},
        {L"IMG_0001.jpg",                               L"May 2019",    L"May 2019"},
    };
    // clang-format on
    for (const auto& [path, taken, title] : cases)
        EXPECT_EQ(ImportTitle(path, taken), title) << path;
}

TEST(ImportNaming, IdentifierHashesTheFoldedUtf16UnitsOfThePath) {
    // clang-format off
    const std::pair<std::wstring, std::wstring> cases[] = {
        {L"C:\\Photos\\a.jpg", L"n5gmdft"}, {L"c:\\PHOTOS\\A.JPG", L"n5gmdft"}, {L"", L"zj4ux45"},
        {L"D:\\Holiday\\IMG_0001.JPG", L"mh5rayj"}, {L"E:\\\U0001F600.png", L"dm2nbqa"}};
    // clang-format on
    for (const auto& [path, identifier] : cases) EXPECT_EQ(SourceIdentifier(path), identifier);
}

TEST(ImportNaming, CopyNamesAreFileSafeAndEndInTheImportedTail) {
    const std::wstring x98(98, L'x'), x99 = x98 + L'x';
    // clang-format off
    const std::pair<std::wstring, std::wstring> cases[] = {
        {L" \t a:b*c?\"d<e>f|g/h\\i  j ", L"a b c d e f g h i j"}, {L"..Trip. . ", L"Trip"},
        {L" . ", L""}, {x98 + L" yz", x98 + L" y"}, {std::wstring(150, L'x'), x99 + L'x'},
        {x99 + L"\U0001F600", x99}, // the pair would be units 100 and 101
        {x98 + L"\U0001F600", x98 + L"\U0001F600"}, {x99 + wchar_t(0xD83D) + wchar_t(0xDE00), x99},
        {std::wstring{0xD83D, L'a', 0xD83D, 0xDE00, 0xDC00}, L"\uFFFDa\U0001F600\uFFFD"}};
    // clang-format on
    for (const auto& [title, safe] : cases)
        EXPECT_EQ(ImportedFileName(title, L"0a1b2c3"), safe + L"-z0a1b2c3.jpg") << title;
}

TEST(Utf8Text, WideTextEncodesAlikeFromCodePointsAndFromSurrogatePairs) {
    std::string out;
    ASSERT_TRUE(Utf8FromWide(L"a\u0080\u0800\u20ac\U0010FFFF", out));
    EXPECT_EQ(out, "a\xC2\x80\xE0\xA0\x80\xE2\x82\xAC\xF4\x8F\xBF\xBF");
    ASSERT_TRUE(Utf8FromWide({wchar_t(0xD83D), wchar_t(0xDE00)}, out)); // as Windows holds it
    EXPECT_EQ(out, "\xF0\x9F\x98\x80");
    EXPECT_FALSE(Utf8FromWide({L'a', wchar_t(0xDC00)}, out));
}

const std::string kHeader = "lumivane-import 1\n";

TEST(ImportIndex, RecordsReadBackAsWrittenAndUnrecordableOnesAreLeftOut) {
    const std::string text = kHeader +
                             "C:\\a\t1\t18446744073709551615\ta-z0000001.jpg\t9\t7\tC:\\\n" +
                             "C:\\b\t1\t0\t\t0\t0\tC:\\\n";
    EXPECT_EQ(SerialiseImportIndex(ParseImportIndex(text)), text);
    std::vector<ImportRecord> bad(3, {L"C:\\a", 1, 1, L"a-z0000001.jpg", 9, 0, L"C:\\"});
    bad[0].sourcePath += L"\t";
    bad[1].root += wchar_t(0xD800);
    bad[2].copyName = L"Mine.jpg";
    EXPECT_EQ(SerialiseImportIndex(bad), kHeader);
}

TEST(ImportIndex, DamagedLinesAndOtherVersionsAreSkipped) {
    // clang-format off
    const std::pair<std::string, size_t> cases[] = {
        {kHeader + "C:\\a\t1\t2\ta-z0000001.jpg\t3\t4\tC:\\\r\n", 1},
        {kHeader + "C:\\a\t1\t2\ta-z0000001.jpg\t3\t4\tC:\\",     0}, // cut short
        {kHeader + "C:\\a\t1\t2\ta-z0000001.jpg\t3\tC:\\\n",      0},
        {kHeader + "C:\\a\t1\t2\ta-z0000001.JPG\t3\t4\tC:\\\n",   1},
        {kHeader + "C:\\a\t1\t2\t-z0000001.jpg\t3\t4\tC:\\\n",    1},
        {kHeader + "C:\\a\t1\t2\tz0000001.jpg\t3\t4\tC:\\\n",     0},
        {kHeader + "C:\\a\t1\t2\t\t3\t4x\tC:\\\n",                0},
        {kHeader + "C:\\a\t1\t18446744073709551616\t\t3\t4\tC:\\\n", 0},
        {kHeader + "C:\\a\t1\t2\t..\\a-z0000001.jpg\t3\t4\tC:\\\n", 0},
        {kHeader + "C:\\a\t1\t2\ta-Z0000001.jpg\t3\t4\tC:\\\n",   0},
        {kHeader + "C:\\a\t1\t2\ta-z0000001.jpeg\t3\t4\tC:\\\n",  0},
        {"lumivane-import 2\nC:\\a\t1\t2\t\t3\t4\tC:\\\n",        0},
    };
    // clang-format on
    for (const auto& [text, count] : cases) EXPECT_EQ(ParseImportIndex(text).size(), count) << text;
}

// Records and sources of a run under C:\P (and D:\Card), by their file names.
ImportRecord Record(const std::wstring& name, const wchar_t* copy, uint64_t copySize,
                    uint64_t taken = 0, const std::wstring& root = L"C:\\P") {
    return {root + L"\\" + name, 10, 100, copy, copySize, taken, root};
}
ImportSource Source(const std::wstring& name, uint64_t size = 10, uint64_t time = 100) {
    return {L"C:\\P\\" + name, size, time, 0};
}

// A plan as sorted lines: "d copy", "w path|root|previous copy", and "path|copy|copy size" for
// each record.
std::vector<std::wstring> Lines(const ImportPlan& plan) {
    std::vector<std::wstring> lines(plan.deletes);
    for (std::wstring& line : lines) line = L"d " + line;
    for (const ImportWrite& w : plan.writes)
        lines.push_back(L"w " + w.source.path + L"|" + w.root + L"|" + w.previous.copyName);
    for (const ImportRecord& r : plan.records)
        lines.push_back(r.sourcePath + L'|' + r.copyName + L'|' + std::to_wstring(r.copySize));
    std::sort(lines.begin(), lines.end());
    return lines;
}
using Names = std::vector<std::wstring>;

ImportInputs Inputs() { return {{{L"C:\\P", true}}, {}, {}, {}, UINT64_MAX}; }

TEST(ImportPlan, SourcesAreWrittenKeptOrDeletedByWhatChanged) {
    ImportInputs in = Inputs();
    in.roots.insert(in.roots.end(), {{L"C:\\P\\Sub\\", true}, {L"D:\\Card", false}});
    // a unchanged, b changed, c gone, d failed, e failed and changed, f's folder left the list,
    // g's copy is missing, h's folder can't be read; n is new, x lies under two chosen folders,
    // and z names a folder that isn't there.
    // clang-format off
    in.index = {Record(L"a", L"a-z0000001.jpg", 9), Record(L"b", L"b-z0000002.jpg", 9),
                Record(L"c", L"c-z0000003.jpg", 9), Record(L"d", L"", 0), Record(L"e", L"", 0),
                Record(L"g", L"g-z0000007.jpg", 9), Record(L"f", L"f-z0000006.jpg", 9, 0, L"C:\\O"),
                Record(L"h", L"h-z0000008.jpg", 9, 0, L"D:\\Card")};
    in.present = {L"A-z0000001.jpg", L"b-z0000002.jpg", L"c-z0000003.jpg", L"f-z0000006.jpg",
                  L"h-z0000008.jpg"};
    in.sources = {Source(L"a"), Source(L"b", 11), Source(L"d"), Source(L"e", 10, 101), Source(L"g"),
                  Source(L"n"), {L"C:\\P\\Sub\\x", 10, 100, 1}, Source(L"SUB\\X"),
                  {L"C:\\P\\z", 1, 1, 9}};
    // clang-format on
    const ImportPlan plan = PlanImport(in);
    // clang-format off
    EXPECT_EQ(Lines(plan), (Names{L"C:\\P\\a|a-z0000001.jpg|9", L"C:\\P\\d||0",
        L"D:\\Card\\h|h-z0000008.jpg|9", L"d c-z0000003.jpg", L"d f-z0000006.jpg",
        L"w C:\\P\\SUB\\X|C:\\P|", L"w C:\\P\\b|C:\\P|b-z0000002.jpg", L"w C:\\P\\e|C:\\P|",
        L"w C:\\P\\g|C:\\P|g-z0000007.jpg", L"w C:\\P\\n|C:\\P|"}));
    // clang-format on
    EXPECT_TRUE(plan.foreign.empty());
    EXPECT_EQ(plan.writes.back().estimate, 9u); // x's: the average copy, failures left out
}

TEST(ImportPlan, FilesTheIndexDoesNotListAreNeverWrittenOverOrDeleted) {
    const std::wstring own = ImportedFileName(L"b", SourceIdentifier(L"C:\\P\\b"));
    const std::wstring users = ImportedFileName(L"n", SourceIdentifier(L"C:\\P\\n"));
    ImportInputs in = Inputs();
    in.index = {Record(L"b", own.c_str(), 9)};
    in.present = {own, users, L"Mine.jpg", L"x-z0000009.jpg"};
    in.sources = {Source(L"b", 11), Source(L"m"), Source(L"n")};
    ImportPlan plan = PlanImport(in);
    EXPECT_EQ(plan.foreign, (Names{users, L"Mine.jpg", L"x-z0000009.jpg"}));
    EXPECT_TRUE(plan.deletes.empty());
    ASSERT_EQ(plan.writes.size(), 3u); // b, m, n: equal times go by path
    EXPECT_EQ(ClaimCopyName(plan, plan.writes[0], L"b"), own);
    EXPECT_EQ(ClaimCopyName(plan, plan.writes[2], L"n"), L"");
    EXPECT_TRUE(RecordOfWrite(plan.writes[2], L"", 500, 7).Failed()); // so it isn't tried again
    EXPECT_FALSE(ClaimCopyName(plan, plan.writes[1], L"m").empty());
    EXPECT_TRUE(ClaimCopyName(plan, plan.writes[1], L"m").empty()); // given out already
}

TEST(ImportPlan, TheNewestFillTheBudgetUpToTheFirstThatDoesNotFit) {
    ImportInputs in = Inputs();
    in.roots.push_back({L"D:\\Card", false});
    // k2 has no taken time and was last written at 100; l was left out before.
    in.index = {Record(L"k1", L"k1-z0000001.jpg", 400, 500), Record(L"k2", L"k2-z0000002.jpg", 400),
                Record(L"k3", L"k3-z0000003.jpg", 100, 50), Record(L"l", L"", 300, 600),
                Record(L"u", L"u-z0000005.jpg", 1000, 1, L"D:\\Card")};
    in.present = {L"k1-z0000001.jpg", L"k2-z0000002.jpg", L"k3-z0000003.jpg", L"u-z0000005.jpg"};
    in.sources = {Source(L"k1"), Source(L"k2"),         Source(L"k3"),
                  Source(L"l"),  Source(L"n", 10, 450), Source(L"o", 10, 40)};
    // u's 1000 first; then l 300, k1 400, n the average of 440, k2 400: exactly 2540.
    in.budget = 2540;
    const ImportPlan plan = PlanImport(in);
    // clang-format off
    EXPECT_EQ(Lines(plan), (Names{L"C:\\P\\k1|k1-z0000001.jpg|400",
        L"C:\\P\\k2|k2-z0000002.jpg|400", L"C:\\P\\k3||100", L"C:\\P\\o||440",
        L"D:\\Card\\u|u-z0000005.jpg|1000", L"d k3-z0000003.jpg", L"w C:\\P\\l|C:\\P|",
        L"w C:\\P\\n|C:\\P|"}));
    // clang-format on
    EXPECT_EQ(SummariseIndex(plan.records).bytes, 1800u); // k1, k2 and u
    in.budget = 2539;
    EXPECT_EQ(PlanImport(in).deletes, (Names{L"k2-z0000002.jpg", L"k3-z0000003.jpg"}));
}

TEST(ImportPlan, ASecondRunOverItsOwnIndexChangesNothing) {
    ImportInputs in = Inputs();
    in.sources = {Source(L"Rome\\IMG_0001.jpg"), Source(L"a.png", 20, 90)};
    ImportPlan first = PlanImport(in);
    std::vector<ImportRecord> index;
    for (const ImportWrite& write : first.writes) {
        const std::wstring title = ImportTitle(write.source.path, L"May 2019");
        index.push_back(RecordOfWrite(write, ClaimCopyName(first, write, title), 500, 7));
        in.present.push_back(index.back().copyName);
    }
    in.index = ParseImportIndex(SerialiseImportIndex(index));
    const ImportPlan second = PlanImport(in);
    EXPECT_TRUE(second.writes.empty() && second.deletes.empty() && second.foreign.empty());
    EXPECT_EQ(Lines(second).size(), 2u);
}

TEST(ImportSize, CopiesJustCoverTheLargestMonitorAndAreNeverScaledUp) {
    // The photo's width and height, the monitor's, the copy's; monitors below full HD count as it.
    const std::array<uint32_t, 6> cases[] = {
        {4000, 3000, 1280, 720, 1920, 1440},  {1920, 1080, 1920, 1080, 1920, 1080},
        {1921, 1081, 1920, 1080, 1920, 1080}, {1922, 1080, 1920, 1080, 1922, 1080},
        {3000, 4000, 1920, 1080, 1920, 2560}, {7680, 4321, 3840, 2160, 3840, 2161}, // 2160.5
        {800, 600, 1920, 1080, 800, 600},     {100000, 1, 1920, 1080, 100000, 1},
        {1, 100000, 1920, 1080, 1, 100000},   {0, 0, 1920, 1080, 1, 1}};
    for (const auto& c : cases) {
        const ImageSize got = CopySize({c[0], c[1]}, CopyTargetBox({{c[2], c[3]}}));
        EXPECT_TRUE(got.width == c[4] && got.height == c[5]) << c[0] << "x" << c[1];
    }
    // A landscape and a portrait monitor: the box takes the larger side of each.
    const ImageSize box = CopyTargetBox({{2560, 1440}, {1080, 1920}});
    EXPECT_TRUE(box.width == 2560 && box.height == 1920);
}

} // namespace
