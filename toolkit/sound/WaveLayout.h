#pragma once

#include <cstdint>
#include <vector>

#include "toolkit/sound/AudioMetadata.h"

namespace Aud {

/// The bytes of a WAVE file that lie in front of its samples: RIFF as ITU-R BS.2088 has it, RF64 where a size
/// needs more than 32 bits.
struct WaveLayout {
    /// The form of the samples, and their rate.
    Metadata format;
    std::uint32_t channels = 0;
    /// Chunks that lie before the format, whole and of even length.
    std::vector<std::uint8_t> chunks;
    /// True: a file that isn't long leaves room for the long sizes, so that it may become long without
    /// moving its samples.
    bool reservesLongSizes = false;

    /// Of one sample of all channels.
    [[nodiscard]] std::uint32_t bytesPerFrame() const { return channels * format.bytesPerSample; }

    /// The header of a file that has so many bytes of samples, and a byte behind them if that is odd.
    [[nodiscard]] std::vector<std::uint8_t> header(std::uint64_t dataBytes) const;
};

}  // namespace Aud
