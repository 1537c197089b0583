// The capture side of the crash reporter: Start, the unhandled exception filter, the runtime's
// hooks and the hand-over to the reporter thread. The report itself is crash_report_win.cpp.
#include "platform/crash_reporter_win.h"

#include <windows.h>

#include <csignal>
#include <cstdlib>
#include <exception>

#include "diagnostics/crash_report.h"
#include "diagnostics/crash_reporter.h"
#include "library/data_paths.h"
#include "platform/crash_state_win.h"
#include "platform/fault_guard_win.h"
#include "platform/log_file_win.h"

CrashState crashState;

namespace {

constexpr DWORD kThrowCode = 0xE06D7363;    // an object thrown by the Microsoft C++ runtime
constexpr DWORD kGccThrowCode = 0x20474343; // an object thrown by the GCC C++ runtime
constexpr DWORD kHandOverTimeout = 10000;

// The Microsoft runtime's records of a thrown type, on x64: offsets relative to the module that
// threw.
struct ThrowInfo {
    uint32_t attributes;
    int32_t unwind;
    int32_t forwardCompat;
    int32_t catchableTypes;
};
struct CatchableTypeArray {
    int32_t count;
    int32_t types[1];
};
struct CatchableType {
    uint32_t properties;
    int32_t type;
};
// A type descriptor: two pointers (vtable, spare), then the name and its zero.
constexpr size_t kTypeNameOffset = 2 * sizeof(void*);

void ReadThrownTypeName(void* argument) {
    const EXCEPTION_RECORD& record = *static_cast<const EXCEPTION_RECORD*>(argument);
    if (record.NumberParameters < 4 || record.ExceptionInformation[2] == 0) return;
    const auto* info = reinterpret_cast<const ThrowInfo*>(record.ExceptionInformation[2]);
    const auto base = static_cast<uintptr_t>(record.ExceptionInformation[3]);
    const auto* types = reinterpret_cast<const CatchableTypeArray*>(base + info->catchableTypes);
    if (types->count < 1) return;
    const auto* type = reinterpret_cast<const CatchableType*>(base + types->types[0]);
    const char* name = reinterpret_cast<const char*>(base + type->type + kTypeNameOffset);
    size_t i = 0;
    for (; i + 1 < kDetailSize && name[i]; ++i) crashState.detail[i] = name[i];
    crashState.detail[i] = '\0';
}

// This thread's information block, read from the gs segment as NtCurrentTeb does (whose inline
// form trips GCC's array-bounds warning).
const NT_TIB* ThreadInformationBlock() {
    const NT_TIB* tib;
    __asm__("movq %%gs:0x30, %0" : "=r"(tib));
    return tib;
}

// The crashing thread's last act for the report: its stack's bounds, which thread it is, then
// the reporter thread's turn, waited for at most 10 seconds.
void HandOver() {
    const NT_TIB* tib = ThreadInformationBlock();
    crashState.stackLimit = reinterpret_cast<uint64_t>(tib->StackLimit);
    crashState.stackBase = reinterpret_cast<uint64_t>(tib->StackBase);
    crashState.onUiThread = GetCurrentThreadId() == crashState.uiThreadId;
    SetEvent(crashState.wakeEvent);
    WaitForSingleObject(crashState.doneEvent, kHandOverTimeout);
}

LONG WINAPI CrashFilter(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    // A GCC-thrown object that nobody caught comes here first; going on lets the C++ runtime
    // call terminate, whose hook reports it from the throwing frame.
    if (record.ExceptionCode == kGccThrowCode &&
        !(record.ExceptionFlags & EXCEPTION_NONCONTINUABLE))
        return EXCEPTION_CONTINUE_EXECUTION;
    if (crashState.crashing.exchange(1) != 0) return EXCEPTION_CONTINUE_SEARCH;

    crashState.code = record.ExceptionCode;
    crashState.detail[0] = '\0';
    const bool accessFault = record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION ||
                             record.ExceptionCode == EXCEPTION_IN_PAGE_ERROR;
    if (accessFault && record.NumberParameters >= 2)
        FormatAccessDetail(crashState.detail, record.ExceptionInformation[0],
                           record.ExceptionInformation[1]);
    if (record.ExceptionCode == kThrowCode &&
        !RunGuarded(ReadThrownTypeName, const_cast<EXCEPTION_RECORD*>(&record)))
        crashState.detail[0] = '\0';
    crashState.context = *pointers->ContextRecord;
    // After a stack overflow there is no room for more: the reporter thread walks alone.
    if (record.ExceptionCode != EXCEPTION_STACK_OVERFLOW)
        crashState.backtraceCount = RtlCaptureStackBackTrace(
            0, kMaxBacktrace, reinterpret_cast<PVOID*>(crashState.backtrace), nullptr);
    HandOver();
    return EXCEPTION_CONTINUE_SEARCH;
}

// Every hook: the first crash is reported from here, and the process ends with exit code 3
// whether or not this thread won.
[[noreturn]] __attribute__((noinline)) void CaptureFromHook(uint32_t code) {
    if (crashState.crashing.exchange(1) == 0) {
        crashState.code = code;
        RtlCaptureContext(&crashState.context);
        HandOver();
    }
    TerminateProcess(GetCurrentProcess(), kHookExitCode);
    for (;;) Sleep(INFINITE);
}

void PureCallHook() { CaptureFromHook(kPureCallCode); }
void InvalidParameterHook(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, uintptr_t) {
    CaptureFromHook(kInvalidParameterCode);
}
void TerminateHook() { CaptureFromHook(kTerminateCode); }
void AbortHook(int) { CaptureFromHook(kAbortCode); }

DWORD WINAPI ReporterThread(void*) {
    WaitForSingleObject(crashState.wakeEvent, INFINITE);
    CrashReporter::WriteReport();
    SetEvent(crashState.doneEvent);
    return 0;
}

void ReadOsVersion() {
    using GetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
    auto get = reinterpret_cast<GetVersion>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (!get || get(&version) != 0)
        version.dwMajorVersion = version.dwMinorVersion = version.dwBuildNumber = 0;
    FormatOsVersion(crashState.osVersion, sizeof crashState.osVersion, version.dwMajorVersion,
                    version.dwMinorVersion, version.dwBuildNumber);
}

void InstallHooks() {
    InstallFaultGuard();
    SetUnhandledExceptionFilter(CrashFilter);
    _set_purecall_handler(PureCallHook);
    _set_invalid_parameter_handler(InvalidParameterHook);
    std::set_terminate(TerminateHook);
    std::signal(SIGABRT, AbortHook);
}

// Exceptions that pass through a kernel callback (a window procedure called by the system) and
// in timer callbacks would otherwise be swallowed; they should reach the filter.
void StopSwallowingCallbackExceptions() {
    HMODULE kernel32 = GetModuleHandleW(L"kernel32.dll");
    using GetPolicy = BOOL(WINAPI*)(DWORD*);
    using SetPolicy = BOOL(WINAPI*)(DWORD);
    auto get = reinterpret_cast<GetPolicy>(
        reinterpret_cast<void*>(GetProcAddress(kernel32, "GetProcessUserModeExceptionPolicy")));
    auto set = reinterpret_cast<SetPolicy>(
        reinterpret_cast<void*>(GetProcAddress(kernel32, "SetProcessUserModeExceptionPolicy")));
    DWORD flags = 0;
    if (get && set && get(&flags))
        set(flags & ~static_cast<DWORD>(1)); // PROCESS_CALLBACK_FILTER_ENABLED
    BOOL suppress = FALSE;
    SetUserObjectInformationW(GetCurrentProcess(), UOI_TIMERPROC_EXCEPTION_SUPPRESSION, &suppress,
                              sizeof suppress);
}

} // namespace

