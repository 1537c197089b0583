#include "diagnostics/crash_report.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "diagnostics/crash_reporter.h"
#include "support/random_fake.h"

namespace {

// Number forms in a 17-byte buffer, and at its end: what doesn't fit is dropped, the zero stays.
TEST(CrashReport, AppendsGiveTheirFormsAndStopAtTheBufferEnd) {
    char buffer[17];
    TextCursor cursor{};
    const auto text = [&](auto append) {
        cursor = CursorOver(buffer, sizeof buffer);
        append();
        return std::string(buffer);
    };
    EXPECT_EQ(text([&] { AppendDecimal(cursor, 5, 2); }), "05");
    EXPECT_EQ(text([&] { AppendDecimal(cursor, 4294967295u, 1); }), "4294967295");
    EXPECT_EQ(text([&] { AppendHex(cursor, 0xC0000005, 16); }), "00000000c0000005");
    EXPECT_EQ(text([&] { AppendHex(cursor, 0x123456789ABCDEF0, 4); }), "def0");
    EXPECT_EQ(text([&] { AppendKeyValue(cursor, nullptr, nullptr); }), "=\n");
    FormatOsVersion(buffer, sizeof buffer, 6, 1, 7601);
    EXPECT_STREQ(buffer, "6.1.7601");
    EXPECT_EQ(text([&] {
                  AppendKeyValue(cursor, "key", "a-long-value");
                  AppendHex(cursor, 0xff, 2);
              }),
              "key=a-long-value");
    EXPECT_EQ(cursor.position, buffer + 16);
}

TEST(CrashReport, IdentifiersHaveTheVersionAndVariantDigits) {
    SetNextRandom(0);
    const uint32_t before = RandomDrawCount();
    char identifier[kIdentifierSize];
    MakeIdentifier(identifier);
    EXPECT_STREQ(identifier, "01234567-89ab-4def-8123-456789abcdef");
    EXPECT_EQ(RandomDrawCount() - before, 32u);
    SetNextRandom(3); // digit 16 draws 19: variant bits 3
    MakeIdentifier(identifier);
    EXPECT_STREQ(identifier, "3456789a-bcde-4012-b456-789abcdef012");
}

ReportHead Head() {
    return {"saver-win", false, 0xC0000005, "writing 0x0000000000000010", "preview",
            "01234567-89ab-4def-8123-456789abcdef", "3456789a-bcde-4012-b456-789abcdef012",
            "10.0.22631", 777, {2026, 5, 3, 9, 5, 7, 42}};
}

const char kHeadText[] = "app=saver-win\n"
                         "thread=worker\n"
                         "code=c0000005\n"
                         "detail=writing 0x0000000000000010\n"
                         "version=6.2.4\n"
                         "stage=preview\n"
                         "session=01234567-89ab-4def-8123-456789abcdef\n"
                         "event=3456789a-bcde-4012-b456-789abcdef012\n"
                         "osv=10.0.22631\n"
                         "pid=777\n"
                         "time=2026-05-03T09:05:07.042Z\n";

TEST(CrashReport, ElevenLinesThenBothFrameForms) {
    std::vector<char> buffer(kReportBufferSize);
    TextCursor cursor = CursorOver(buffer.data(), buffer.size());
    ReportHead head = Head();
    AppendReportHead(cursor, head);
    EXPECT_EQ(std::string(buffer.data()), kHeadText);

    AppendModuleFrame(cursor, "Lumivane.scr", 0x1a2b, 0x65f0a1b2);
    AppendUnknownFrame(cursor, 0x7ffe12345678);
    EXPECT_EQ(std::string(buffer.data()), std::string(kHeadText) +
                                              "frame=Lumivane.scr|0000000000001a2b|65f0a1b2\n"
                                              "frame=?|00007ffe12345678|00000000\n");

    cursor = CursorOver(buffer.data(), buffer.size());
    head.onUiThread = true;
    head.detail = "";
    AppendReportHead(cursor, head);
    EXPECT_EQ(std::string(buffer.data()).substr(14, 32), "thread=ui\ncode=c0000005\ndetail=\n");
}

TEST(CrashReport, LongReportEndsAt12287BytesInTheMiddleOfALine) {
    std::vector<char> whole(64 * 1024), report(kReportBufferSize);
    TextCursor wholeCursor = CursorOver(whole.data(), whole.size());
    TextCursor cursor = CursorOver(report.data(), report.size());
    for (TextCursor* c : {&wholeCursor, &cursor}) {
        AppendReportHead(*c, Head());
        for (int i = 0; i < 400; ++i) AppendModuleFrame(*c, "a-long-module-name.dll", i, 0);
    }
    const std::string text(report.data());
    ASSERT_EQ(text.size(), 12287u);
    EXPECT_EQ(std::string(whole.data()).substr(0, 12287), text);
    EXPECT_NE(text.back(), '\n');
}

TEST(CrashReport, FileNameIsTimeAndProcessInTheCrashFolder) {
    wchar_t name[kReportFileNameSize];
    FormatReportFileName(name, kReportFileNameSize, L"C:\\Data\\Crashes", 0x01dc0a1b2c3d4e5f, 7);
    EXPECT_STREQ(name, L"C:\\Data\\Crashes\\01dc0a1b2c3d4e5f-7.crash");
    // Cut to the buffer, zero included: the only check that the name never overruns it.
    FormatReportFileName(name, 10, L"C:\\Data\\Crashes", 1, 2);
    EXPECT_STREQ(name, L"C:\\Data\\C");
}

TEST(CrashReport, AccessDetailNamesTheOperation) {
    char detail[kDetailSize];
    for (const auto& [operation, word] :
         {std::pair{0, "reading"}, {1, "writing"}, {8, "executing"}}) {
        FormatAccessDetail(detail, operation, 0x10);
        EXPECT_EQ(std::string(detail), std::string(word) + " 0x0000000000000010");
    }
}

TEST(CrashReport, ShortWalkFallsBackToTheBacktraceFromTheCrashedPc) {
    const uint64_t backtrace[] = {0xd1, 0xd2, 0xbad, 0xa2, 0xa3, 0xa4};
    struct Case {
        int backtraceCount;
        uint64_t pc;
        int walked;
        int expectedCount;
        uint64_t expectedFirst;
    };
    // From the crashed pc on, the dispatcher's frames left out; copied, but the walk had more;
    // a pc not in the backtrace changes nothing, nor does no backtrace (stack overflow, hooks).
    const Case cases[] = {{6, 0xbad, 1, 4, 0xbad}, {6, 0xbad, 5, 5, 0xbad},
                          {6, 0x999, 1, 1, 0x111}, {0, 0xbad, 2, 2, 0x111}};
    for (const Case& c : cases) {
        uint64_t frames[kMaxFrames] = {0x111, 0x222, 0x333, 0x444, 0x555};
        EXPECT_EQ(FallBackToBacktrace(backtrace, c.backtraceCount, c.pc, frames, c.walked),
                  c.expectedCount);
        EXPECT_EQ(frames[0], c.expectedFirst);
    }
}

} // namespace
