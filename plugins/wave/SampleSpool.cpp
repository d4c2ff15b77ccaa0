#include "plugins/wave/SampleSpool.h"

#include <utility>

namespace playfile_wave {

SampleSpool::SampleSpool(std::uint64_t mostBytesWaiting, Write write)
    : mostBytesWaiting_(mostBytesWaiting), write_(std::move(write)), thread_([this] { work(); }) {}

SampleSpool::~SampleSpool() {
    {
        std::lock_guard const scope(lock_);
        isEnding_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

OxResult SampleSpool::put(Ox::Ptr<iMemHolder> const& buffer, Told told) {
    std::unique_lock scope(lock_);
    if (result_ != oxSuccess) {
        return result_;
    }
    entries_.push_back({buffer, std::move(told)});
    bytesWaiting_ += buffer->getUsed();
    changed_.notify_all();
    changed_.wait(scope, [this] { return bytesWaiting_ <= mostBytesWaiting_; });
    return oxSuccess;
}

std::uint64_t SampleSpool::backlog() const {
    std::lock_guard const scope(lock_);
    return entries_.size();
}

OxResult SampleSpool::result() const {
    std::lock_guard const scope(lock_);
    return result_;
}

void SampleSpool::work() {
    std::unique_lock scope(lock_);
    for (;;) {
        changed_.wait(scope, [this] { return isEnding_ || !entries_.empty(); });
        if (entries_.empty()) {
            return;
        }
        Entry entry = entries_.front();
        OxResult result = result_;
        scope.unlock();
        if (result == oxSuccess) {
            result = write_(*entry.buffer);
        }
        finish(entry, result);
        scope.lock();
    }
}

/// The receiver is told before the buffer counts as gone.
void SampleSpool::finish(Entry& entry, OxResult result) {
    if (entry.told) {
        entry.told(result == oxSuccess);
    }
    {
        std::lock_guard const scope(lock_);
        if (result_ == oxSuccess) {
            result_ = result;
        }
        bytesWaiting_ -= entry.buffer->getUsed();
        entries_.pop_front();
    }
    changed_.notify_all();
}

}  // namespace playfile_wave