// A pure virtual call in code built by GCC goes to this runtime function rather than to the
// Microsoft runtime's purecall handler; defining it here gives it the same report.
extern "C" void __cxa_pure_virtual() { PureCallHook(); }

void ArmCrashReporter(const char* appWord, const std::wstring& dataDir) {
    crashState.appWord = appWord;
    crashState.uiThreadId = GetCurrentThreadId();
    const std::wstring crashDir = dataDir + L"\\Crashes";
    CreateDirectoryW(crashDir.c_str(), nullptr);
    lstrcpynW(crashState.crashDir, crashDir.c_str(), MAX_PATH);
    MakeIdentifier(crashState.sessionId);
    MakeIdentifier(crashState.eventId);
    ReadOsVersion();
    crashState.wakeEvent = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    crashState.doneEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE thread = CreateThread(nullptr, 0, ReporterThread, nullptr, 0, nullptr);
    if (!thread) {
        const DWORD error = GetLastError();
        AppendLogLine(dataDir, L"crash: no reporter thread, error " + std::to_wstring(error));
        return;
    }
    InstallHooks();
    StopSwallowingCallbackExceptions();
    CloseHandle(thread);
}

void CrashReporter::Start(const char* appWord) {
    // The first use of DataPaths: the folders are found, moved and made before anything is armed.
    ArmCrashReporter(appWord, DataPaths::Get().dataDir);
}

void CrashReporter::SetStage(const char* word) { crashState.stageWord.store(word); }
