#include "bench/workload/Cases.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace bench {
namespace {

/// How far from the playhead a scrub looks, and how far the playhead goes on after each look.
constexpr int scrubReach = 12;
constexpr int scrubStep = 3;

using Frames = std::vector<std::uint32_t>;

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
    Frames frames(count);
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
    static std::vector<eCase> const cases{eCase::inOrder, eCase::random,       eCase::backward,
                                          eCase::scrub,   eCase::openAndFirst, eCase::heldAgain};
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
    }
    return "";
}

Frames framesOf(eCase which, std::uint32_t frameCount, std::uint32_t count, std::uint32_t seed) {
    switch (which) {
        case eCase::inOrder: {
            Frames frames(frameCount);
            std::iota(frames.begin(), frames.end(), 0U);
            return frames;
        }
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
    }
    return {};
}

}  // namespace bench
