#include "diagnostics/log.h"

namespace {

constexpr uint32_t kRotationLimit = 0x100000;

void AppendNumber(std::wstring& line, uint32_t value, int minDigits) {
    const std::wstring digits = std::to_wstring(value);
    if (static_cast<int>(digits.size()) < minDigits) line.append(minDigits - digits.size(), L'0');
    line += digits;
}

} // namespace

std::wstring LogLine(const LogTime& time, uint32_t processId, const std::wstring& text) {
    std::wstring line;
    line.reserve(32 + text.size());
    AppendNumber(line, time.year, 4);
    line += L'-';
    AppendNumber(line, time.month, 2);
    line += L'-';
    AppendNumber(line, time.day, 2);
    line += L' ';
    AppendNumber(line, time.hour, 2);
    line += L':';
    AppendNumber(line, time.minute, 2);
    line += L':';
    AppendNumber(line, time.second, 2);
    line += L" [";
    AppendNumber(line, processId, 1);
    line += L"] ";
    line += text;
    line += L"\r\n";
    return line;
}

bool LogNeedsRotation(uint32_t sizeLow) { return sizeLow > kRotationLimit; }
