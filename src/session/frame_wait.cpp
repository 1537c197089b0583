#include "session/frame_wait.h"

FrameWait PlanFrameWait(uint32_t milliseconds, bool highResolutionTimer) {
    // Nothing to wait for: a time-out of 0 only looks at the queue.
    if (!highResolutionTimer || milliseconds == 0) return {false, 0, milliseconds};
    constexpr int64_t kTicksPerMs = 10000;
    return {true, -static_cast<int64_t>(milliseconds) * kTicksPerMs, milliseconds + kTimerGuardMs};
}
