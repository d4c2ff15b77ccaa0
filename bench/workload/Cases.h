#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// The ways in which the frames of a clip are asked for.
enum class eCase { inOrder, random, backward, scrub, openAndFirst, heldAgain };

/// All of them, in the order of the table.
[[nodiscard]] std::vector<eCase> const& allCases();

[[nodiscard]] char const* nameOf(eCase which);

/// The frames of a case, in the order in which they are asked for; the same for one seed.
///
/// @param frameCount  of the clip, at least 1
/// @param count       how many frames of the cases that don't take the whole clip
[[nodiscard]] std::vector<std::uint32_t> framesOf(eCase which, std::uint32_t frameCount, std::uint32_t count,
                                                  std::uint32_t seed);

}  // namespace bench
