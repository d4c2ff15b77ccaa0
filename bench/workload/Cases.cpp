#include "bench/workload/Cases.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <set>

namespace bench {
namespace {

/// How far from the playhead a scrub looks, and how far the playhead goes on after each look.
constexpr int scrubReach = 5;
constexpr int scrubStep = 1;
/// A scrub is so many times as long as other cases.
constexpr std::uint32_t scrubLength = 2;

using Frames = std::vector<std::uint32_t>;

Frames framesInOrder(std::uint32_t count) {
    Frames frames(count);
    std::iota(frames.begin(), frames.end(), 0U);
    return frames;
}

Frames randomFrames(std::uint32_t frameCount, std::uint32_t count, std::uint32_t seed) {
    std::mt19937 numbers(seed);
    Frames frames(count);
    for (std::uint32_t& frame : frames) {
        frame = static_cast<std::uint32_t>(numbers() % frameCount);
    }
    return frames;
}

/// From the clip's last frame on; a short clip is gone through again.
Frames backwardFrames(std::uint32_t frameCount, std::uint32_t count) {
    Frames frames(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        frames[i] = frameCount - 1 - i % frameCount;
    }
    return frames;
}

/// A playhead that moves on steadily, and a hand that jerks to either side of it.
Frames scrubFrames(std::uint32_t frameCount, std::uint32_t count, std::uint32_t seed) {
    std::mt19937 numbers(seed);
    Frames frames(std::size_t{count} * scrubLength);
    std::int64_t playhead = static_cast<std::int64_t>(numbers() % frameCount);
    for (std::uint32_t& frame : frames) {
        std::int64_t const offset = static_cast<std::int64_t>(numbers() % (2 * scrubReach + 1)) - scrubReach;
        frame = static_cast<std::uint32_t>(std::clamp<std::int64_t>(playhead + offset, 0, frameCount - 1));
        playhead = (playhead + scrubStep) % frameCount;
    }
    return frames;
}

}  // namespace

std::vector<eCase> const& allCases() {
    static std::vector<eCase> const cases{eCase::inOrder,    eCase::random,       eCase::backward,
                                          eCase::scrub,      eCase::openAndFirst, eCase::heldAgain,
                                          eCase::twoReaders, eCase::interleaved};
    return cases;
}

char const* nameOf(eCase which) {
    switch (which) {
        case eCase::inOrder:
            return "in order";
        case eCase::random:
            return "random";
        case eCase::backward:
            return "backward";
        case eCase::scrub:
            return "scrub";
        case eCase::openAndFirst:
            return "open + first";
        case eCase::heldAgain:
            return "held again";
        case eCase::twoReaders:
            return "two readers";
        case eCase::interleaved:
            return "8 clips";
    }
    return "";
}

Frames framesOf(eCase which, std::uint32_t frameCount, std::uint32_t count, std::uint32_t seed) {
    switch (which) {
        case eCase::inOrder:
        case eCase::interleaved:
            return framesInOrder(frameCount);
        case eCase::random:
            return randomFrames(frameCount, count, seed);
        case eCase::backward:
            return backwardFrames(frameCount, count);
        case eCase::scrub:
            return scrubFrames(frameCount, count, seed);
        case eCase::openAndFirst:
            return {0};
        case eCase::heldAgain:
            return Frames(count, frameCount / 2);
        case eCase::twoReaders:
            return framesInOrder(std::min(static_cast<std::uint32_t>(frameCount / readersOfAFile), count));
    }
    return {};
}

std::uint32_t spannedFrames(Frames const& frames, std::uint32_t framesPerKey) {
    std::set<std::uint32_t> spanned;
    std::uint32_t const distance = std::max(framesPerKey, 1U);
    for (std::uint32_t const frame : frames) {
        for (std::uint32_t at = frame - frame % distance; at <= frame; ++at) {
            spanned.insert(at);
        }
    }
    return static_cast<std::uint32_t>(spanned.size());
}

}  // namespace bench
