#pragma once

#include <cstdint>

/// Which channels of a clip are meant: 1 video, 2 audio.
using EditChanType = std::uint32_t;
inline constexpr EditChanType videoChannel = 1;
inline constexpr EditChanType audioChannel = 2;

/// Which of them more exactly: 0 all.
using EditChanSubType = std::uint32_t;
