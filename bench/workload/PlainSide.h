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

/// Codec, container and size of a file's picture; `frameCount` is left alone.
[[nodiscard]] ClipFacts lookAt(std::string const& path);

}  // namespace bench
