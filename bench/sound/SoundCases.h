#pragma once

#include <cstdint>
#include <vector>

namespace bench {

/// The ways in which the blocks of a file are asked for.
enum class eSoundCase { inOrder, random };

/// All of them, in the order of the table.
[[nodiscard]] std::vector<eSoundCase> const& allSoundCases();

[[nodiscard]] char const* nameOf(eSoundCase which);

/// A run of samples that is asked for of every channel.
struct SoundBlock {
    std::uint64_t first;
    std::uint32_t count;
};

/// The blocks of a case, in the order in which they are asked for; the same for one seed.
///
/// @param blockSamples  of each block; the last one of a file may be shorter
/// @param count         how many blocks of the cases that don't take the whole file
[[nodiscard]] std::vector<SoundBlock> blocksOf(eSoundCase which, std::uint64_t sampleCount,
                                               std::uint32_t blockSamples, std::uint32_t count,
                                               std::uint32_t seed);

}  // namespace bench
