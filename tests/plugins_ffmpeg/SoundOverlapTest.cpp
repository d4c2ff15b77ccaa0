/// What the last samples of a packet need of the packets before it, with the decoder itself.
#include <gtest/gtest.h>

#include "plugins/ffmpeg/BundleDecoder.h"
#include "plugins/ffmpeg/SoundFile.h"
#include "tests/plugins_ffmpeg/Media.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr int64_t packetSamples = 1152;
constexpr int64_t priming = 1105;
/// The first sample of a packet that needs no packet before it but for its bytes.
constexpr int64_t ownFrom = 1056;
constexpr int64_t packetCount = 70;

/// A stream of MPEG layer 3, decoded from its start, and read again elsewhere.
class SoundOverlap : public ::testing::TestWithParam<char const*> {
protected:
    SoundOverlap() {
        std::string error;
        file_ = SoundFile::open(medium(GetParam()), error);
        EXPECT_TRUE(file_) << error;
        SoundTrack const& track = file_->tracks().front();
        decoder_ = std::make_unique<BundleDecoder>(SoundDecoder::open(*track.parameters, error), track.form);
        linear_ = read(0, packetCount * packetSamples);
    }
    /// The first channel of these samples.
    std::vector<uint8_t> read(int64_t first, int64_t end) {
        Bundle bundle;
        file_->tracks().front().coded->bundle(first, end, bytes_);
        EXPECT_TRUE(readBundle(bytes_, bundle));
        packetsBrought_ = bundle.packets.size();
        decoder_->take(bundle);
        std::vector<uint8_t> samples(static_cast<size_t>(end - first) * sampleBytes());
        decoder_->write(bundle, 0, samples.data());
        return samples;
    }
    size_t packetsAfterJump(int64_t first, int64_t end) {
        static_cast<void>(read(0, 1));
        static_cast<void>(read(first, end));
        return packetsBrought_;
    }
    [[nodiscard]] std::vector<uint8_t> fromStart(int64_t first, int64_t end) const {
        auto const at = [&](int64_t sample) {
            return linear_.begin() + static_cast<std::ptrdiff_t>(sample) * sampleBytes();
        };
        return {at(first), at(end)};
    }
    [[nodiscard]] std::uint32_t sampleBytes() const { return file_->tracks().front().form.bytesPerSample(); }

    std::unique_ptr<SoundFile> file_;
    std::unique_ptr<BundleDecoder> decoder_;
    std::vector<uint8_t> linear_;
    std::vector<uint8_t> bytes_;
    size_t packetsBrought_ = 0;
};

TEST_P(SoundOverlap, OfTheLastSamplesOfAPacketIsWithinIt) {
    for (int64_t packet = packetCount - 2; packet > 2; packet -= 2) {
        int64_t const first = packet * packetSamples + ownFrom - priming;
        EXPECT_TRUE(read(first, first + packetSamples) == fromStart(first, first + packetSamples)) << packet;
    }
}

TEST_P(SoundOverlap, SavesAPacketFromThere) {
    int64_t const first = packetCount / 2 * packetSamples + ownFrom - priming;
    size_t const whole = packetsAfterJump(first - 1, first + packetSamples);
    EXPECT_EQ(packetsAfterJump(first, first + packetSamples), whole - 1);
}

INSTANTIATE_TEST_SUITE_P(Media, SoundOverlap, testing::Values("music-128k.mp3", "music-vbr.mp3"),
                         [](testing::TestParamInfo<char const*> const& name) {
                             return testNameOf(name.param);
                         });

}  // namespace
}  // namespace test
