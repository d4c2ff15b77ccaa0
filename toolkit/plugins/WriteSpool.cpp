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

WriteSpool::WriteSpool(std::uint64_t mostBytesWaiting, std::uint64_t enoughBytes, Write settle)
    : mostBytesWaiting_(mostBytesWaiting),
      enoughBytes_(enoughBytes),
      settle_(std::move(settle)),
      thread_([this] { work(); }) {}

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
    return entries_.size() + runCount_;
}

OxResult WriteSpool::waitUntilWritten() {
    std::unique_lock scope(lock_);
    isWaitedFor_ = true;
    hasWork_.notify_one();
    hasRoom_.wait(scope, [this] { return entries_.empty() && runCount_ == 0; });
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
        std::uint64_t const byteCount = takeRun();
        OxResult const before = result_;
        scope.unlock();
        OxResult const result = writeRun(before);
        scope.lock();
        result_ = result;
        bool const wasHalfFull = bytesWaiting_ > mostBytesWaiting_ / 2;
        bytesWaiting_ -= byteCount;
        runCount_ = 0;
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

/// Under the lock: how many bytes the run holds.
std::uint64_t WriteSpool::takeRun() {
    std::uint64_t byteCount = 0;
    do {
        byteCount += entries_.front().byteCount;
        run_.push_back(std::move(entries_.front()));
        entries_.pop_front();
    } while (!entries_.empty() && byteCount < enoughBytes_);
    runCount_ = run_.size();
    return byteCount;
}

/// What the run held is let go of, and the receivers told, before it counts as gone.
OxResult WriteSpool::writeRun(OxResult before) {
    OxResult result = before;
    std::size_t written = 0;
    while (written < run_.size() && result == oxSuccess) {
        result = run_[written].write();
        written += result == oxSuccess ? 1 : 0;
    }
    if (OxResult const settled = settle_ && before == oxSuccess ? settle_() : oxSuccess;
        settled != oxSuccess && result == oxSuccess) {
        result = settled;
        written = 0;
    }
    for (std::size_t i = 0; i < run_.size(); ++i) {
        run_[i].write = nullptr;
        if (run_[i].told) {
            run_[i].told(i < written);
        }
    }
    run_.clear();
    return result;
}
