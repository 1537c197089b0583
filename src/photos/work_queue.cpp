#include "photos/work_queue.h"

#include <utility>

WorkQueue::~WorkQueue() { Stop(); }

void WorkQueue::Start(WindowHandle targetWindow, uint32_t privateMessage) {
    window = targetWindow;
    message = privateMessage;
    started = true;
}

void WorkQueue::Post(Item job) { Item dropped = std::move(job); }

void WorkQueue::PostResult(Item completion) { Item dropped = std::move(completion); }

void WorkQueue::Drain() {}

void WorkQueue::Stop() { started = false; }
