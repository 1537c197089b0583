#include "diagnostics/crash_report.h"

#include "library/random.h"

namespace {

const char kHexDigits[] = "0123456789abcdef";

void AppendChar(TextCursor& cursor, char c) {
    if (cursor.position < cursor.end) *cursor.position++ = c;
    *cursor.position = '\0';
}

} // namespace

TextCursor CursorOver(char* buffer, size_t size) {
    TextCursor cursor{buffer, buffer + size - 1};
    *cursor.position = '\0';
    return cursor;
}

void AppendText(TextCursor& cursor, const char* text) {
    *cursor.position = '\0';
    if (!text) return;
    for (; *text; ++text) AppendChar(cursor, *text);
}

void AppendDecimal(TextCursor& cursor, uint32_t value, int minDigits) {
    char digits[10];
    int count = 0;
    do {
        digits[count++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    for (int i = count; i < minDigits; ++i) AppendChar(cursor, '0');
    while (count > 0) AppendChar(cursor, digits[--count]);
}

void AppendHex(TextCursor& cursor, uint64_t value, int digits) {
    *cursor.position = '\0';
    for (int i = digits - 1; i >= 0; --i) AppendChar(cursor, kHexDigits[(value >> (4 * i)) & 15]);
}

void AppendKeyValue(TextCursor& cursor, const char* key, const char* value) {
    AppendText(cursor, key);
    AppendChar(cursor, '=');
    AppendText(cursor, value);
    AppendChar(cursor, '\n');
}

void AppendReportHead(TextCursor& cursor, const ReportHead& head) {
    AppendKeyValue(cursor, "app", head.app);
    AppendKeyValue(cursor, "thread", head.onUiThread ? "ui" : "worker");
    AppendText(cursor, "code=");
    AppendHex(cursor, head.code, 8);
    AppendChar(cursor, '\n');
    AppendKeyValue(cursor, "detail", head.detail);
    AppendKeyValue(cursor, "version", kReportVersion);
    AppendKeyValue(cursor, "stage", head.stage);
    AppendKeyValue(cursor, "session", head.session);
    AppendKeyValue(cursor, "event", head.event);
    AppendKeyValue(cursor, "osv", head.osVersion);
    AppendText(cursor, "pid=");
    AppendDecimal(cursor, head.processId, 1);
    AppendText(cursor, "\ntime=");
    const ReportTime& t = head.time;
    AppendDecimal(cursor, t.year, 4);
    AppendChar(cursor, '-');
    AppendDecimal(cursor, t.month, 2);
    AppendChar(cursor, '-');
    AppendDecimal(cursor, t.day, 2);
    AppendChar(cursor, 'T');
    AppendDecimal(cursor, t.hour, 2);
    AppendChar(cursor, ':');
    AppendDecimal(cursor, t.minute, 2);
    AppendChar(cursor, ':');
    AppendDecimal(cursor, t.second, 2);
    AppendChar(cursor, '.');
    AppendDecimal(cursor, t.milliseconds, 3);
    AppendText(cursor, "Z\n");
}

void AppendModuleFrame(TextCursor& cursor, const char* moduleName, uint64_t offset,
                       uint32_t timeStamp) {
    AppendText(cursor, "frame=");
    AppendText(cursor, moduleName);
    AppendChar(cursor, '|');
    AppendHex(cursor, offset, 16);
    AppendChar(cursor, '|');
    AppendHex(cursor, timeStamp, 8);
    AppendChar(cursor, '\n');
}

void AppendUnknownFrame(TextCursor& cursor, uint64_t address) {
    AppendText(cursor, "frame=?|");
    AppendHex(cursor, address, 16);
    AppendText(cursor, "|00000000\n");
}

void MakeIdentifier(char (&identifier)[kIdentifierSize]) {
    TextCursor cursor = CursorOver(identifier, kIdentifierSize);
    for (int digit = 0; digit < 32; ++digit) {
        if (digit == 8 || digit == 12 || digit == 16 || digit == 20) AppendChar(cursor, '-');
        const uint32_t random = RandomU32();
        if (digit == 12) {
            AppendChar(cursor, '4');
        } else if (digit == 16) {
            AppendChar(cursor, kHexDigits[(random & 3) | 8]);
        } else {
            AppendChar(cursor, kHexDigits[random & 15]);
        }
    }
}

void FormatOsVersion(char* text, size_t size, uint32_t major, uint32_t minor, uint32_t build) {
    TextCursor cursor = CursorOver(text, size);
    AppendDecimal(cursor, major, 1);
    AppendChar(cursor, '.');
    AppendDecimal(cursor, minor, 1);
    AppendChar(cursor, '.');
    AppendDecimal(cursor, build, 1);
}

void FormatReportFileName(wchar_t* name, size_t size, const wchar_t* crashDir, uint64_t fileTime,
                          uint32_t processId) {
    char tail[48];
    TextCursor cursor = CursorOver(tail, sizeof tail);
    AppendChar(cursor, '\\');
    AppendHex(cursor, fileTime, 16);
    AppendChar(cursor, '-');
    AppendDecimal(cursor, processId, 1);
    AppendText(cursor, ".crash");

    size_t length = 0;
    for (; crashDir[0] && length + 1 < size; ++crashDir) name[length++] = *crashDir;
    for (const char* c = tail; *c && length + 1 < size; ++c)
        name[length++] = static_cast<wchar_t>(*c);
    name[length] = L'\0';
}
