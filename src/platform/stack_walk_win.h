#pragma once

#include <windows.h>

#include <cstdint>

// Walks a stack from `start` with the unwind data of the loaded modules, innermost frame first,
// into at most `capacity` addresses of `frames`; gives how many it found. The walk works on a
// copy of the context, never leaves [stackLimit, stackBase], and runs under the fault guard: a
// fault inside it ends it with the frames found so far.
int WalkStack(const CONTEXT& start, uint64_t stackLimit, uint64_t stackBase, uint64_t* frames,
              int capacity);
