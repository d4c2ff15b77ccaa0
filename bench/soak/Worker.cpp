#include "bench/soak/Worker.h"

#include "bench/soak/Reads.h"
#include "playfile/playfile.h"
#include "toolkit/catalogue/Repository.h"

namespace soak {
namespace {

constexpr std::size_t mostHeld = 4;
constexpr std::uint32_t mostReads = 12;
constexpr std::uint32_t scrubReach = 5;

/// How often each act comes, of all of them together.
constexpr std::uint32_t readShare = 60;
constexpr std::uint32_t cancelShare = 75;
constexpr std::uint32_t preOpenShare = 85;
constexpr std::uint32_t closeShare = 90;
constexpr std::uint32_t evictShare = 95;
constexpr std::uint32_t renameShare = 98;
constexpr std::uint32_t allShares = 100;

/// The ways in which an editor goes through a clip.
enum class eWalk : std::uint32_t { onward, backward, scrub, anywhere };
constexpr std::uint32_t walkCount = 4;

std::uint32_t placeOf(eWalk walk, std::uint32_t start, std::uint32_t step, std::uint32_t random,
                      std::uint32_t count) {
    std::uint64_t const from = std::uint64_t{start} + count;
    switch (walk) {
        case eWalk::onward:
            return static_cast<std::uint32_t>((from + step) % count);
        case eWalk::backward:
            return static_cast<std::uint32_t>((from - step % count) % count);
        case eWalk::scrub:
            return static_cast<std::uint32_t>((from + random % scrubReach) % count);
        case eWalk::anywhere:
            break;
    }
    return random % count;
}

}  // namespace

void Worker::run(std::atomic<bool> const& mustStop) {
    while (!mustStop.load(std::memory_order_relaxed)) {
        act();
    }
    held_.clear();
}

void Worker::act() {
    std::uint32_t const which = below(allShares);
    if (which < readShare) {
        readOrCancel(false);
    } else if (which < cancelShare) {
        readOrCancel(true);
    } else if (which < preOpenShare) {
        preOpen();
    } else if (which < closeShare) {
        close();
    } else if (which < evictShare) {
        evict();
    } else if (which < renameShare) {
        rename();
    } else {
        fireRepositoryEvent();
    }
}

void Worker::readOrCancel(bool isCancelled) {
    SoakClip& clip = anyClip();
    if (clip.isSound()) {
        read<SoundReads>(clip, isCancelled);
    } else {
        read<PictureReads>(clip, isCancelled);
    }
}

template <class Reads>
void Worker::read(SoakClip& clip, bool isCancelled) {
    Reads reads(clip, tally_);
    auto const walk = static_cast<eWalk>(below(walkCount));
    std::uint32_t const start = below(clip.placeCount());
    std::uint32_t const count = 1 + below(mostReads);
    for (std::uint32_t step = 0; step < count; ++step) {
        reads.ask(placeOf(walk, start, step, numbers_(), clip.placeCount()));
    }
    if (isCancelled) {
        reads.drop();
    }
    reads.finish();
}

void Worker::preOpen() {
    held_.push_back(Ox::PreOpenRequest::create(anyClip().cookie(), DecodeFormat(), 0));
    Tally::add(tally_.preOpened);
    while (held_.size() > below(mostHeld + 1)) {
        held_.pop_front();
    }
}

void Worker::close() {
    Tally::add(tally_.closed);
    if (below(5) == 0) {
        playfile_close_all_files();
    } else {
        playfile_close_files(anyClip().cookie(), mediaAll);
    }
}

void Worker::evict() {
    Tally::add(tally_.evicted);
    if (below(5) == 0) {
        Reclaimable::purgeAll();
    } else {
        PlayFileCache::Shared()->limitUsage(below(mostHeld));
    }
}

void Worker::rename() {
    if (anyClip().rename()) {
        Tally::add(tally_.renamed);
    }
}

void Worker::fireRepositoryEvent() {
    iAssetRepository::Event event;
    event.flags = iAssetRepository::Event::reachabilityFlag;
    event.kind = iAssetRepository::Event::becameAvailable;
    AssetRepositoryManager::fire(event);
    Tally::add(tally_.repositoryEvents);
}

}  // namespace soak
