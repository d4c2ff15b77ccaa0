#pragma once

#include <cstdint>
#include <string>

#include "gtest/gtest.h"
#include "plugins/ffmpeg/FFmpegSoundReader.h"
#include "tests/fakes/RecordingIssuer.h"
#include "toolkit/plugins/AudioDecoderInfo.h"

namespace test {

/// A medium that is open for its sound, and read on the test's own thread.
class SoundServerFixture : public ::testing::Test {
protected:
    using RequestPtr = Ox::Ptr<AudioReadRequest>;

    SoundServerFixture();
    ~SoundServerFixture() override;

    void open(std::string const& name);
    void openFile(std::string const& path);
    /// From now on files are opened without a decoder for their coded streams.
    void removeDecoder() { Ox::AudioDecoderInfo::remove(decoders_); }
    /// @param fetch  samples that the library would fetch; 0 for `count`
    RequestPtr read(std::uint64_t start, std::uint32_t count, std::uint32_t fetch = 0,
                    std::uint32_t stream = 0) {
        return readFrom(reader_, start, count, fetch, stream);
    }
    RequestPtr readFrom(Ox::Ptr<FileReadInstance> file, std::uint64_t start, std::uint32_t count,
                        std::uint32_t fetch = 0, std::uint32_t stream = 0);
    [[nodiscard]] std::uint64_t sampleCount() const { return reader_->metadata->audioSampleCount; }
    [[nodiscard]] static std::string bytesOf(AudioReadRequest const& request, std::uint32_t samples);
    [[nodiscard]] static std::uint32_t samplesOf(AudioReadRequest const& request);

    Ox::Ptr<playfile_ffmpeg::FFmpegSoundReader> reader_;
    RecordingIssuer issuer_;

private:
    Ox::Ptr<Ox::AudioDecoderInfo> const decoders_;
};

}  // namespace test
