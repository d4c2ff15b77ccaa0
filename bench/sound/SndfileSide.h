#pragma once

#include <string>
#include <vector>

#include "bench/sound/SoundCases.h"
#include "bench/support/Child.h"

namespace bench {

/// How a program without a library like ours reads the channels of a file with libsndfile.
enum class eSndfileWay {
    onePass,           ///< one handle reads each block, and the program takes the channels apart
    handlePerChannel,  ///< each channel has a handle, which reads all channels, and picks its own
};

/// Reads blocks with libsndfile, as whole numbers of 32 bits; each channel ends up in a buffer of its own.
/// The file is open before the time runs.
[[nodiscard]] Sample runSndfile(std::string const& path, eSndfileWay way,
                                std::vector<SoundBlock> const& blocks);

/// True if libsndfile reads the file.
[[nodiscard]] bool canSndfileRead(std::string const& path);

}  // namespace bench
