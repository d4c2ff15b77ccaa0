#pragma once

#include <string>

#include "tools/playfile/Picture.h"

namespace cli {

/// Height of a painted number, in pixels.
inline constexpr std::uint32_t digitHeight = 10;

/// Paints a number in light grey; what would lie outside the picture is left away.
void paintNumber(Picture& picture, std::uint32_t number, std::uint32_t left, std::uint32_t top);

}  // namespace cli
