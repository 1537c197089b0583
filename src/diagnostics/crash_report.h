#pragma once

#include <cstddef>
#include <cstdint>

// The text of a crash report, built by hand in fixed buffers: nothing here allocates, because it
// runs on the reporter thread while the process is dying.

// The product's version in reports; res/lumivane.rc gives the same number.
inline constexpr char kReportVersion[] = "6.2.4";

// Sizes of the fixed buffers.
inline constexpr size_t kReportBufferSize = 12288; // text of at most 12,287 bytes and a zero
inline constexpr size_t kReportFileNameSize = 324; // wide characters
inline constexpr size_t kIdentifierSize = 37;      // 36 characters and a zero
inline constexpr size_t kModuleNameSize = 780;     // UTF-8 module name: 779 bytes and a zero

// A write position and the end of a text buffer. `end` is the buffer's last byte, kept for the
// zero: appends stop silently there, also in the middle of a line, and always leave a zero at
// `position`.
struct TextCursor {
    char* position;
    char* end;
};

// A cursor over a whole buffer of `size` bytes (size at least 1).
TextCursor CursorOver(char* buffer, size_t size);

// `text` up to its zero; null appends nothing.
void AppendText(TextCursor& cursor, const char* text);
// Unsigned decimal, left-padded with zeros to `minDigits`.
void AppendDecimal(TextCursor& cursor, uint32_t value, int minDigits);
// The low `digits` hex digits of `value` (at most 16), lower case, always exactly that many.
void AppendHex(TextCursor& cursor, uint64_t value, int digits);
// key, "=", value, LF. A null key or value writes nothing for that piece; "=" and LF still stand.
void AppendKeyValue(TextCursor& cursor, const char* key, const char* value);

// A moment in UTC, as the system clock gives it.
struct ReportTime {
    uint16_t year, month, day, hour, minute, second, milliseconds;
};

// What lines 1 to 11 of a report say.
struct ReportHead {
    const char* app;
    bool onUiThread;
    uint32_t code;
    const char* detail;
    const char* stage;
    const char* session;
    const char* event;
    const char* osVersion;
    uint32_t processId;
    ReportTime time;
};

// Lines 1 to 11: app, thread, code, detail, version, stage, session, event, osv, pid, time.
void AppendReportHead(TextCursor& cursor, const ReportHead& head);
// A frame in a loaded module: name|offset (16 hex digits)|time stamp (8 hex digits).
void AppendModuleFrame(TextCursor& cursor, const char* moduleName, uint64_t offset,
                       uint32_t timeStamp);
// A frame whose module can't be told: ?|address (16 hex digits)|00000000.
void AppendUnknownFrame(TextCursor& cursor, uint64_t address);

// A random identifier in the form of a version 4 UUID: 36 lower-case characters and a zero, one
// draw of RandomU32() per hex digit.
void MakeIdentifier(char (&identifier)[kIdentifierSize]);

// "major.minor.build" into `text`, cut to fit.
void FormatOsVersion(char* text, size_t size, uint32_t major, uint32_t minor, uint32_t build);

// The report's path: crashDir, "\", the FILETIME as 16 hex digits, "-", the process id, ".crash",
// cut to fit `size` wide characters and always ended by a zero.
void FormatReportFileName(wchar_t* name, size_t size, const wchar_t* crashDir, uint64_t fileTime,
                          uint32_t processId);
