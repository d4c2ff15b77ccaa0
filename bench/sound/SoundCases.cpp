#include "bench/sound/SoundCases.h"

#include <algorithm>
#include <random>

namespace bench {
namespace {

std::vector<SoundBlock> blocksInOrder(std::uint64_t sampleCount, std::uint32_t blockSamples) {
    std::vector<SoundBlock> blocks;
    for (std::uint64_t first = 0; first < sampleCount; first += blockSamples) {
        std::uint64_t const left = sampleCount - first;
        blocks.push_back({first, static_cast<std::uint32_t>(std::min<std::uint64_t>(blockSamples, left))});
    }
    return blocks;
}

/// At any sample, as a hand lets go of a wave form.
std::vector<SoundBlock> randomBlocks(std::uint64_t sampleCount, std::uint32_t blockSamples,
                                     std::uint32_t count, std::uint32_t seed) {
    std::mt19937_64 numbers(seed);
    auto const length = static_cast<std::uint32_t>(std::min<std::uint64_t>(blockSamples, sampleCount));
    std::vector<SoundBlock> blocks(count);
    for (SoundBlock& block : blocks) {
        block = {numbers() % (sampleCount - length + 1), length};
    }
    return blocks;
}

}  // namespace

std::vector<eSoundCase> const& allSoundCases() {
    static std::vector<eSoundCase> const cases{eSoundCase::inOrder, eSoundCase::random};
    return cases;
}

char const* nameOf(eSoundCase which) {
    return which == eSoundCase::inOrder ? "in order" : "random";
}

std::vector<SoundBlock> blocksOf(eSoundCase which, std::uint64_t sampleCount, std::uint32_t blockSamples,
                                 std::uint32_t count, std::uint32_t seed) {
    return which == eSoundCase::inOrder ? blocksInOrder(sampleCount, blockSamples)
                                        : randomBlocks(sampleCount, blockSamples, count, seed);
}

}  // namespace bench
