#include "video/VariableFrameRateHandler.h"

#include <gtest/gtest.h>

#include <thread>

#include "toolkit/services/TimedTask.h"

namespace {

using Table = std::vector<TimeToSampleItem>;

constexpr unsigned timeScale = 25000;
constexpr unsigned nominalDuration = 1000;

Table const oneRun{{100, 1000}};
Table const twoRuns{{100, 1000}, {50, 2000}};

/// A map of 25 frames a second.
class PalMap : public VariableFrameRateHandler {
public:
    explicit PalMap(Table const& table, unsigned duration = nominalDuration)
        : VariableFrameRateHandler(table, 0, timeScale, duration, 25.0) {}
};

TEST(VariableFrameRate, ATableOfOneRunMapsByTheNominalDuration) {
    PalMap map(oneRun);
    EXPECT_EQ(map.mapVFRSample(40), 40U);
}

TEST(VariableFrameRate, ATableOfOneRunIsNoBound) {
    PalMap map(oneRun);
    EXPECT_EQ(map.mapVFRSample(250), 250U);
}

TEST(VariableFrameRate, ATableOfOneRunIgnoresTheRunsOwnDuration) {
    PalMap map({{100, 7}});
    EXPECT_EQ(map.mapVFRSample(40), 40U);
}

TEST(VariableFrameRate, ATableOfOneRunRoundsHalvesAwayFromZero) {
    PalMap map(oneRun, 2000);
    EXPECT_EQ(map.mapVFRSample(1), 1U);
    EXPECT_EQ(map.mapVFRSample(2), 1U);
    EXPECT_EQ(map.mapVFRSample(3), 2U);
}

TEST(VariableFrameRate, AResultIsCutTo32Bits) {
    PalMap map(oneRun, 1);
    EXPECT_EQ(map.mapVFRSample(4'294'968), static_cast<std::uint32_t>(4'294'968'000ULL));
}

TEST(VariableFrameRate, ALongerTableMapsEachRunAtItsOwnRate) {
    PalMap map(twoRuns);
    EXPECT_EQ(map.mapVFRSample(0), 0U);
    EXPECT_EQ(map.mapVFRSample(99), 99U);
    EXPECT_EQ(map.mapVFRSample(150), 125U);
}

TEST(VariableFrameRate, ATimeAtARunsEndGivesTheNextRunsFirstSample) {
    PalMap map(twoRuns);
    EXPECT_EQ(map.mapVFRSample(100), 100U);
}

TEST(VariableFrameRate, ATimeAtARunsEndGivesTheSameFromBehind) {
    PalMap map(twoRuns);
    static_cast<void>(map.mapVFRSample(150));
    EXPECT_EQ(map.mapVFRSample(100), 100U);
}

TEST(VariableFrameRate, AHalfInsideARunRoundsUp) {
    PalMap map(twoRuns);
    EXPECT_EQ(map.mapVFRSample(101), 101U);
}

TEST(VariableFrameRate, TheLastRunGoesOnPastTheTable) {
    PalMap map(twoRuns);
    EXPECT_EQ(map.mapVFRSample(200), 150U);
    EXPECT_EQ(map.mapVFRSample(300), 200U);
    EXPECT_EQ(map.mapVFRSample(400), 250U);
}

TEST(VariableFrameRate, StepsBack) {
    PalMap map(twoRuns);
    EXPECT_EQ(map.mapVFRSample(150), 125U);
    EXPECT_EQ(map.mapVFRSample(10), 10U);
}

TEST(VariableFrameRate, AnyOrderGivesTheSame) {
    Table const table{{3, 1000}, {7, 500}, {1, 9000}, {20, 1234}, {4, 1}};
    PalMap onward(table);
    PalMap jumping(table);
    for (unsigned frame = 0; frame < 100; ++frame) {
        static_cast<void>(jumping.mapVFRSample(frame * 37 % 101));
        EXPECT_EQ(jumping.mapVFRSample(frame), onward.mapVFRSample(frame)) << frame;
    }
}

TEST(VariableFrameRate, ARunOfNoSamplesIsSteppedOver) {
    PalMap map({{10, 1000}, {0, 5000}, {10, 1000}});
    EXPECT_EQ(map.mapVFRSample(15), 15U);
    EXPECT_EQ(map.mapVFRSample(5), 5U);
}

TEST(VariableFrameRate, ATimeThatStopsInARunOfNoSamplesIsHarmless) {
    PalMap map({{0, 1000}, {10, 1000}});
    EXPECT_EQ(map.mapVFRSample(0), 0U);
}

TEST(VariableFrameRate, ARunsLengthWrapsAt32Bits) {
    PalMap const map({{0x10000, 0x10001}, {10, 1000}});
    EXPECT_EQ(map.getDuration(), 0x10000U + 10000U);
}

TEST(VariableFrameRate, ARunWhoseLengthWrapsIsMappedByWhatIsLeft) {
    PalMap map({{0x10000, 0x10001}, {10, 1000}});
    EXPECT_EQ(map.mapVFRSample(65), 65000U);
    EXPECT_EQ(map.mapVFRSample(68), 0x10000U + 2);
    EXPECT_EQ(map.mapVFRSample(65), 65000U);
}

/// 2^32 + 32704 units behind the start of the last run, of which 32704 count.
TEST(VariableFrameRate, ATimeInsideTheLastRunIsCutTo32Bits) {
    PalMap map(twoRuns);
    EXPECT_EQ(map.mapVFRSample(4'295'100), 100U + 16);
}

TEST(VariableFrameRate, TellsTheDurationOfTheWholeTable) {
    EXPECT_EQ(PalMap(twoRuns).getDuration(), 200000U);
    EXPECT_EQ(PalMap({}).getDuration(), 0U);
}

TEST(VariableFrameRate, TheDurationIsA64BitSum) {
    EXPECT_EQ(PalMap({{0xFFFFFFFF, 1}, {0xFFFFFFFF, 1}}).getDuration(), 2 * 0xFFFFFFFFULL);
}

TEST(VariableFrameRate, ATelevisionRateIsTakenExactly) {
    VariableFrameRateHandler map({{1000, 1001}, {1000, 1001}}, 0, 30000, 1001, 30000.0 / 1001.0);
    for (unsigned frame = 0; frame < 2000; ++frame) {
        EXPECT_EQ(map.mapVFRSample(frame), frame);
    }
}

TEST(VariableFrameRate, WhatCannotBeMappedIsSampleZero) {
    VariableFrameRateHandler still(twoRuns, 0, timeScale, nominalDuration, 0.0);
    EXPECT_EQ(PalMap({}).mapVFRSample(7), 0U);
    EXPECT_EQ(PalMap(oneRun, 0).mapVFRSample(7), 0U);
    EXPECT_EQ(still.mapVFRSample(7), 0U);
}

TEST(VariableFrameRate, IsTimedUnderItsName) {
    PalMap map(oneRun);
    static_cast<void>(map.mapVFRSample(0));
    static_cast<void>(map.mapVFRSample(1));
    std::size_t found = 0;
    for (Ox::Ptr<TimedTaskBase> const& task : TimedTaskManager::getAll()) {
        found += task->getName() == LightweightString<char>("MapVFR") ? 1 : 0;
    }
    EXPECT_EQ(found, 1U);
}

TEST(VariableFrameRate, ManyThreadsMayAskAtOnce) {
    PalMap map(twoRuns);
    PalMap alone(twoRuns);
    std::vector<unsigned> expected;
    for (unsigned frame = 0; frame < 400; ++frame) {
        expected.push_back(alone.mapVFRSample(frame));
    }
    std::vector<std::jthread> threads;
    for (unsigned thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&map, &expected, thread] {
            for (unsigned i = 0; i < 2000; ++i) {
                unsigned const frame = (i * 31 + thread) % 400;
                EXPECT_EQ(map.mapVFRSample(frame), expected[frame]);
            }
        });
    }
}

}  // namespace
