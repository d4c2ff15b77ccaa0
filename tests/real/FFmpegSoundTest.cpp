/// The sound of every file on the whole road, beside what the program `ffmpeg` decodes from its first sample
/// to its last.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <numeric>
#include <random>
#include <string_view>
#include <thread>

#include "tests/real/DecodedSound.h"
#include "tests/real/OpenSound.h"
#include "tests/real/RealMedia.h"
#include "tests/real/SoundBounds.h"

namespace test {
namespace {

constexpr std::uint32_t blockCount = turns(1000);
constexpr std::uint32_t threadCount = 8;
constexpr std::uint32_t frameBlock = 1920;
constexpr std::uint32_t usualBlock = 4096;
constexpr std::uint32_t longestBlock = 10'000;

std::uint32_t seed() {
    char const* const given = std::getenv("PLAYFILE_TEST_SEED");
    return given != nullptr ? static_cast<std::uint32_t>(std::strtoul(given, nullptr, 10)) : 20261121;
}

/// A part of a stream.
struct Block {
    std::uint64_t first;
    std::uint32_t count;
};

/// One stream of an open file beside what it should be.
class StreamUnderTest {
public:
    StreamUnderTest(OpenSound const& sound, std::string const& path, std::uint32_t stream)
        : sound_(sound),
          format_(sound.metadata().audioStreams[stream]),
          firstChannel_(channelsBefore(sound, stream)),
          expected_(path, stream, format_),
          bound_(soundBoundOf(path, format_.codec.str())) {}

    [[nodiscard]] std::uint64_t sampleCount() const { return expected_.sampleCount(); }
    [[nodiscard]] double bound() const { return bound_; }
    [[nodiscard]] Aud::Metadata const& format() const { return format_; }

    [[nodiscard]] Deviation compare(std::uint32_t channel, Block const& block) const {
        std::string const read = sound_.read(firstChannel_ + channel, block.first, block.count);
        std::string const expected = expected_.samples(channel, block.first, block.count);
        return read == expected ? Deviation{0.0, 0.0, block.count}
                                : deviationOf(read, expected, format_.sampleFormat);
    }
    /// All channels of blocks from anywhere, each time in another order; the first and the last block too.
    [[nodiscard]] Deviation compareAnywhere(std::uint32_t seed, std::uint32_t count) const {
        std::mt19937 random(seed);
        std::vector<std::uint32_t> channels(format_.channels);
        std::iota(channels.begin(), channels.end(), 0U);
        Deviation all;
        for (std::uint32_t i = 0; i < count; ++i) {
            Block const block = anyBlock(random, i);
            std::shuffle(channels.begin(), channels.end(), random);
            for (std::uint32_t const channel : channels) {
                all.add(compare(channel, block));
            }
        }
        return all;
    }

private:
    static std::uint32_t channelsBefore(OpenSound const& sound, std::uint32_t stream) {
        auto const& streams = sound.metadata().audioStreams;
        return std::accumulate(
            streams.begin(), streams.begin() + stream, 0U,
            [](std::uint32_t sum, Aud::Metadata const& each) { return sum + each.channels; });
    }
    [[nodiscard]] Block anyBlock(std::mt19937& random, std::uint32_t number) const {
        constexpr std::array<std::uint32_t, 4> sizes = {usualBlock, frameBlock, 1, 0};
        std::uint32_t const size = sizes[random() % sizes.size()];
        std::uint64_t const wanted = size != 0 ? size : 1 + random() % longestBlock;
        std::uint64_t const count = std::min(wanted, sampleCount());
        std::uint64_t const last = sampleCount() - count;
        std::uint64_t const first = number == 0 ? 0 : number == 1 ? last : random() % (last + 1);
        return {first, static_cast<std::uint32_t>(count)};
    }

    OpenSound const& sound_;
    Aud::Metadata const format_;
    std::uint32_t const firstChannel_;
    DecodedSound const expected_;
    double const bound_;
};

class FFmpegSound : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        if (!sound_.isOpen()) {
            ASSERT_EQ(decodedSamples(GetParam(), "s16le"), "") << "there is sound that wasn't opened";
            return;
        }
        for (std::uint32_t stream = 0; stream < sound_.metadata().audioStreams.size(); ++stream) {
            streams_.push_back(std::make_unique<StreamUnderTest>(sound_, GetParam(), stream));
        }
    }

    void judge(StreamUnderTest const& stream, Deviation const& deviation) {
        if (stream.bound() > 0.0) {
            std::cout << stream.format().codec.c_str() << ": off by " << deviation.rootMeanSquare()
                      << " (root mean square), " << deviation.largest << " at most\n";
        }
        EXPECT_LE(deviation.rootMeanSquare(), stream.bound()) << "largest: " << deviation.largest;
    }

    OpenSound const sound_{GetParam()};
    std::vector<std::unique_ptr<StreamUnderTest>> streams_;
};

TEST_P(FFmpegSound, LastsAsLongAsItIsHeard) {
    std::uint64_t longest = 0;
    for (auto const& stream : streams_) {
        longest = std::max(longest, stream->sampleCount());
    }
    EXPECT_EQ(sound_.isOpen() ? sound_.metadata().audioSampleCount : 0, longest);
}

TEST_P(FFmpegSound, IsWhatIsHeardFromFrameToFrame) {
    for (auto const& stream : streams_) {
        Deviation all;
        for (std::uint64_t first = 0; first < stream->sampleCount(); first += frameBlock) {
            auto const count = static_cast<std::uint32_t>(
                std::min<std::uint64_t>(frameBlock, stream->sampleCount() - first));
            for (std::uint32_t channel = 0; channel < stream->format().channels; ++channel) {
                all.add(stream->compare(channel, {first, count}));
            }
        }
        judge(*stream, all);
    }
}

TEST_P(FFmpegSound, IsWhatIsHeardFromAnywhere) {
    std::cout << "seed " << seed() << '\n';
    for (auto const& stream : streams_) {
        judge(*stream, stream->compareAnywhere(seed(), blockCount));
    }
}

TEST_P(FFmpegSound, IsWhatIsHeardOnEightThreads) {
    for (auto const& stream : streams_) {
        std::mutex lock;
        Deviation all;
        {
            std::vector<std::jthread> threads;
            for (std::uint32_t number = 1; number <= threadCount; ++number) {
                threads.emplace_back([&, number] {
                    Deviation const own = stream->compareAnywhere(number, blockCount / threadCount / 4);
                    std::scoped_lock const guard(lock);
                    all.add(own);
                });
            }
        }
        judge(*stream, all);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, FFmpegSound, testing::ValuesIn(soundFiles()),
                         [](testing::TestParamInfo<std::string> const& file) {
                             return std::to_string(file.index) + "_" + testNameOf(file.param);
                         });

}  // namespace
}  // namespace test
