// The stack walk's guard: a fault inside the walk ends it, and the process goes on. Walks of real
// stacks are checked on the reports of the crash helper.
#include "platform/stack_walk_win.h"

#include <gtest/gtest.h>

#include "platform/fault_guard_win.h"

namespace {

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
