#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/support/Child.h"
#include "bench/workload/Cases.h"

namespace bench {

/// Loads the readers and puts a clip in the catalogue, then does one case through the library.
///
/// Frames in order are asked for a few ahead of the one that is waited for, as a player does; all other
/// cases wait for each frame before they ask for the next. What is timed is the asking and the waiting;
/// the file is open before, unless the case is about opening.
///
/// A second of rest follows, with the last results held. Call it once in a process: it leaves the library as it is.
[[nodiscard]] Sample runLibrary(std::string const& path, std::string const& pluginFolder, eCase which,
                                std::vector<std::uint32_t> const& frames);

/// Opens many clips and reads the first frame of each, one after the other, and holds all of it.
///
/// @param isOpenedAhead  has all of them opened ahead of need at the start of the timed part
[[nodiscard]] Sample runLibraryBin(std::vector<std::string> const& paths, std::string const& pluginFolder,
                                   bool isOpenedAhead);

/// How many frames the library finds in a file; 0 if it can't open it. Once in a process, too.
[[nodiscard]] std::uint32_t countFrames(std::string const& path, std::string const& pluginFolder);

}  // namespace bench
