/// Handing over and writing.
///
/// Neither side wakes the other for each thing, or both would do nothing but take turns: the thread is woken
/// when there is enough to do, else it looks by itself now and then, and who waits for room is woken when half
/// of it is free.
#include "toolkit/plugins/WriteSpool.h"

#include <chrono>
#include <utility>

namespace {

/// Little things wait no longer for the thread.
constexpr std::chrono::milliseconds longestRest{50};

}  // namespace

WriteSpool::WriteSpool(std::uint64_t mostBytesWaiting, std::uint64_t enoughBytes)
    : mostBytesWaiting_(mostBytesWaiting), enoughBytes_(enoughBytes), thread_([this] { work(); }) {}

WriteSpool::~WriteSpool() {
    {
        std::lock_guard const scope(lock_);
        isEnding_ = true;
    }
    hasWork_.notify_one();
    thread_.join();
}

OxResult WriteSpool::put(std::uint64_t byteCount, Write write, Told told) {
    std::unique_lock scope(lock_);
    if (result_ != oxSuccess) {
        return result_;
    }
    entries_.push_back({byteCount, std::move(write), std::move(told)});
    bytesWaiting_ += byteCount;
    if (isResting_ && bytesWaiting_ >= enoughBytes_) {
        hasWork_.notify_one();
    }
    if (bytesWaiting_ > mostBytesWaiting_) {
        hasRoom_.wait(scope, [this] { return bytesWaiting_ <= mostBytesWaiting_ / 2; });
    }
    return oxSuccess;
}

std::uint64_t WriteSpool::backlog() const {
    std::lock_guard const scope(lock_);
    return entries_.size();
}

OxResult WriteSpool::waitUntilWritten() {
    std::unique_lock scope(lock_);
    isWaitedFor_ = true;
    hasWork_.notify_one();
    hasRoom_.wait(scope, [this] { return entries_.empty(); });
    isWaitedFor_ = false;
    return result_;
}

void WriteSpool::work() {
    std::unique_lock scope(lock_);
    for (;;) {
        if (entries_.empty()) {
            rest(scope);
        }
        if (entries_.empty()) {
            if (isEnding_) {
                return;
            }
            continue;
        }
        Entry& entry = entries_.front();
        OxResult const before = result_;
        scope.unlock();
        OxResult const result = finish(entry, before);
        scope.lock();
        if (result_ == oxSuccess) {
            result_ = result;
        }
        bool const wasHalfFull = bytesWaiting_ > mostBytesWaiting_ / 2;
        bytesWaiting_ -= entry.byteCount;
        entries_.pop_front();
        bool const isHalfFull = bytesWaiting_ > mostBytesWaiting_ / 2;
        if (wasHalfFull != isHalfFull || entries_.empty()) {
            hasRoom_.notify_all();
        }
    }
}

void WriteSpool::rest(std::unique_lock<std::mutex>& scope) {
    isResting_ = true;
    hasWork_.wait_for(scope, longestRest, [this] {
        bool const isMuch = bytesWaiting_ >= enoughBytes_ || isWaitedFor_;
        return isEnding_ || (isMuch && !entries_.empty());
    });
    isResting_ = false;
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
