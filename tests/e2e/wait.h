#pragma once

#include <windows.h>

namespace e2e {

// Polls `done` every few milliseconds until it holds or `timeoutMs` has passed; returns its
// last answer. The saver runs in another process, so every check of its state is a poll.
template <typename Predicate>
bool WaitUntil(Predicate done, DWORD timeoutMs, DWORD pollMs = 5) {
    const ULONGLONG deadline = GetTickCount64() + timeoutMs;
    for (;;) {
        if (done()) return true;
        if (GetTickCount64() >= deadline) return done();
        Sleep(pollMs);
    }
}

} // namespace e2e
