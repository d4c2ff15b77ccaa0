#include "host/memory/MemoryTaskLog.h"

void MemoryTaskLog::reportProgress(LightweightString<wchar_t> const& text, double fraction) {
    ScopedLock const scope(lock_);
    if (!text.empty()) {
        activity_ = text;
    }
    work_.report(fraction);
}

double MemoryTaskLog::calcAggregateProgress() const {
    ScopedLock const scope(lock_);
    return work_.progress();
}

void MemoryTaskLog::write(LightweightString<wchar_t> const& text, eOutputType type) {
    ScopedLock const scope(lock_);
    lines_.push_back({text, type});
}

void MemoryTaskLog::startSubTasks(std::uint32_t count) {
    ScopedLock const scope(lock_);
    work_.start(count);
}

void MemoryTaskLog::nextSubTask() {
    ScopedLock const scope(lock_);
    work_.next();
}

void MemoryTaskLog::endSubTasks() {
    ScopedLock const scope(lock_);
    work_.end();
}

std::vector<MemoryTaskLog::Line> MemoryTaskLog::lines() const {
    ScopedLock const scope(lock_);
    return lines_;
}

LightweightString<wchar_t> MemoryTaskLog::activity() const {
    ScopedLock const scope(lock_);
    return activity_;
}
