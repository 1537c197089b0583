// The host build's WorkQueue::DefaultSystem, in a file of its own because the benchmark's build
// (tests/bench) lists this file beside host_seams.cpp. Host sessions get a queue without a
// thread, whose jobs wait until a test runs them.
#include "support/scripted_queue.h"

WorkQueue::System& WorkQueue::DefaultSystem() {
    static ScriptedQueueSystem system;
    return system;
}
