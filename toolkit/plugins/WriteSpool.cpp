#include "toolkit/plugins/WriteSpool.h"

#include <utility>

WriteSpool::WriteSpool(std::uint64_t mostBytesWaiting)
    : mostBytesWaiting_(mostBytesWaiting), thread_([this] { work(); }) {}

WriteSpool::~WriteSpool() {
    {
        std::lock_guard const scope(lock_);
        isEnding_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

OxResult WriteSpool::put(std::uint64_t byteCount, Write write, Told told) {
    std::unique_lock scope(lock_);
    if (result_ != oxSuccess) {
        return result_;
    }
    entries_.push_back({byteCount, std::move(write), std::move(told)});
    bytesWaiting_ += byteCount;
    changed_.notify_all();
    changed_.wait(scope, [this] { return bytesWaiting_ <= mostBytesWaiting_; });
    return oxSuccess;
}

std::uint64_t WriteSpool::backlog() const {
    std::lock_guard const scope(lock_);
    return entries_.size();
}

OxResult WriteSpool::waitUntilWritten() {
    std::unique_lock scope(lock_);
    changed_.wait(scope, [this] { return entries_.empty(); });
    return result_;
}

void WriteSpool::work() {
    std::unique_lock scope(lock_);
    for (;;) {
        changed_.wait(scope, [this] { return isEnding_ || !entries_.empty(); });
        if (entries_.empty()) {
            return;
        }
        Entry& entry = entries_.front();
        OxResult const before = result_;
        scope.unlock();
        OxResult const result = finish(entry, before);
        scope.lock();
        if (result_ == oxSuccess) {
            result_ = result;
        }
        bytesWaiting_ -= entry.byteCount;
        entries_.pop_front();
        changed_.notify_all();
    }
}

/// What the entry held is let go of, and the receiver told, before it counts as gone.
OxResult WriteSpool::finish(Entry& entry, OxResult before) {
    OxResult const result = before == oxSuccess ? entry.write() : before;
    entry.write = nullptr;
    if (entry.told) {
        entry.told(result == oxSuccess);
    }
    return result;
}
