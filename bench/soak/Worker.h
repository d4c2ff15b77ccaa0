#pragma once

#include <atomic>
#include <deque>
#include <random>

#include "bench/soak/SoakClip.h"
#include "bench/soak/Tally.h"
#include "video/FilePreOpen.h"

namespace soak {

using Clips = std::vector<std::unique_ptr<SoakClip>>;

/// One thread's part of a run: an act at random, and another, until it is told to stop.
///
/// Threads  `run` on the thread; the clips, the tally and the word to stop are shared.
class Worker {
public:
    Worker(Clips const& clips, Tally& tally, std::uint32_t seed)
        : clips_(clips), tally_(tally), numbers_(seed) {}

    void run(std::atomic<bool> const& mustStop);

private:
    /// From 0 to `count` - 1.
    std::uint32_t below(std::size_t count) { return static_cast<std::uint32_t>(numbers_() % count); }
    SoakClip& anyClip() { return *clips_[below(clips_.size())]; }

    void act();
    template <class Reads>
    void read(SoakClip& clip, bool isCancelled);
    void readOrCancel(bool isCancelled);
    void preOpen();
    void close();
    void evict();
    void rename();
    void fireRepositoryEvent();

    Clips const& clips_;
    Tally& tally_;
    std::mt19937 numbers_;
    /// Files that are held open for a while, some of them more than once.
    std::deque<Ox::Ptr<Ox::PreOpenRequest>> held_;
};

}  // namespace soak
