#pragma once

#include <cstdint>

#include "toolkit/image/FrameBufferRep.h"

/// Makes the picture of a frame: its number in the top rows, below them a pattern that moves.
///
/// @param format  gray, rgb24 or yuv420p
[[nodiscard]] Ox::Image::Surface makeSynthPicture(std::uint32_t frame, std::uint32_t width,
                                                  std::uint32_t height, Ox::Image::Format format);
