#pragma once

#include <cstdint>
#include <string>

#include "toolkit/sound/AudioMetadata.h"

namespace cli {

/// A WAVE file that is being written: RIFF, or RF64 above 4 GiB. It bears its name only when it is whole.
///
/// Threads  One at a time.
/// Errors   CommandError, which names the file.
class WavFile {
public:
    /// Makes the file under another name.
    ///
    /// @param format    of every channel, an `Aud::eSampleFormat`
    /// @param channels  how many
    /// @param samples   of each channel
    WavFile(std::string path, Aud::Metadata const& format, std::uint32_t channels, std::uint64_t samples);
    /// Without `finish` nothing is left of it.
    ~WavFile();
    WavFile(WavFile const&) = delete;
    WavFile& operator=(WavFile const&) = delete;

    /// Writes interleaved samples at a place.
    void write(std::uint64_t firstSample, void const* bytes, std::size_t byteCount);
    /// Gives the file its name.
    void finish();

    [[nodiscard]] std::uint32_t bytesPerFrame() const { return bytesPerFrame_; }

private:
    void writeAt(std::uint64_t offset, void const* bytes, std::size_t byteCount);
    [[noreturn]] void refuse(int errorNumber) const;

    std::string const path_;
    std::string const partial_;
    std::uint32_t const bytesPerFrame_;
    std::uint64_t dataOffset_ = 0;
    int descriptor_ = -1;
};

}  // namespace cli
