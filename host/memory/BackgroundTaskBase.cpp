#include "toolkit/tasks/BackgroundTaskBase.h"

#include <exception>
#include <string>

#include "host/memory/MemoryTaskLog.h"
#include "toolkit/services/Log.h"

BackgroundTaskBase::BackgroundTaskBase(eImportance importance, eLifetime lifetime)
    : log_(Ox::makePtr<MemoryTaskLog>()), importance_(importance), lifetime_(lifetime) {}

void BackgroundTaskBase::execute() {
    setStatus(running);
    int result = runFailed;
    try {
        result = run();
    } catch (std::exception const& exception) {
        std::string const text = std::string("the task was broken off: ") + exception.what();
        log_->write(fromUTF8(text.c_str()), LoggerBase::errorLine);
        LogBoth("%s\n", text.c_str());
    }
    {
        std::lock_guard const scope(lock_);
        result_ = result;
    }
    setStatus(ended);
    setCompletionEvent();
    notify({Event::hasEnded, getStatus()});
}

void BackgroundTaskBase::waitForCompletion() const {
    std::unique_lock scope(lock_);
    completed_.wait(scope, [this] { return isComplete_; });
}

void BackgroundTaskBase::setCompletionEvent() {
    std::lock_guard const scope(lock_);
    isComplete_ = true;
    completed_.notify_all();
}

float BackgroundTaskBase::getProgress() const {
    return static_cast<float>(log_->calcAggregateProgress());
}

iBackgroundTaskQueue* BackgroundTaskBase::getQueue() const {
    std::lock_guard const scope(lock_);
    return queue_;
}

void BackgroundTaskBase::setQueue(iBackgroundTaskQueue* queue) {
    std::lock_guard const scope(lock_);
    queue_ = queue;
}

iBackgroundTask::eStatus BackgroundTaskBase::getStatus() const {
    std::lock_guard const scope(lock_);
    return status_;
}

void BackgroundTaskBase::setStatus(eStatus status) {
    {
        std::lock_guard const scope(lock_);
        if (status_ == status || status_ == stopAsked) {
            return;
        }
        status_ = status;
    }
    notify({Event::statusChanged, status});
}

int BackgroundTaskBase::getResult() const {
    std::lock_guard const scope(lock_);
    return result_;
}
