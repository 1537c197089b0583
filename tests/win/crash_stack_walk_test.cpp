// The stack walk on a live stack, and its guard: a fault inside the walk ends it, and the process
// goes on.
#include "platform/stack_walk_win.h"

#include <gtest/gtest.h>

#include "platform/fault_guard_win.h"

namespace {

const NT_TIB* Tib() {
    const NT_TIB* tib;
    __asm__("movq %%gs:0x30, %0" : "=r"(tib));
    return tib;
}

__attribute__((noinline)) int WalkFromHere(uint64_t* frames) {
    CONTEXT context;
    RtlCaptureContext(&context);
    return WalkStack(context, reinterpret_cast<uint64_t>(Tib()->StackLimit),
                     reinterpret_cast<uint64_t>(Tib()->StackBase), frames, 48);
}

TEST(CrashStackWalk, LiveStackIsWalkedThroughThisModule) {
    uint64_t frames[48] = {};
    const int count = WalkFromHere(frames);
    ASSERT_GE(count, 3);
    HMODULE module = nullptr;
    ASSERT_TRUE(GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                       GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                   reinterpret_cast<LPCWSTR>(frames[1]), &module));
    EXPECT_EQ(module, GetModuleHandleW(nullptr));
}

TEST(CrashStackWalk, FaultInsideTheWalkEndsIt) {
    ASSERT_TRUE(InstallFaultGuard());
    // A "stack" of reserved, unreadable pages, and a pc without unwind data: the leaf rule reads
    // the return address there and faults.
    const size_t size = 0x10000;
    void* reserved = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
    ASSERT_NE(reserved, nullptr);
    const auto low = reinterpret_cast<uint64_t>(reserved);
    CONTEXT context = {};
    context.Rip = 0x1000;
    context.Rsp = low + 0x100;
    for (int round = 0; round < 2; ++round) { // the guard is ready again after a fault
        uint64_t frames[48] = {};
        EXPECT_EQ(WalkStack(context, low, low + size, frames, 48), 1);
        EXPECT_EQ(frames[0], 0x1000u);
    }
    VirtualFree(reserved, 0, MEM_RELEASE);
}

} // namespace
