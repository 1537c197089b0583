#pragma once

// Lets the crash path read memory that may not be there: the crashed stack and the runtime's
// records of a thrown object. MinGW-w64 has no __try, so the guard is a vectored exception
// handler, installed once at start-up, with one recovery point: while a thread runs a guarded
// call, any exception on that thread sends it back to the recovery point, and the call counts as
// failed. Exceptions of other threads pass on untouched. Only one guarded call runs at a time,
// which the crash path guarantees (one crash is handled, first the crashing thread reads, then
// the reporter thread walks), so the recovery point is one static slot and no thread-local
// storage is needed (MinGW's thread_local allocates on first use).

// Installs the handler; false if the system refused. Not for the crash path: it allocates.
bool InstallFaultGuard();

// Runs body(argument); gives false if an exception on this thread ended it early. Without the
// handler the body still runs, unguarded.
bool RunGuarded(void (*body)(void*), void* argument);
