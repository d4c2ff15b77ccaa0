#pragma once

#include <string>
#include <vector>

#include "bench/sound/SoundCases.h"
#include "bench/support/Child.h"

namespace bench {

/// Reads blocks of a file's first sound stream with the loop on libavformat and libavcodec that somebody writes
/// who has no library for it: open, probe, decode with one thread, and for a block that isn't the next one seek
/// by time, two packets early, and decode up to it. Each channel ends up in a buffer of its own.
///
/// It makes no promise about exact numbers. The file is open before the time runs.
[[nodiscard]] Sample runPlainSound(std::string const& path, std::vector<SoundBlock> const& blocks);

/// True if libavcodec decodes the file's sound.
[[nodiscard]] bool canPlainLoopRead(std::string const& path);

}  // namespace bench
