#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>

#include "diagnostics/crash_report.h"
#include "diagnostics/crash_reporter.h"

// Everything that the crash reporter knows, in fixed static storage: written by Start, then by
// the one capture that wins, then read and filled by the reporter thread. Nothing on the way
// from the crash to the file allocates.
struct CrashState {
    const char* appWord = "";
    std::atomic<const char*> stageWord{"start"};
    DWORD uiThreadId = 0;
    // 0 at first; the first capture swaps it to 1, and only that capture goes on.
    std::atomic<LONG> crashing{0};
    HANDLE wakeEvent = nullptr; // auto-reset: the reporter thread's signal to work
    HANDLE doneEvent = nullptr; // manual-reset: the report is written (or given up)
    wchar_t crashDir[MAX_PATH] = {};
    char sessionId[kIdentifierSize] = {};
    char eventId[kIdentifierSize] = {};
    char osVersion[32] = {};

    // Written by the capture before the reporter thread is woken.
    uint32_t code = 0;
    char detail[kDetailSize] = {};
    bool onUiThread = false;
    uint64_t stackLimit = 0;
    uint64_t stackBase = 0;
    int backtraceCount = 0;
    uint64_t backtrace[kMaxBacktrace] = {};
    CONTEXT context = {};

    // The reporter thread's own.
    int frameCount = 0;
    uint64_t frames[kMaxFrames] = {};
    char report[kReportBufferSize] = {};
    wchar_t fileName[kReportFileNameSize] = {};
    wchar_t modulePath[MAX_PATH] = {};
};

// The one instance of the process.
extern CrashState crashState;
