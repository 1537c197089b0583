// The reporter thread's work: walk the crashed stack, name each frame's module and write the
// report in one go. Everything lives in the static state or on this thread's stack.
#include <windows.h>

#include "diagnostics/crash_report.h"
#include "diagnostics/crash_reporter.h"
#include "platform/crash_state_win.h"
#include "platform/stack_walk_win.h"

namespace {

// The module's own build time, from its image in memory.
uint32_t ModuleTimeStamp(HMODULE module) {
    const auto* base = reinterpret_cast<const BYTE*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    return nt->FileHeader.TimeDateStamp;
}

void AppendFrame(TextCursor& cursor, uint64_t address) {
    HMODULE module = nullptr;
    const DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(address), &module) ||
        GetModuleFileNameW(module, crashState.modulePath, MAX_PATH) == 0) {
        AppendUnknownFrame(cursor, address);
        return;
    }
    const wchar_t* name = crashState.modulePath;
    for (const wchar_t* c = crashState.modulePath; *c; ++c)
        if (*c == L'\\') name = c + 1;
    char utf8[kModuleNameSize] = {};
    WideCharToMultiByte(CP_UTF8, 0, name, -1, utf8, kModuleNameSize - 1, nullptr, nullptr);
    AppendModuleFrame(cursor, utf8, address - reinterpret_cast<uint64_t>(module),
                      ModuleTimeStamp(module));
}

} // namespace

void CrashReporter::WriteReport() {
    CrashState& crash = crashState;
    crash.frameCount =
        WalkStack(crash.context, crash.stackLimit, crash.stackBase, crash.frames, kMaxFrames);
    if (crash.frameCount < 3)
        crash.frameCount = FallBackToBacktrace(crash.backtrace, crash.backtraceCount,
                                               crash.context.Rip, crash.frames, crash.frameCount);

    SYSTEMTIME now;
    GetSystemTime(&now);
    FILETIME fileTime;
    SystemTimeToFileTime(&now, &fileTime);

    TextCursor cursor = CursorOver(crash.report, kReportBufferSize);
    const ReportTime time{now.wYear,   now.wMonth,  now.wDay,         now.wHour,
                          now.wMinute, now.wSecond, now.wMilliseconds};
    const ReportHead head{crash.appWord, crash.onUiThread,       crash.code,
                          crash.detail,  crash.stageWord.load(), crash.sessionId,
                          crash.eventId, crash.osVersion,        GetCurrentProcessId(),
                          time};
    AppendReportHead(cursor, head);
    for (int i = 0; i < crash.frameCount; ++i) AppendFrame(cursor, crash.frames[i]);

    const uint64_t stamp =
        (static_cast<uint64_t>(fileTime.dwHighDateTime) << 32) | fileTime.dwLowDateTime;
    FormatReportFileName(crash.fileName, kReportFileNameSize, crash.crashDir, stamp,
                         GetCurrentProcessId());
    HANDLE file = CreateFileW(crash.fileName, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, crash.report, static_cast<DWORD>(cursor.position - crash.report), &written,
              nullptr);
    CloseHandle(file);
}
