#include "tools/playfile/SamplePosition.h"

#include <gtest/gtest.h>

#include "tools/playfile/CommandError.h"

namespace {

using cli::SamplePosition;
using cli::timecodeFrames;

constexpr Ox::FrameRate pal{25, 1};
constexpr Ox::FrameRate ntsc{30000, 1001};

std::uint64_t place(std::string const& text, cli::TimeScale const& scale = {pal, 0, 0}) {
    return SamplePosition::parse(text, "--from").asPlace(48000.0, scale);
}

TEST(SamplePosition, TakesSamplesAsTheyStand) {
    EXPECT_EQ(place("0"), 0U);
    EXPECT_EQ(place("18446744073709551615"), 18446744073709551615U);
}

TEST(SamplePosition, RoundsSecondsToTheNextSample) {
    EXPECT_EQ(place("2s"), 96000U);
    EXPECT_EQ(place("0.00001s"), 0U);
    EXPECT_EQ(place("0.00002s"), 1U);
}

TEST(SamplePosition, CountsTimeCodesInFrames) {
    EXPECT_EQ(place("00:00:01:12"), 48000U + 12U * 1920U);
}

TEST(SamplePosition, CountsAPlaceFromTheFilesStart) {
    EXPECT_EQ(place("01:00:00:01", {pal, 90000, 0}), 1920U);
}

TEST(SamplePosition, CountsALengthFromZero) {
    EXPECT_EQ(SamplePosition::parse("00:00:01:00", "--count").asLength(48000.0, {pal, 90000, 0}), 48000U);
}

TEST(SamplePosition, CountsAPlaceFromTheSampleAtWhichTheFileStarts) {
    EXPECT_EQ(place("00:00:01:00", {pal, 0, 40000}), 8000U);
}

TEST(SamplePosition, RefusesATimeCodeBeforeTheFilesFirstSample) {
    EXPECT_THROW(static_cast<void>(place("00:00:00:24", {pal, 0, 48000})), cli::CommandError);
}

TEST(SamplePosition, RefusesATimeCodeBeforeTheFilesStart) {
    EXPECT_THROW(static_cast<void>(place("00:59:59:24", {pal, 90000, 0})), cli::CommandError);
}

TEST(SamplePosition, RefusesATimeCodeWithoutARate) {
    EXPECT_THROW(static_cast<void>(place("00:00:00:01", {{0, 1}, 0, 0})), cli::CommandError);
}

TEST(SamplePosition, RefusesWhatIsNoPlace) {
    for (char const* const text : {"", "-1", "1.5", "s", "1.2.3s", "1e3s", "00:00:01", "00:00:01:00x",
                                   "00:60:00:00", "00:00:60:00", "0x10"}) {
        EXPECT_THROW(static_cast<void>(SamplePosition::parse(text, "--from")), cli::CommandError) << text;
    }
}

TEST(Timecode, LeavesOutTheDroppedNumbersOfMostMinutes) {
    EXPECT_EQ(timecodeFrames("00:00:59;29", ntsc), 1799U);
    EXPECT_EQ(timecodeFrames("00:01:00;02", ntsc), 1800U);
    EXPECT_EQ(timecodeFrames("00:10:00;00", ntsc), 17982U);
}

TEST(Timecode, WithoutDropCountsEveryNumber) {
    EXPECT_EQ(timecodeFrames("00:01:00:02", ntsc), 1802U);
}

TEST(Timecode, RefusesAFrameThatItsRateLacks) {
    EXPECT_THROW(static_cast<void>(timecodeFrames("00:00:00:25", pal)), cli::CommandError);
}

TEST(FrameRate, IsANumberOrAFraction) {
    EXPECT_EQ(cli::parseFrameRate("25"), pal);
    EXPECT_EQ(cli::parseFrameRate("30000/1001"), ntsc);
}

TEST(FrameRate, RefusesWhatIsNone) {
    for (char const* const text : {"", "0", "25/0", "25.0", "fast", "25/"}) {
        EXPECT_THROW(static_cast<void>(cli::parseFrameRate(text)), cli::CommandError) << text;
    }
}

}  // namespace
