#pragma once

#include <cstdio>
#include <string>

#include "tools/playfile/Picture.h"

namespace cli {

/// Writes a picture as a PNG file of 8-bit RGB to an open stream.
///
/// @param error  set to the reason on failure
/// @return false if the picture is empty or couldn't be written whole
[[nodiscard]] bool writePng(Picture const& picture, std::FILE* stream, std::string& error);

}  // namespace cli
