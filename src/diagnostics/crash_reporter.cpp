// The reporter's decisions that need no platform: the words of an access violation, and the
// fall back from a short walk to the crashing thread's own backtrace.
#include "diagnostics/crash_reporter.h"

#include "diagnostics/crash_report.h"

void FormatAccessDetail(char (&detail)[kDetailSize], uint64_t operation, uint64_t address) {
    TextCursor cursor = CursorOver(detail, kDetailSize);
    AppendText(cursor, operation == 0   ? "reading 0x"
                       : operation == 1 ? "writing 0x"
                                        : "executing 0x");
    AppendHex(cursor, address, 16);
}

int FallBackToBacktrace(const uint64_t* backtrace, int backtraceCount, uint64_t pc,
                        uint64_t* frames, int frameCount) {
    int start = 0;
    while (start < backtraceCount && backtrace[start] != pc) ++start;
    if (start == backtraceCount) return frameCount;
    int copied = 0;
    for (; start + copied < backtraceCount && copied < kMaxFrames; ++copied)
        frames[copied] = backtrace[start + copied];
    return copied > frameCount ? copied : frameCount;
}
