#include "platform/fault_guard_win.h"

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace {

// The thread inside a guarded call, 0 for none, and where it goes back to. __builtin_setjmp
// restores only the stack and frame pointers and jumps, without an unwind through the frames in
// between (the frames of the exception dispatch, which are simply left behind); the compiler
// saves every callee-saved register around it.
std::atomic<DWORD> guardedThread{0};
intptr_t recoveryPoint[5];

[[noreturn]] __attribute__((noinline)) void ResumeAtRecoveryPoint() {
    __builtin_longjmp(recoveryPoint, 1);
}

LONG CALLBACK FaultGuardHandler(EXCEPTION_POINTERS* pointers) {
    if (guardedThread.load() != GetCurrentThreadId()) return EXCEPTION_CONTINUE_SEARCH;
    guardedThread.store(0);
    // Continue on the faulting stack, just below where it was, aligned as after a call.
    CONTEXT* context = pointers->ContextRecord;
    context->Rsp = (context->Rsp & ~static_cast<DWORD64>(15)) - 8;
    context->Rip = reinterpret_cast<DWORD64>(&ResumeAtRecoveryPoint);
    return EXCEPTION_CONTINUE_EXECUTION;
}

bool installed = false;

} // namespace

bool InstallFaultGuard() {
    if (!installed) installed = AddVectoredExceptionHandler(1, FaultGuardHandler) != nullptr;
    return installed;
}

__attribute__((noinline)) bool RunGuarded(void (*body)(void*), void* argument) {
    if (__builtin_setjmp(recoveryPoint) != 0) return false;
    if (installed) guardedThread.store(GetCurrentThreadId());
    body(argument);
    guardedThread.store(0);
    return true;
}
