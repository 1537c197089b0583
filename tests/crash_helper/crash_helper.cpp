// lumivane_crash_helper.exe <data folder> <how>: arms the crash reporter as the saver does, with
// the given data folder, names the stage "preview", and crashes as <how> says (see Crash below):
// on the first thread, on a worker (Worker...), or on two workers at once (TwoThreads).
// Exit code 2 means the argument was not understood; the helper never ends normally otherwise.
#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

#include "diagnostics/crash_reporter.h"
#include "platform/crash_reporter_win.h"

// A pure virtual call: the base's constructor calls through the object while its vtable is still
// the base's. The classes are outside the anonymous namespace and noipa keeps the call opaque, so
// that the compiler can't see the dynamic type and resolve the call itself.
struct PureBase;
__attribute__((noipa)) void CallPure(PureBase* object);
struct PureBase {
    PureBase() { CallPure(this); }
    virtual ~PureBase() = default;
    virtual void Pure() = 0;
};
struct PureDerived : PureBase {
    void Pure() override {}
};
__attribute__((noipa)) void CallPure(PureBase* object) { object->Pure(); }

__attribute__((noipa)) void MakeDerived() { PureDerived derived; }

namespace {

__attribute__((noinline)) void WriteTo0x10() {
    *reinterpret_cast<volatile int*>(static_cast<uintptr_t>(0x10)) = 1;
}

// Wine 8 can't deliver a real stack overflow to any handler (the exception's own handling
// overflows the last page, and Wine ends the thread without a word), so the overflow's code is
// raised instead: the reporter takes the same path, with no backtrace and the walk left to its
// own thread.
__attribute__((noinline)) void RaiseStackOverflow() {
    RaiseException(EXCEPTION_STACK_OVERFLOW, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}

// The Microsoft runtime's records of a thrown type, with offsets from this module's base.
struct TypeDescriptor {
    const void* vtable;
    void* spare;
    char name[24];
};
struct CatchableType {
    uint32_t properties;
    int32_t type;
    int32_t rest[5];
};
struct CatchableTypeArray {
    int32_t count;
    int32_t types[1];
};
struct ThrowInfo {
    uint32_t attributes;
    int32_t unwind, forwardCompat, catchableTypes;
};
TypeDescriptor thrownType = {nullptr, nullptr, ".?AVHelperError@@"};
CatchableType catchable;
CatchableTypeArray catchables;
ThrowInfo throwInfo;

// With `readable` false the records point at address 0x10, and reading them faults.
__attribute__((noinline)) void RaiseMsvcThrow(bool readable) {
    const auto base = reinterpret_cast<uintptr_t>(GetModuleHandleW(nullptr));
    auto offset = [base](const void* p) {
        return static_cast<int32_t>(reinterpret_cast<uintptr_t>(p) - base);
    };
    catchable.type = offset(&thrownType);
    catchables = {1, {offset(&catchable)}};
    throwInfo.catchableTypes = offset(&catchables);
    const ULONG_PTR info = readable ? reinterpret_cast<ULONG_PTR>(&throwInfo) : 0x10;
    const ULONG_PTR parameters[4] = {0x19930520, 0, info, base};
    RaiseException(0xE06D7363, EXCEPTION_NONCONTINUABLE, 4, parameters);
}

__attribute__((noinline)) void Throw() { throw std::exception(); }

HANDLE startTogether;

DWORD WINAPI CrashingThread(void* crash) {
    if (startTogether) WaitForSingleObject(startTogether, INFINITE);
    reinterpret_cast<void (*)()>(crash)();
    return 0;
}

// Threads of the system's own making, without the runtime's frames around them.
void CrashOnThreads(int count, void (*crash)()) {
    startTogether = count > 1 ? CreateEventW(nullptr, TRUE, FALSE, nullptr) : nullptr;
    for (int i = 0; i < count; ++i)
        CreateThread(nullptr, 0, CrashingThread, reinterpret_cast<void*>(crash), 0, nullptr);
    if (startTogether) {
        Sleep(200);
        SetEvent(startTogether);
    }
    Sleep(INFINITE);
}

__attribute__((noinline)) void Crash(const std::wstring& how) {
    if (how == L"WriteTo0x10") WriteTo0x10();
    if (how == L"StackOverflowRaised") RaiseStackOverflow();
    if (how == L"Abort") std::abort();
    if (how == L"Terminate") std::terminate();
    if (how == L"PureCall") MakeDerived();
    if (how == L"MsvcThrow") RaiseMsvcThrow(true);
    if (how == L"MsvcThrowUnreadable") RaiseMsvcThrow(false);
    if (how == L"Worker") CrashOnThreads(1, WriteTo0x10);
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
