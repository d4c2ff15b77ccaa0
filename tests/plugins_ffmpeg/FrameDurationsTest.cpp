#include "plugins/ffmpeg/FrameDurations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/plugins_ffmpeg/FramesAt.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;
using testing::ElementsAre;

constexpr AVRational milliseconds{1, 1000};

/// Runs as text: frames and the units of each.
std::vector<std::string> textOf(FrameDurations const& durations) {
    std::vector<std::string> text;
    for (TimeToSampleItem const& run : durations.runs) {
        text.push_back(std::to_string(run.sampleCount) + " x " + std::to_string(run.sampleDuration));
    }
    return text;
}

FrameDurations durationsOf(std::vector<int64_t> const& times, int64_t end,
                           AVRational timeBase = milliseconds) {
    return FrameDurations::of(framesAt(times), timeBase, end);
}

TEST(FrameDurations, PutsFramesOfOneDurationIntoOneRun) {
    EXPECT_THAT(textOf(durationsOf({0, 10, 20, 50, 80}, 90)), ElementsAre("2 x 10", "2 x 30", "1 x 10"));
}

TEST(FrameDurations, CountsFromTheFirstFrame) {
    EXPECT_THAT(textOf(durationsOf({500, 510, 540}, 570)), ElementsAre("1 x 10", "2 x 30"));
}

TEST(FrameDurations, ShowsTheLastFrameAsLongAsMostWhereNothingSaysItsEnd) {
    EXPECT_THAT(textOf(durationsOf({0, 10, 20, 50}, AV_NOPTS_VALUE)),
                ElementsAre("2 x 10", "1 x 30", "1 x 10"));
}

TEST(FrameDurations, TakesNoEndThatLiesBeforeTheLastFrame) {
    EXPECT_THAT(textOf(durationsOf({0, 10, 20, 50}, 40)), ElementsAre("2 x 10", "1 x 30", "1 x 10"));
}

TEST(FrameDurations, GivesFramesOfOneTimeAUnitEach) {
    EXPECT_THAT(textOf(durationsOf({0, 0, 0, 30}, 40)), ElementsAre("2 x 1", "1 x 28", "1 x 10"));
}

TEST(FrameDurations, KeepsAWholeTimeBaseAsItsScale) {
    FrameDurations const durations = durationsOf({0, 2, 3}, 5, {1001, 30000});
    EXPECT_EQ(durations.timeScale, 30000U);
    EXPECT_THAT(textOf(durations), ElementsAre("1 x 2002", "1 x 1001", "1 x 2002"));
}

TEST(FrameDurations, TakesCoarserUnitsThanNanoseconds) {
    FrameDurations const durations = durationsOf({0, 1'000'000, 3'000'000}, 4'000'000, {1, 1'000'000'000});
    EXPECT_EQ(durations.timeScale, 1'000'000U);
    EXPECT_THAT(textOf(durations), ElementsAre("1 x 1000", "1 x 2000", "1 x 1000"));
}

TEST(FrameDurations, TakesMillisecondsWhereAFrameLastsForHours) {
    FrameDurations const durations = durationsOf({0, 1, 100'000}, 100'001, {1, 1});
    EXPECT_EQ(durations.timeScale, 1U);
    FrameDurations const fine = durationsOf({0, 1'000'000, 100'000'000'000}, 100'001'000'000, {1, 1'000'000});
    EXPECT_EQ(fine.timeScale, 1000U);
    EXPECT_THAT(textOf(fine), ElementsAre("1 x 1000", "1 x 99999000", "1 x 1000"));
}

/// 5 frames of 1000 million units: more than 32 bits.
TEST(FrameDurations, SplitsARunWhoseLengthWouldWrap) {
    constexpr int64_t gap = 1'000'000'000;
    EXPECT_THAT(textOf(durationsOf({0, gap, 2 * gap, 3 * gap, 4 * gap}, 5 * gap, {1, 1'000'000})),
                ElementsAre("4 x 1000000000", "1 x 1000000000"));
}

TEST(FrameDurations, AddsUpToTheWholeLength) {
    EXPECT_EQ(durationsOf({0, 10, 20, 50, 80}, 90).total(), 90U);
}

TEST(FrameDurations, KnowsAFrameWithoutATime) {
    EXPECT_TRUE(hasAllTimes(framesAt({0, 10})));
    EXPECT_FALSE(hasAllTimes(framesAt({0, AV_NOPTS_VALUE, 10})));
}

TEST(FrameDurations, CountsEachDurationOnceFromTheShortest) {
    std::vector<DurationCount> const histogram = histogramOf(durationsOf({0, 30, 40, 70, 80}, 110));
    ASSERT_EQ(histogram.size(), 2U);
    EXPECT_DOUBLE_EQ(histogram[0].seconds, 0.01);
    EXPECT_EQ(histogram[0].frames, 2U);
    EXPECT_DOUBLE_EQ(histogram[1].seconds, 0.03);
    EXPECT_EQ(histogram[1].frames, 3U);
}

TEST(FrameDurations, RoundsToMillisecondsWhereTooManyDiffer) {
    std::vector<int64_t> times{0};
    for (int64_t gap = 10'000; gap < 10'060; ++gap) {
        times.push_back(times.back() + gap);
    }
    std::vector<DurationCount> const histogram =
        histogramOf(durationsOf(times, times.back() + 20'000, {1, 1'000'000}));
    ASSERT_EQ(histogram.size(), 2U);
    EXPECT_EQ(histogram[0].frames, 60U);
    EXPECT_DOUBLE_EQ(histogram[1].seconds, 0.02);
}

}  // namespace
}  // namespace test
