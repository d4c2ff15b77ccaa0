#include "tools/playfile/Levels.h"

#include <gtest/gtest.h>

#include <cmath>

#include "toolkit/sound/SampleFormat.h"

namespace {

using cli::sampleValue;

double valueOf(std::vector<std::uint8_t> const& bytes, Aud::eSampleFormat format) {
    return sampleValue(bytes.data(), format);
}

cli::ChannelRange rangeOf(std::uint64_t count) {
    cli::ChannelRange range;
    range.format.sampleFormat = Aud::sampleS16;
    range.format.bytesPerSample = 2;
    range.count = count;
    return range;
}

TEST(SampleValue, ReadsEveryForm) {
    EXPECT_EQ(valueOf({0}, Aud::sampleU8), -1.0);
    EXPECT_EQ(valueOf({128}, Aud::sampleU8), 0.0);
    EXPECT_EQ(valueOf({0, 0x80}, Aud::sampleS16), -1.0);
    EXPECT_EQ(valueOf({0, 0, 0x40}, Aud::sampleS24), 0.5);
    EXPECT_EQ(valueOf({0, 0, 0, 0xC0}, Aud::sampleS32), -0.5);
    EXPECT_EQ(valueOf({0, 0, 0, 0x3F}, Aud::sampleF32), 0.5);
    EXPECT_EQ(valueOf({0, 0, 0, 0, 0, 0, 0xE0, 0xBF}, Aud::sampleF64), -0.5);
    EXPECT_EQ(valueOf({1, 2, 3, 4}, Aud::sampleUnknown), 0.0);
}

TEST(Levels, PeakAndRmsCoverAllBlocks) {
    std::vector<cli::ChannelRange> const ranges{rangeOf(4)};
    cli::LevelSink sink(ranges);
    std::int16_t const loud[]{-16384, 0};
    std::int16_t const soft[]{8192, 0};
    sink.take({0, 2, true, soft, sizeof(soft)});
    sink.take({0, 0, true, loud, sizeof(loud)});
    cli::ChannelLevels const& levels = sink.channels().front();
    EXPECT_EQ(levels.samples, 4U);
    EXPECT_EQ(levels.peak, 0.5);
    EXPECT_NEAR(levels.rms(), std::sqrt((0.25 + 0.0625) / 4.0), 1e-12);
}

TEST(Levels, ABlockThatFailedChangesNothing) {
    std::vector<cli::ChannelRange> const ranges{rangeOf(4)};
    cli::LevelSink sink(ranges);
    sink.take({0, 0, false, nullptr, 0});
    EXPECT_EQ(sink.channels().front().samples, 0U);
    EXPECT_EQ(sink.channels().front().rms(), 0.0);
}

TEST(Levels, DecibelsAreBelowFullScale) {
    EXPECT_EQ(cli::asDecibels(1.0), 0.0);
    EXPECT_NEAR(cli::asDecibels(0.5), -6.02, 0.01);
    EXPECT_EQ(cli::asDecibels(0.0), -144.0);
}

TEST(Waveform, IsAsHighAsTheLevelsOfItsTime) {
    cli::ChannelLevels levels;
    levels.columns = {{0.0F, 0.0F}, {-1.0F, 1.0F}};
    cli::Picture const picture = drawWaveform(levels);
    ASSERT_EQ(picture.width(), 2U);
    EXPECT_NE(*picture.at(0, 0), *picture.at(1, 0));
    EXPECT_EQ(*picture.at(0, picture.height() / 2), *picture.at(1, 0));
    EXPECT_EQ(*picture.at(1, picture.height() - 1), *picture.at(1, 0));
}

}  // namespace
