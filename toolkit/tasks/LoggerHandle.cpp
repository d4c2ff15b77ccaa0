#include "toolkit/tasks/LoggerHandle.h"

LoggerHandle& LoggerHandle::operator=(LoggerHandle const& other) {
    log_ = other.log_;
    work_ = SubTasks::partOf(other.work_);
    return *this;
}

void LoggerHandle::reportProgress(LightweightString<wchar_t> const& text, double fraction) {
    work_.report(fraction);
    tell(text);
}

void LoggerHandle::write(LightweightString<wchar_t> const& text, eOutputType type) {
    if (log_) {
        log_->write(text, type);
    }
}

void LoggerHandle::startSubTasks(std::uint32_t count) {
    work_.start(count);
}

void LoggerHandle::startSubTasks(std::vector<std::uint64_t> const& byteWeights) {
    work_.start(byteWeights);
}

void LoggerHandle::nextSubTask() {
    work_.next();
    tell({});
}

void LoggerHandle::endSubTasks() {
    work_.end();
    tell({});
}

void LoggerHandle::tell(LightweightString<wchar_t> const& text) {
    if (log_) {
        log_->reportProgress(text, work_.progress());
    }
}
