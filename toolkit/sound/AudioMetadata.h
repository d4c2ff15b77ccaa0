#pragma once

#include <cstdint>

#include "ole/Ox/OxString.h"

namespace Aud {

/// The format of one audio stream.
///
/// Units  Samples are counted per channel.
struct Metadata {
    std::uint32_t channels = 0;
    /// An `eSampleFormat`; 0 for not known. Of a compressed stream the form that its decoder gives.
    std::uint32_t sampleFormat = 0;
    /// Of one channel, as it lies in memory.
    std::uint32_t bytesPerSample = 0;
    /// Of one channel; fewer than the bytes hold where a sample is padded.
    std::uint32_t bitsPerSample = 0;
    /// Samples of one codec frame; 0 or 1 for streams that aren't compressed.
    std::uint32_t samplesPerCodecFrame = 0;
    double sampleRate = 0.0;
    /// The codec's name in lower case ("aac", "pcm_s24le").
    LightweightString<char> codec;
    bool isCompressed = false;

    [[nodiscard]] bool isCompressedFormat() const { return isCompressed; }
    [[nodiscard]] bool isAAC() const { return codec == LightweightString<char>("aac"); }
};

}  // namespace Aud
