#pragma once

#include <string>

namespace test {

/// How far the sound of a codec may be from the linear decode where it is read from anywhere: the root mean square of
/// the difference, as a part of full scale. 0.0 for a codec whose decoder gives the same wherever it begins.
[[nodiscard]] double soundBoundOf(std::string const& path, std::string const& codec);

}  // namespace test
