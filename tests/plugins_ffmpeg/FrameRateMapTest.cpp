#include "plugins/ffmpeg/FrameRateMap.h"

#include <gtest/gtest.h>

#include "tests/plugins_ffmpeg/FramesAt.h"
#include "toolkit/services/Settings.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr AVRational milliseconds{1, 1000};

/// Ten frames of 40 ms, then five of 200 ms: 1.4 s.
FrameIndex framesOfTwoRates() {
    return framesAt({0, 40, 80, 120, 160, 200, 240, 280, 320, 360, 400, 600, 800, 1000, 1200});
}

StreamFacts factsOfTwoRates() {
    StreamFacts facts;
    facts.timeBase = milliseconds;
    facts.endTime = 1400;
    measureRates(facts, framesOfTwoRates(), {0, 1}, true);
    return facts;
}

class MapOfTwoRates : public testing::Test {
protected:
    std::unique_ptr<FrameRateMap> const map_ = FrameRateMap::of(framesOfTwoRates(), factsOfTwoRates());
};

TEST_F(MapOfTwoRates, CountsTheFramesThatTheFileFills) {
    ASSERT_TRUE(map_);
    EXPECT_EQ(map_->timelineCount(), 35U);
}

TEST_F(MapOfTwoRates, ShowsEachFrameOfItsOwnRate) {
    for (std::uint32_t frame = 0; frame < 10; ++frame) {
        EXPECT_EQ(map_->storedFrame(frame), frame);
    }
}

/// A frame that began less than half its length ago; the next one from then on.
TEST_F(MapOfTwoRates, RoundsAmongLongFrames) {
    EXPECT_EQ(map_->storedFrame(12), 10U);
    EXPECT_EQ(map_->storedFrame(13), 11U);
    EXPECT_EQ(map_->storedFrame(15), 11U);
}

TEST_F(MapOfTwoRates, HoldsTheLastFrameFromItsMiddleOn) {
    EXPECT_EQ(map_->storedFrame(32), 14U);
    EXPECT_EQ(map_->storedFrame(34), 14U);
}

TEST_F(MapOfTwoRates, ShowsTheLastFrameBehindTheEndAndBeforeTheBeginning) {
    EXPECT_EQ(map_->storedFrame(1'000'000), 14U);
    EXPECT_EQ(map_->storedFrame(static_cast<std::uint32_t>(-1)), 14U);
}

TEST(FrameRateMap, IsNotMadeForAConstantRate) {
    StreamFacts facts;
    facts.timeBase = milliseconds;
    FrameIndex const index = framesAt({0, 40, 80, 120});
    measureRates(facts, index, {0, 1}, true);
    EXPECT_FALSE(FrameRateMap::of(index, facts));
}

TEST(FrameRateMap, IsNotMadeWhereAFrameHasNoTime) {
    StreamFacts facts = factsOfTwoRates();
    EXPECT_FALSE(FrameRateMap::of(framesAt({0, AV_NOPTS_VALUE, 400}), facts));
}

TEST(FrameRateMap, IsNotMadeWhereStoredFramesAreWanted) {
    setConfigInt("useFrameRateMap", 0);
    EXPECT_FALSE(FrameRateMap::of(framesOfTwoRates(), factsOfTwoRates()));
    setConfigInt("useFrameRateMap", 1);
}

/// 2 ** 32 frames of a slow file would leave 64 bits on their way through the map.
TEST(FrameRateMap, NeverAsksTheTableBeyondItsEnd) {
    FrameDurations durations;
    durations.runs = {{1, 1'000'000}, {1, 2'000'000}};
    durations.timeScale = 1'000'000;
    FrameRateMap const map(durations, {60000, 1001}, 2);
    EXPECT_EQ(map.storedFrame(UINT32_MAX), 1U);
    EXPECT_EQ(map.timelineCount(), 180U);
}

}  // namespace
}  // namespace test
