#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugins/ffmpeg/SoundDecoder.h"
#include "plugins/ffmpeg/SoundForm.h"

namespace test {

/// The parameters of a stream, as a container that states no more would give them.
[[nodiscard]] playfile_ffmpeg::AvPtr<AVCodecParameters> parametersOf(AVCodecID codec, int channels = 1,
                                                                     int sampleRate = 48000);

/// The form of a stream of samples of 16 bits.
[[nodiscard]] playfile_ffmpeg::SoundForm shortForm(int channels = 1);

/// Samples of 16 bits that rise by one, as bytes.
[[nodiscard]] std::string rising(int first, int count);

/// Samples of 16 bits out of bytes.
[[nodiscard]] std::vector<int16_t> shortsOf(std::vector<uint8_t> const& bytes);

/// A packet of these bytes.
[[nodiscard]] playfile_ffmpeg::AvPtr<AVPacket> packetOf(std::string const& bytes);

}  // namespace test
