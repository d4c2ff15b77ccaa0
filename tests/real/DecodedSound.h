#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "toolkit/sound/AudioMetadata.h"

namespace test {

/// One stream of a file's sound as the program `ffmpeg` decodes it from the first sample to the last.
///
/// Threads  Constant.
/// Units    Samples of each channel.
class DecodedSound {
public:
    /// @param format  the form in which the samples are compared
    DecodedSound(std::string const& path, std::uint32_t stream, Aud::Metadata const& format);

    [[nodiscard]] std::uint64_t sampleCount() const;
    /// The bytes of a channel's samples.
    [[nodiscard]] std::string samples(std::uint32_t channel, std::uint64_t first, std::uint32_t count) const;

private:
    std::uint32_t const bytesPerSample_;
    std::vector<std::string> channels_;
};

/// How far samples are from those that they should be; 1.0 is full scale.
struct Deviation {
    double largest = 0.0;
    double sumOfSquares = 0.0;
    std::uint64_t count = 0;

    [[nodiscard]] double rootMeanSquare() const;
    void add(Deviation const& other);
};

/// Of two blocks of samples in an `eSampleFormat`. Samples that one of them lacks are far off.
[[nodiscard]] Deviation deviationOf(std::string const& samples, std::string const& expected,
                                    std::uint32_t format);

/// What `ffmpeg` calls a form of samples.
[[nodiscard]] std::string rawFormName(std::uint32_t format);

}  // namespace test
