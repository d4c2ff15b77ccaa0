#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/support/Child.h"
#include "bench/workload/Cases.h"

namespace bench {

/// Does one case with a plain loop on libavformat and libavcodec, which seeks for every frame that isn't
/// simply the next in order. The file is open before the time runs, unless the case is about opening.
[[nodiscard]] Sample runPlain(std::string const& path, eCase which, std::vector<std::uint32_t> const& frames);

/// Opens many files, each with a loop of its own, decodes the first picture of each, and holds all of it.
[[nodiscard]] Sample runPlainBin(std::vector<std::string> const& paths);

/// Codec, container, size and key frames of a file's picture; `frameCount` is left alone.
[[nodiscard]] ClipFacts lookAt(std::string const& path);

}  // namespace bench
