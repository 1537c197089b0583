#pragma once

#include <cstdint>

// How the window thread sleeps between two frames for a whole number of milliseconds. The time-out
// of a message wait is counted in clock ticks (15.6 ms unless some program asks for finer ones),
// so a wait of 8 ms lasts up to two ticks. A high-resolution waitable timer, where the system has
// one, ends the wait at its due time instead; the wait's own time-out then only guards against a
// timer that never fires.
struct FrameWait {
    bool onTimer = false;   // the timer is set and is the wait's one handle
    int64_t timerDue = 0;   // its due time: negative, relative, in 100-nanosecond units
    uint32_t timeoutMs = 0; // the time-out of the wait itself
};

// The guard: a time-out one default clock tick after the timer's due time, so that the timer,
// not the rounded time-out, ends the wait.
inline constexpr uint32_t kTimerGuardMs = 16;

FrameWait PlanFrameWait(uint32_t milliseconds, bool highResolutionTimer);
