#pragma once

#include <cstdint>
#include <string>

// The program's text log: log.txt in the data folder, one time-stamped line per event, UTF-8
// without a byte order mark, with one older generation in log.old.txt. Nothing is kept open
// between lines.
struct Log {
    // Appends one line; `text` has no line ending. Any thread may call it; nothing is reported.
    static void Write(const std::wstring& text);
};

// A moment of local time, as the system clock gives it.
struct LogTime {
    uint16_t year, month, day, hour, minute, second;
};

// The log's file names inside the data folder.
inline constexpr wchar_t kLogFileName[] = L"log.txt";
inline constexpr wchar_t kOldLogFileName[] = L"log.old.txt";

// The whole line: "YYYY-MM-DD hh:mm:ss [pid] ", the text, CR LF.
std::wstring LogLine(const LogTime& time, uint32_t processId, const std::wstring& text);

// Whether a log whose size has these low 32 bits is moved to the old generation before the next
// line: only above 1,048,576 bytes.
bool LogNeedsRotation(uint32_t sizeLow);
