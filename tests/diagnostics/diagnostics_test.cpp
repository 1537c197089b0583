// The texts that the diagnostics write: the crash report (its eleven head lines, both frame
// forms, the size cap, and the small forms that the reporter fills in), the log line, and the
// language of the texts.
#include "diagnostics/crash_report.h"

#include <gtest/gtest.h>

#include "diagnostics/crash_reporter.h"
#include "diagnostics/log.h"
#include "diagnostics/string_table.h"
#include "library/memory_registry.h"
#include "library/random.h"
#include "support/random_fake.h"

// A crash before the first stage has none to name.
TEST(CrashReport, ElevenLinesBothFrameFormsTheCapTheSmallFormsAndTheLogLine) {
    char detail[kDetailSize];
    FormatAccessDetail(detail, 8, 0x10);
    std::vector<char> buffer(kReportBufferSize);
    TextCursor cursor = CursorOver(buffer.data(), buffer.size());
    const ReportTime time{2026, 5, 3, 9, 5, 7, 42};
    AppendReportHead(cursor, {"saver-win", true, 0xC0000005, detail, nullptr, "S", "E",
                              "10.0.22631", 777, time});
    AppendModuleFrame(cursor, "Lumivane.scr", 0x1a2b, 0x65f0a1b2);
    AppendUnknownFrame(cursor, 0x7ffe12345678);
    EXPECT_EQ(std::string(buffer.data()),
              "app=saver-win\nthread=ui\ncode=c0000005\ndetail=executing 0x0000000000000010\n"
              "version=6.2.4\nstage=\nsession=S\nevent=E\nosv=10.0.22631\npid=777\n"
              "time=2026-05-03T09:05:07.042Z\n"
              "frame=Lumivane.scr|0000000000001a2b|65f0a1b2\n"
              "frame=?|00007ffe12345678|00000000\n");
    for (int i = 0; i < 400; ++i) AppendUnknownFrame(cursor, i);
    const std::string text(buffer.data());
    EXPECT_EQ(text.size(), 12287u);
    EXPECT_NE(text.back(), '\n');

    SetNextRandom(2); // one draw per digit; digit 16 draws 18, whose low bits 2 make the variant
    char identifier[kIdentifierSize];
    MakeIdentifier(identifier);
    EXPECT_STREQ(identifier, "23456789-abcd-4f01-a345-6789abcdef01");
    EXPECT_EQ(RandomU32(), 2u + 32); // the next number: 32 were drawn

    char version[9];
    FormatOsVersion(version, sizeof version, 6, 1, 76010);
    EXPECT_STREQ(version, "6.1.7601"); // cut to the buffer, zero included
    wchar_t name[kReportFileNameSize];
    FormatReportFileName(name, kReportFileNameSize, L"C:\\Data\\Crashes", 0x01dc0a1b2c3d4e5f, 7);
    EXPECT_STREQ(name, L"C:\\Data\\Crashes\\01dc0a1b2c3d4e5f-7.crash");
    FormatReportFileName(name, 10, L"C:\\Data\\Crashes", 1, 2);
    EXPECT_STREQ(name, L"C:\\Data\\C");

    // A short walk takes the backtrace from the crashed pc on, leaving out the dispatcher's
    // frames, unless the walk had more.
    const uint64_t backtrace[] = {0xd1, 0xd2, 0xbad, 0xa2, 0xa3, 0xa4};
    uint64_t frames[kMaxFrames] = {};
    EXPECT_EQ(FallBackToBacktrace(backtrace, 6, 0xbad, frames, 5), 5);
    EXPECT_EQ(FallBackToBacktrace(backtrace, 6, 0xbad, frames, 1), 4);
    EXPECT_EQ(frames[0], 0xbadu);

    // The log line has the local time, the process, the text and CR LF; the log rotates only
    // above one mebibyte.
    EXPECT_EQ(LogLine({2026, 5, 3, 9, 5, 7}, 7, L"saver: caf\u00e9"),
              L"2026-05-03 09:05:07 [7] saver: caf\u00e9\r\n");
    EXPECT_FALSE(LogNeedsRotation(1048576));
    EXPECT_TRUE(LogNeedsRotation(1048577));
}

// The language of the process, from the option Language and the system's language.
TEST(StringTable, LanguageValueMatchesExactlyElseTheSystemsPrimaryLanguageDecides) {
    // The no-photos text after a start with `value` of Language (null: none) on a system whose
    // language identifier is `system` (its primary language in the low 10 bits).
    const auto textFor = [](const wchar_t* value, uint16_t system) {
        TestRegistry() = {};
        if (value) TestRegistry().PutString(L"Language", value);
        StringTable::Init(system);
        return StringTable::Get(kNoPhotosText);
    };
    // Each code gives a translation on an English system, and the same on a system of that
    // language without a value; a value in other letters counts for nothing.
    const std::pair<const wchar_t*, uint16_t> languages[] = {{L"de", 0x0407}, {L"es", 0x0C0A},
                                                             {L"fr", 0x040C}, {L"it", 0x0810},
                                                             {L"nl", 0x0813}, {L"pt", 0x0816}};
    for (const auto& [code, system] : languages) {
        const std::wstring text = textFor(code, 0x0409);
        EXPECT_NE(text, kNoPhotosText) << code;
        EXPECT_EQ(textFor(nullptr, system), text) << code;
    }
    EXPECT_EQ(textFor(L"DE", 0x0409), kNoPhotosText);
    EXPECT_EQ(textFor(L"en", 0x0407), kNoPhotosText);
}
