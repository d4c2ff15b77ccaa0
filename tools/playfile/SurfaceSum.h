#pragma once

#include <string>

#include "toolkit/image/Surface.h"
#include "tools/playfile/Md5.h"

namespace cli {

/// The name of a surface's pixel format.
///
/// @throws CommandError  if nobody has told what its pixels look like
[[nodiscard]] std::string pixelFormatName(Ox::Image::Surface const& surface);

/// The MD5 sum of a surface's pixels: plane after plane, rows from the top, no padding, and behind a
/// plane of palette numbers the palette.
///
/// @throws CommandError  if the surface has no pixels, or of a format that isn't described
[[nodiscard]] Md5::Digest sumOf(Ox::Image::Surface const& surface);

}  // namespace cli
