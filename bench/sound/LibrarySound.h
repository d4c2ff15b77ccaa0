#pragma once

#include <string>
#include <vector>

#include "bench/sound/SoundCases.h"
#include "bench/support/Child.h"

namespace bench {

/// Reads blocks through the library, each channel by a request of its own, as an editor's playback does: all
/// channels of a block are queued together.
///
/// What is timed is the asking and the waiting; the file is open before. Call it once in a process: it leaves
/// the library as it is.
///
/// @param blocksAhead  blocks under way, 1 for one after the other
[[nodiscard]] Sample runLibrarySound(std::string const& path, std::string const& pluginFolder,
                                     std::vector<SoundBlock> const& blocks, std::uint32_t blocksAhead);

/// What the library finds in a file's first sound stream. Once in a process, too.
[[nodiscard]] SoundFacts lookAtSound(std::string const& path, std::string const& pluginFolder);

}  // namespace bench
