#include "plugins/ffmpeg/SoundAhead.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {
namespace {

/// Packets that are fed between two looks at what is wanted: few, as a halt waits for them.
constexpr uint32_t mostBetweenLooks = 4;

}  // namespace

SoundAhead::SoundAhead(std::function<bool()> feedNext)
    : feedNext_(std::move(feedNext)), hasThread_(beginThread("SoundAhead", iThread::normal)) {}

SoundAhead::~SoundAhead() {
    {
        std::lock_guard const scope(lock_);
        isEnding_ = true;
    }
    isWork_.notify_one();
    endThread();
}

bool SoundAhead::goOn(uint32_t given, uint32_t needed, uint32_t wanted) {
    if (!hasThread_) {
        return false;
    }
    std::unique_lock lock(lock_);
    if (isHalted_) {
        given_ = given;
        isHalted_ = false;
    }
    needed_ = needed;
    wanted_ = std::max(needed, wanted);
    if (!isFeeding_ && given_ < wanted_) {
        isWork_.notify_one();
    }
    isProgress_.wait(lock, [this] { return given_ >= needed_ || isHalted_; });
    return !isHalted_;
}

void SoundAhead::halt() {
    std::unique_lock lock(lock_);
    isHalted_ = true;
    wanted_ = 0;
    isProgress_.wait(lock, [this] { return !isFeeding_; });
}

void SoundAhead::threadFn() {
    std::unique_lock lock(lock_);
    while (!isEnding_) {
        isWork_.wait(lock, [this] { return isEnding_ || (!isHalted_ && given_ < wanted_); });
        feedUntilTold(lock);
    }
}

/// Who waits is woken once, when there is what he needs.
void SoundAhead::feedUntilTold(std::unique_lock<std::mutex>& lock) {
    while (!isEnding_ && !isHalted_ && given_ < wanted_) {
        uint32_t const goal = given_ < needed_ ? needed_ : wanted_;
        uint32_t const count = std::min(goal - given_, mostBetweenLooks);
        isFeeding_ = true;
        lock.unlock();
        uint32_t fed = 0;
        while (fed < count && feedNext_()) {
            ++fed;
        }
        lock.lock();
        bool const isWaitedFor = given_ < needed_;
        isFeeding_ = false;
        given_ += fed;
        isHalted_ = isHalted_ || fed < count;
        if (isHalted_ || (isWaitedFor && given_ >= needed_)) {
            isProgress_.notify_one();
        }
    }
}

}  // namespace playfile_ffmpeg
