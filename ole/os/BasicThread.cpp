#include "ole/os/BasicThread.h"

#include "ole/os/OS.h"

BasicThread::BasicThread() : stopEvent_(OS()->getThreads().makeEvent(true, false, 0)) {}

BasicThread::~BasicThread() = default;

bool BasicThread::beginThread(char const* name, iThread::ePriority priority) {
    ThreadDescription description;
    description.entry = &BasicThread::run;
    description.argument = this;
    description.name = LightweightString<char>(name);
    description.exceptionHandler = &threadExceptionHandler;
    isRunning_.store(true, std::memory_order_release);
    thread_ = OS()->getThreads().makeThread(description);
    if (!thread_) {
        isRunning_.store(false, std::memory_order_release);
        return false;
    }
    thread_->setPriority(priority);
    return true;
}

/// The pointer to the thread stays, as others may be asking `isThisThread` at this moment.
void BasicThread::endThread() {
    isRunning_.store(false, std::memory_order_release);
    if (thread_) {
        stopEvent_->set();
        thread_->waitForEnd(iThread::noTimeLimit);
    }
}

int BasicThread::run(void* self) {
    static_cast<BasicThread*>(self)->threadFn();
    return 0;
}
