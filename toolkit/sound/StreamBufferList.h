#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxMemHolder.h"

namespace Aud {

/// One buffer for each channel of a stream, in the order of the channels.
///
/// A copy shares the memory of the samples.
class StreamBufferList : public std::vector<StreamBuffer> {
public:
    static constexpr std::uint32_t noFormat = 0xFFFFFFFF;

    /// Samples of each channel.
    std::uint32_t sampleCount = 0;
    /// An `eSampleFormat`; `noFormat` in a new list.
    std::uint32_t format = noFormat;
};

}  // namespace Aud
