/// WAVE files on the whole road, beside what the program `ffmpeg` decodes of them.
#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <random>
#include <thread>

#include "tests/real/OpenSound.h"
#include "tests/real/RealMedia.h"
#include "toolkit/sound/SampleFormat.h"

namespace test {
namespace {

constexpr std::uint32_t blockCount = turns(1000);
constexpr std::uint32_t longestBlock = turns(5000);
constexpr std::uint32_t threadCount = 8;

/// What `ffmpeg` calls a form of samples.
std::string nameOfForm(std::uint32_t format) {
    std::string const name = Aud::nameOf(static_cast<Aud::eSampleFormat>(format));
    return format == Aud::sampleU8 ? name : name + "le";
}

/// A part of a file.
struct Block {
    std::uint64_t first;
    std::uint32_t count;
};

class WaveSound : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        ASSERT_TRUE(sound_.isOpen());
        ASSERT_NE(sound_.description().find(" in WAVE ("), std::string::npos) << sound_.description();
        stream_ = sound_.metadata().audioStreams.at(0);
        total_ = sound_.metadata().audioSampleCount;
        decoded_ = decodedSamples(GetParam(), nameOfForm(stream_.sampleFormat));
        ASSERT_EQ(total_ * stream_.channels * stream_.bytesPerSample, decoded_.size());
    }

    /// The samples of one channel, out of those that `ffmpeg` has decoded.
    [[nodiscard]] std::string expected(std::uint32_t channel, Block const& block) const {
        std::string bytes;
        for (std::uint64_t sample = block.first; sample < block.first + block.count; ++sample) {
            bytes.append(decoded_, (sample * stream_.channels + channel) * stream_.bytesPerSample,
                         stream_.bytesPerSample);
        }
        return bytes;
    }
    [[nodiscard]] bool isRight(std::uint32_t channel, Block const& block) const {
        return sound_.read(channel, block.first, block.count) == expected(channel, block);
    }

    [[nodiscard]] Block anyBlock(std::mt19937& random) const {
        std::uint64_t const first = random() % total_;
        std::uint64_t const most = std::min<std::uint64_t>(longestBlock, total_ - first);
        return {first, static_cast<std::uint32_t>(1 + random() % most)};
    }
    /// The first and the last block of the file, and blocks from anywhere.
    [[nodiscard]] std::vector<Block> blocks(std::uint32_t seed, std::uint32_t count) const {
        std::mt19937 random(seed);
        std::uint32_t const some = static_cast<std::uint32_t>(std::min<std::uint64_t>(1920, total_));
        std::vector<Block> chosen{{0, some}, {total_ - some, some}, {total_ - 1, 1}};
        while (chosen.size() < count) {
            chosen.push_back(anyBlock(random));
        }
        return chosen;
    }
    /// Reads all channels of each block in an order of its own; how many reads were wrong.
    [[nodiscard]] std::uint32_t readAll(std::uint32_t seed, std::uint32_t count) const {
        std::mt19937 random(seed);
        std::vector<std::uint32_t> channels(stream_.channels);
        std::iota(channels.begin(), channels.end(), 0U);
        std::uint32_t wrong = 0;
        for (Block const& block : blocks(seed, count)) {
            std::shuffle(channels.begin(), channels.end(), random);
            for (std::uint32_t const channel : channels) {
                wrong += isRight(channel, block) ? 0 : 1;
            }
        }
        return wrong;
    }

    OpenSound const sound_{GetParam()};
    Aud::Metadata stream_;
    std::uint64_t total_ = 0;
    std::string decoded_;
};

TEST_P(WaveSound, EveryChannelIsThatOfTheDecoder) {
    for (std::uint32_t channel = 0; channel < stream_.channels; ++channel) {
        ASSERT_TRUE(isRight(channel, {0, static_cast<std::uint32_t>(total_)})) << "channel " << channel;
    }
}

TEST_P(WaveSound, BlocksFromAnywhereAreThoseOfTheDecoder) {
    EXPECT_EQ(readAll(20261121, blockCount), 0U);
}

TEST_P(WaveSound, BlocksFromAnywhereAreRightOnEightThreads) {
    std::atomic<std::uint32_t> wrong{0};
    {
        std::vector<std::jthread> threads;
        for (std::uint32_t seed = 1; seed <= threadCount; ++seed) {
            threads.emplace_back([&, seed] { wrong += readAll(seed, blockCount / threadCount); });
        }
    }
    EXPECT_EQ(wrong, 0U);
}

TEST_P(WaveSound, TextsAreThoseThatFfprobeShows) {
    for (std::string const key : {"time_reference", "umid", "originator_reference", "date", "creation_time",
                                  "encoded_by", "coding_history", "encoder"}) {
        LightweightString<char> text;
        static_cast<void>(sound_.metadata().extraConfig.in(LightweightString<char>("tag." + key), text));
        EXPECT_EQ(text.str(), shownTag(GetParam(), key)) << key;
    }
}

TEST(CompressedWave, IsReadByAnother) {
    std::string const path = std::string(PLAYFILE_TEST_MEDIA_DIR) + "/alaw-2ch.wav";
    OpenSound const sound(path);
    ASSERT_TRUE(sound.isOpen());
    EXPECT_EQ(sound.description(), "pcm_alaw in wav");
    std::string const decoded = decodedSamples(path, "s16le");
    std::string const left = sound.read(0, 0, 1000);
    ASSERT_EQ(left.size(), 2000U);
    for (std::size_t sample = 0; sample < 1000; ++sample) {
        ASSERT_EQ(left.substr(sample * 2, 2), decoded.substr(sample * 4, 2)) << sample;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, WaveSound, testing::ValuesIn(waveFiles()),
                         [](testing::TestParamInfo<std::string> const& file) {
                             return std::to_string(file.index) + "_" + testNameOf(file.param);
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(WaveSound);

}  // namespace
}  // namespace test
