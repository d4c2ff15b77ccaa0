#pragma once

#include <cstdint>
#include <string>

#include "toolkit/sound/SampleFormat.h"

namespace test {

/// Makes the bytes of WAVE files, good ones and odd ones. Each sample of each channel has a value of its own,
/// which can be asked for again, so that a test can tell which sample it got without a table.
///
/// Units  Samples of every channel.
namespace wave {

/// The length of a chunk that isn't known or is stated elsewhere.
inline constexpr std::uint32_t noLength = 0xFFFFFFFF;

/// The form of the samples.
struct Shape {
    std::uint32_t channels = 2;
    Aud::eSampleFormat format = Aud::sampleS16;
    std::uint32_t rate = 48000;

    [[nodiscard]] std::uint32_t sampleBytes() const { return Aud::bytesPerSampleOf(format); }
    [[nodiscard]] std::uint32_t blockAlign() const { return channels * sampleBytes(); }
    [[nodiscard]] std::uint16_t tag() const { return format >= Aud::sampleF32 ? 3 : 1; }
};

/// Numbers as they lie in a file.
[[nodiscard]] std::string number16(std::uint32_t number);
[[nodiscard]] std::string number32(std::uint64_t number);
[[nodiscard]] std::string number64(std::uint64_t number);

/// The bytes of one sample.
[[nodiscard]] std::string sample(Shape const& shape, std::uint32_t channel, std::uint64_t number);
/// `count` samples from `first` on, of all channels as they lie in a file, or of one of them.
[[nodiscard]] std::string samples(Shape const& shape, std::uint64_t first, std::uint64_t count);
[[nodiscard]] std::string channel(Shape const& shape, std::uint32_t channel, std::uint64_t first,
                                  std::uint64_t count);

/// The contents of a "fmt " chunk.
[[nodiscard]] std::string format(Shape const& shape);
[[nodiscard]] std::string format(std::uint32_t tag, std::uint32_t channels, std::uint32_t rate,
                                 std::uint32_t blockAlign, std::uint32_t bits);
/// The same in the extensible form.
[[nodiscard]] std::string extensible(Shape const& shape, std::uint32_t bits, std::uint32_t validBits);

/// A chunk, with the byte behind one of odd length.
[[nodiscard]] std::string chunk(std::string const& code, std::string const& contents);
/// A chunk that states a length of its own, without a byte behind it.
[[nodiscard]] std::string chunk(std::string const& code, std::string const& contents,
                                std::uint32_t statedLength);
/// A "ds64" chunk; `table` is made of `tableEntry`.
[[nodiscard]] std::string sizes64(std::uint64_t formLength, std::uint64_t dataLength,
                                  std::string const& table = "");
[[nodiscard]] std::string tableEntry(std::string const& code, std::uint64_t length);

/// A file of chunks, of the form "RIFF".
[[nodiscard]] std::string file(std::string const& chunks);
[[nodiscard]] std::string file(std::string const& form, std::string const& chunks,
                               std::uint32_t statedLength);

/// A file of `count` samples in the plainest layout.
[[nodiscard]] std::string plainFile(Shape const& shape, std::uint64_t count);

}  // namespace wave
}  // namespace test
