#pragma once

#include <cstdint>
#include <string>

#include "toolkit/image/VideoDescription.h"

namespace cli {

/// The usual names of the code points of ITU-T H.273; the number itself for one without a name.
[[nodiscard]] std::string primariesName(std::uint8_t code);
[[nodiscard]] std::string transferName(std::uint8_t code);
[[nodiscard]] std::string matrixName(std::uint8_t code);
/// Whether samples use all of their range, and whether somebody said so.
[[nodiscard]] std::string rangeName(Ox::Image::ColourDescription const& colour);
/// The name of a `ColourDescription::chromaLocation`.
[[nodiscard]] std::string chromaLocationName(std::uint8_t code);

[[nodiscard]] std::string fieldOrderName(Ox::Image::eFieldOrder order);
/// What must be done to a picture of this orientation to see it upright.
[[nodiscard]] std::string orientationName(Ox::Image::Orientation orientation);

}  // namespace cli
