#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// The ways in which the frames of a clip are asked for.
enum class eCase {
    inOrder,
    random,
    backward,
    scrub,
    openAndFirst,
    heldAgain,
    twoReaders,   ///< in order at two places of one file
    interleaved,  ///< in order in several clips, a frame of each in turn
};

/// Clips of the case that interleaves them.
constexpr std::size_t interleavedClips = 8;
/// Places of the case of two readers; the second begins where the first ends.
constexpr std::size_t readersOfAFile = 2;

/// All of them, in the order of the table.
[[nodiscard]] std::vector<eCase> const& allCases();

[[nodiscard]] char const* nameOf(eCase which);

/// The frames of a case, in the order in which they are asked for, those of one clip or place where there are
/// several; the same for one seed.
///
/// @param frameCount  of the clip, at least 1
/// @param count       how many frames of the cases that don't take the whole clip
[[nodiscard]] std::vector<std::uint32_t> framesOf(eCase which, std::uint32_t frameCount, std::uint32_t count,
                                                  std::uint32_t seed);

/// In how many places, of one file or of several, the frames are read.
[[nodiscard]] constexpr std::size_t placesOf(eCase which) {
    return which == eCase::interleaved ? interleavedClips : which == eCase::twoReaders ? readersOfAFile : 1;
}

/// How many frames must be decoded at least: those that are asked for and those from the key before each, where
/// keys come at regular distances.
[[nodiscard]] std::uint32_t spannedFrames(std::vector<std::uint32_t> const& frames,
                                          std::uint32_t framesPerKey);

}  // namespace bench
