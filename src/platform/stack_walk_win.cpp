#include "platform/stack_walk_win.h"

#include "platform/fault_guard_win.h"

namespace {

struct Walk {
    CONTEXT context;
    uint64_t stackLimit;
    uint64_t stackBase;
    uint64_t* frames;
    int capacity;
    int count;
};

bool InsideStack(const Walk& walk, uint64_t sp) {
    return sp >= walk.stackLimit && sp <= walk.stackBase;
}

// One frame out: through the function's unwind data, or, for a leaf function that has none,
// through the return address at the top of the stack.
bool StepOut(Walk& walk) {
    CONTEXT& context = walk.context;
    DWORD64 imageBase = 0;
    PRUNTIME_FUNCTION entry = RtlLookupFunctionEntry(context.Rip, &imageBase, nullptr);
    if (entry) {
        PVOID handlerData = nullptr;
        DWORD64 establisherFrame = 0;
        RtlVirtualUnwind(UNW_FLAG_NHANDLER, imageBase, context.Rip, entry, &context, &handlerData,
                         &establisherFrame, nullptr);
    } else {
        const uint64_t sp = context.Rsp;
        if (sp < walk.stackLimit || sp + 8 > walk.stackBase) return false;
        context.Rip = *reinterpret_cast<const DWORD64*>(sp);
        context.Rsp = sp + 8;
    }
    return InsideStack(walk, context.Rsp);
}

void WalkFrames(void* argument) {
    Walk& walk = *static_cast<Walk*>(argument);
    while (walk.count < walk.capacity && walk.context.Rip != 0) {
        walk.frames[walk.count++] = walk.context.Rip;
        if (!StepOut(walk)) break;
    }
}

} // namespace

int WalkStack(const CONTEXT& start, uint64_t stackLimit, uint64_t stackBase, uint64_t* frames,
              int capacity) {
    Walk walk;
    walk.context = start;
    walk.stackLimit = stackLimit;
    walk.stackBase = stackBase;
    walk.frames = frames;
    walk.capacity = capacity;
    walk.count = 0;
    RunGuarded(WalkFrames, &walk);
    return walk.count;
}
