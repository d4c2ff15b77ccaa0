#pragma once

#include <cstdint>
#include <vector>

#include "files/FileReadInstance.h"
#include "tools/playfile/Clip.h"
#include "tools/playfile/Picture.h"

namespace cli {

/// Small pictures of frames spread evenly over a file, each above its number.
struct ContactSheet {
    Picture picture;
    std::vector<std::uint32_t> frames;
    /// Those of `frames` that couldn't be read; their place is left dark.
    std::vector<std::uint32_t> failed;
};

/// Reads the frames through the cache and makes the sheet.
[[nodiscard]] ContactSheet makeContactSheet(Clip const& clip, FileReadInstance const& file);

/// `most` numbers below `frameCount`, or all of them, spread evenly, the first and the last included.
[[nodiscard]] std::vector<std::uint32_t> spreadFrames(std::uint32_t frameCount, std::uint32_t most);

}  // namespace cli
