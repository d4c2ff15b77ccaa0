/// Samples at the ends of a decoded frame that are to be silent.
#include <algorithm>
#include <cstddef>

#include "tests/audio/CompressedFixture.h"

namespace {

class SkippedSamplesTest : public CompressedFixture {
protected:
    SkippedSamplesTest() : CompressedFixture(true) {}

    /// The samples of a read from the stream's start on.
    std::vector<std::uint16_t> readSamples(unsigned count, unsigned channel = 0) {
        return samplesOf(read({.channel = channel, .count = count})->buffer);
    }
    static std::size_t zeroes(std::vector<std::uint16_t> const& samples, std::size_t first,
                              std::size_t count) {
        auto const begin = samples.begin() + static_cast<std::ptrdiff_t>(first);
        return static_cast<std::size_t>(std::count(begin, begin + static_cast<std::ptrdiff_t>(count), 0));
    }
};

TEST_F(SkippedSamplesTest, AreBlankedAtTheStartOfTheFrameInEveryChannel) {
    packets[0] = {.skipStart = 10};
    openWithDecoder();
    for (unsigned channel = 0; channel < 2; ++channel) {
        auto const samples = readSamples(100, channel);
        EXPECT_EQ(zeroes(samples, 0, 10), 10U);
        EXPECT_EQ(zeroes(samples, 10, 90), 0U);
    }
}

TEST_F(SkippedSamplesTest, AreBlankedAtTheStartOfALaterFrame) {
    packets[1] = {.skipStart = 10};
    openWithDecoder();
    auto const samples = readSamples(200);
    EXPECT_EQ(zeroes(samples, 0, 100), 0U);
    EXPECT_EQ(zeroes(samples, 100, 10), 10U);
    EXPECT_EQ(zeroes(samples, 110, 90), 0U);
}

TEST_F(SkippedSamplesTest, AreBlankedAtTheEndOfTheFrameInEveryChannel) {
    packets[0] = {.skipEnd = 10};
    openWithDecoder();
    for (unsigned channel = 0; channel < 2; ++channel) {
        auto const samples = readSamples(100, channel);
        EXPECT_EQ(zeroes(samples, 0, 90), 0U);
        EXPECT_EQ(zeroes(samples, 90, 10), 10U);
    }
}

TEST_F(SkippedSamplesTest, AreBlankedAtBothEnds) {
    packets[0] = {.skipStart = 20, .skipEnd = 30};
    openWithDecoder();
    auto const samples = readSamples(100);
    EXPECT_EQ(zeroes(samples, 0, 20), 20U);
    EXPECT_EQ(zeroes(samples, 20, 50), 0U);
    EXPECT_EQ(zeroes(samples, 70, 30), 30U);
}

TEST_F(SkippedSamplesTest, AreToldToTheDecoderAsWell) {
    packets[0] = {.skipStart = 20, .skipEnd = 30};
    openWithDecoder();
    readSamples(100);
    EXPECT_EQ(decoder->decodes[0].skipStart, 20U);
    EXPECT_EQ(decoder->decodes[0].skipEnd, 30U);
}

TEST_F(SkippedSamplesTest, AreStillCounted) {
    packets[0] = {.skipStart = 100};
    openWithDecoder();
    EXPECT_EQ(readFrames(0)->buffer.getSampleCount(), 100U);
}

TEST_F(SkippedSamplesTest, AreAtMostWhatIsUsed) {
    decode({30});
    packets[0] = {.skipStart = 1000};
    packets[1] = {.result = 7};
    openWithDecoder();
    AudioRequestPtr const request = readFrames(0);
    EXPECT_EQ(samplesOf(request->buffer), std::vector<std::uint16_t>(30, 0));
    EXPECT_EQ(bytesBehind(request->buffer).front(), scribble);
}

/// The first frame gives less than a frame: its start is that of the buffer, not one before it.
TEST_F(SkippedSamplesTest, BeginWithTheBufferWhereItHoldsLessThanAFrame) {
    decode({30});
    packets[0] = {.skipStart = 5};
    packets[1] = {.result = 7};
    openWithDecoder();
    auto const samples = readSamples(100);
    EXPECT_EQ(zeroes(samples, 0, 5), 5U);
    EXPECT_EQ(zeroes(samples, 5, 25), 0U);
}

TEST_F(SkippedSamplesTest, StayInsideTheBufferHoweverManyTheyAre) {
    packets[1] = {.skipStart = 0xFFFFFFFF, .skipEnd = 0xFFFFFFFF};
    openWithDecoder();
    auto const samples = readSamples(200);
    EXPECT_EQ(zeroes(samples, 0, 100), 0U);
    EXPECT_EQ(zeroes(samples, 100, 100), 100U);
}

TEST_F(SkippedSamplesTest, DoNotReachBehindTheEndOfAFullBuffer) {
    packets[1] = {.skipStart = 0xFFFFFFFF};
    openWithDecoder();
    auto const samples = readSamples(150);
    EXPECT_EQ(zeroes(samples, 0, 100), 0U);
    EXPECT_EQ(zeroes(samples, 100, 100), 100U);
}

TEST_F(SkippedSamplesTest, AtTheEndAreAtMostTheSpaceThatIsLeft) {
    packets[1] = {.skipEnd = 10};
    openWithDecoder();
    EXPECT_EQ(zeroes(readSamples(150), 0, 200), 0U) << "the buffer was full";
}

TEST_F(SkippedSamplesTest, AtTheEndAreAtMostWhatIsUsed) {
    decode({30});
    packets[0] = {.skipEnd = 90};
    packets[1] = {.result = 7};
    openWithDecoder();
    EXPECT_EQ(readSamples(100), std::vector<std::uint16_t>(30, 0));
}

TEST_F(SkippedSamplesTest, AreCountedByWholeBytesOfTheirBits) {
    packets[0] = {.skipStart = 10};
    openWithDecoder();
    file->streams[0].bitsPerSample = 15;
    std::vector<std::uint16_t> expected = decodedFrames(0, 1, 0);
    std::fill_n(expected.begin() + 50, 5, 0);
    EXPECT_EQ(readSamples(100), expected) << "10 bytes, 100 bytes before the end";
}

}  // namespace
