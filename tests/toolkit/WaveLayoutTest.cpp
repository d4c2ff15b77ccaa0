#include "toolkit/sound/WaveLayout.h"

#include <gtest/gtest.h>

#include <cstring>

#include "toolkit/sound/SampleFormat.h"

namespace {

Aud::Metadata formatOf(Aud::eSampleFormat sampleFormat) {
    Aud::Metadata format;
    format.sampleFormat = sampleFormat;
    format.bytesPerSample = Aud::bytesPerSampleOf(sampleFormat);
    format.sampleRate = 48000.0;
    return format;
}

std::vector<std::uint8_t> header(Aud::eSampleFormat format, std::uint32_t channels, std::uint64_t samples) {
    Aud::WaveLayout const layout{formatOf(format), channels, {}, false};
    return layout.header(samples * layout.bytesPerFrame());
}

std::string codeAt(std::vector<std::uint8_t> const& bytes, std::size_t offset) {
    return {reinterpret_cast<char const*>(bytes.data()) + offset, 4};
}

template <class Number>
Number numberAt(std::vector<std::uint8_t> const& bytes, std::size_t offset) {
    Number number{};
    std::memcpy(&number, bytes.data() + offset, sizeof(number));
    return number;
}

TEST(WaveLayout, IsPlainForTwoChannelsOf16Bits) {
    std::vector<std::uint8_t> const bytes = header(Aud::sampleS16, 2, 1000);
    ASSERT_EQ(bytes.size(), 44U);
    EXPECT_EQ(codeAt(bytes, 0), "RIFF");
    EXPECT_EQ(numberAt<std::uint32_t>(bytes, 4), 36U + 4000U);
    EXPECT_EQ(numberAt<std::uint16_t>(bytes, 20), 1U);
    EXPECT_EQ(numberAt<std::uint32_t>(bytes, 40), 4000U);
}

TEST(WaveLayout, SaysThatSamplesAreFloatingPoint) {
    EXPECT_EQ(numberAt<std::uint16_t>(header(Aud::sampleF32, 1, 10), 20), 3U);
}

TEST(WaveLayout, IsExtensibleForManyChannels) {
    std::vector<std::uint8_t> const bytes = header(Aud::sampleS24, 6, 10);
    EXPECT_EQ(numberAt<std::uint16_t>(bytes, 20), 0xFFFEU);
    EXPECT_EQ(numberAt<std::uint16_t>(bytes, 22), 6U);
    EXPECT_EQ(numberAt<std::uint16_t>(bytes, 32), 18U);
}

TEST(WaveLayout, CountsThePadByteOfAnOddLength) {
    std::vector<std::uint8_t> const bytes = header(Aud::sampleU8, 1, 3);
    EXPECT_EQ(numberAt<std::uint32_t>(bytes, 4), 36U + 4U);
    EXPECT_EQ(numberAt<std::uint32_t>(bytes, 40), 3U);
}

TEST(WaveLayout, StatesLongSizesAbove4GiB) {
    std::uint64_t const samples = std::uint64_t{1} << 30U;
    std::vector<std::uint8_t> const bytes = header(Aud::sampleS32, 2, samples);
    EXPECT_EQ(codeAt(bytes, 0), "RF64");
    EXPECT_EQ(numberAt<std::uint32_t>(bytes, 4), 0xFFFFFFFFU);
    EXPECT_EQ(codeAt(bytes, 12), "ds64");
    EXPECT_EQ(numberAt<std::uint64_t>(bytes, 20), bytes.size() - 8 + samples * 8);
    EXPECT_EQ(numberAt<std::uint64_t>(bytes, 28), samples * 8);
    EXPECT_EQ(numberAt<std::uint64_t>(bytes, 36), samples);
    EXPECT_EQ(numberAt<std::uint32_t>(bytes, bytes.size() - 4), 0xFFFFFFFFU);
}

TEST(WaveLayout, TakesTheShortFormUpToTheLastByteThatFits) {
    std::uint64_t const most = 0xFFFFFFFFU - 36U;
    EXPECT_EQ(codeAt(header(Aud::sampleU8, 1, most - 1), 0), "RIFF");
    EXPECT_EQ(codeAt(header(Aud::sampleU8, 1, most), 0), "RF64");
}

/// A file that may become long.
Aud::WaveLayout growingLayout() {
    return {formatOf(Aud::sampleS24), 2, {'n', 'o', 't', 'e', 2, 0, 0, 0, 'h', 'i'}, true};
}

TEST(WaveLayout, HasTheSameSizeShortAndLongWhereItLeavesRoom) {
    std::vector<std::uint8_t> const shortOne = growingLayout().header(600);
    std::vector<std::uint8_t> const longOne = growingLayout().header(std::uint64_t{6} << 32U);
    EXPECT_EQ(shortOne.size(), longOne.size());
    EXPECT_EQ(codeAt(shortOne, 0), "RIFF");
    EXPECT_EQ(codeAt(shortOne, 12), "JUNK");
    EXPECT_EQ(numberAt<std::uint32_t>(shortOne, 4), shortOne.size() - 8 + 600);
    EXPECT_EQ(codeAt(longOne, 0), "RF64");
    EXPECT_EQ(codeAt(longOne, 12), "ds64");
}

TEST(WaveLayout, PutsChunksBeforeTheFormat) {
    std::vector<std::uint8_t> const bytes = growingLayout().header(0);
    EXPECT_EQ(codeAt(bytes, 48), "note");
    EXPECT_EQ(codeAt(bytes, 58), "fmt ");
}

}  // namespace
