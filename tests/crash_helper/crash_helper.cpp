// lumivane_crash_helper.exe <data folder> <how>: arms the crash reporter as the saver does, with
// the given data folder, names the stage "preview", and crashes as <how> says (see Crash below):
// on the first thread, on a worker (WorkerThrow), or on two workers at once (TwoThreads).
// Exit code 2 means the argument was not understood; the helper never ends normally otherwise.
#include <windows.h>

#include <cstdlib>
#include <exception>
#include <string>

#include "diagnostics/crash_reporter.h"
#include "platform/crash_reporter_win.h"

// Where a call through an abstract class's empty vtable slot goes in code built by GCC: calling
// it resolves the same symbol that such a slot holds.
extern "C" void __cxa_pure_virtual();

namespace {

__attribute__((noinline)) void WriteTo0x10() {
    *reinterpret_cast<volatile int*>(static_cast<uintptr_t>(0x10)) = 1;
}

// The Microsoft runtime's records of a thrown type, linked by offsets from this module's base:
// the throw information's fourth field leads to an array of catchable types (a count, then each
// one's offset), a catchable type's second field to its type descriptor, whose name follows two
// pointers.
struct {
    const void* vtable;
    void* spare;
    char name[24];
} thrownType = {nullptr, nullptr, ".?AVHelperError@@"};
int32_t catchable[2], catchables[2], throwInfo[4];

// With `readable` false the records point at address 0x10, and reading them faults.
__attribute__((noinline)) void RaiseMsvcThrow(bool readable) {
    const auto base = reinterpret_cast<uintptr_t>(GetModuleHandleW(nullptr));
    auto offset = [base](const void* p) {
        return static_cast<int32_t>(reinterpret_cast<uintptr_t>(p) - base);
    };
    catchable[1] = offset(&thrownType);
    catchables[0] = 1;
    catchables[1] = offset(catchable);
    throwInfo[3] = offset(catchables);
    const ULONG_PTR info = readable ? reinterpret_cast<ULONG_PTR>(throwInfo) : 0x10;
    const ULONG_PTR parameters[4] = {0x19930520, 0, info, base};
    RaiseException(0xE06D7363, EXCEPTION_NONCONTINUABLE, 4, parameters);
}

__attribute__((noinline)) void Throw() { throw std::exception(); }

HANDLE startTogether;

DWORD WINAPI CrashingThread(void* crash) {
    WaitForSingleObject(startTogether, INFINITE);
    reinterpret_cast<void (*)()>(crash)();
    return 0;
}

// Threads of the system's own making, without the runtime's frames around them.
void CrashOnThreads(int count, void (*crash)()) {
    startTogether = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    for (int i = 0; i < count; ++i)
        CreateThread(nullptr, 0, CrashingThread, reinterpret_cast<void*>(crash), 0, nullptr);
    Sleep(200);
    SetEvent(startTogether);
    Sleep(INFINITE);
}

__attribute__((noinline)) void Crash(const std::wstring& how) {
    if (how == L"WriteTo0x10") WriteTo0x10();
    // Wine 8 can't deliver a real stack overflow to any handler, so its code is raised instead:
    // the reporter takes the same path, with no backtrace and the walk left to its own thread.
    if (how == L"StackOverflowRaised")
        RaiseException(EXCEPTION_STACK_OVERFLOW, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    if (how == L"Abort") std::abort();
    if (how == L"PureCall") __cxa_pure_virtual();
    if (how == L"MsvcThrow") RaiseMsvcThrow(true);
    if (how == L"MsvcThrowUnreadable") RaiseMsvcThrow(false);
    if (how == L"WorkerThrow") CrashOnThreads(1, Throw); // uncaught, so it ends in terminate
    if (how == L"TwoThreads") CrashOnThreads(2, WriteTo0x10);
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 3) return 2;
    ArmCrashReporter("saver-win", argv[1]);
    CrashReporter::SetStage("preview");
    Crash(argv[2]);
    return 2;
}
