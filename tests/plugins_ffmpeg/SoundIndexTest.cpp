#include "plugins/ffmpeg/SoundIndex.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace playfile_ffmpeg;

/// Packets that give so many samples each.
SoundIndex indexOf(std::vector<uint32_t> const& lengths, std::vector<bool> isStart = {}) {
    std::vector<SoundPacket> packets(lengths.size());
    for (size_t number = 0; number < lengths.size(); ++number) {
        packets[number].sampleCount = lengths[number];
    }
    return SoundIndex(std::move(packets), std::move(isStart), KeptSamples());
}

TEST(SoundIndex, LaysThePacketsOneBehindTheOther) {
    EXPECT_EQ(indexOf({100, 50, 70}).packet(2).firstSample, 150);
}

TEST(SoundIndex, FindsThePacketOfItsFirstAndItsLastSample) {
    SoundIndex const index = indexOf({100, 50, 70});
    EXPECT_EQ(index.packetWith(100), 1U);
    EXPECT_EQ(index.packetWith(149), 1U);
}

TEST(SoundIndex, PassesOverPacketsWithoutSamples) {
    EXPECT_EQ(indexOf({0, 0, 50}).packetWith(0), 2U);
}

TEST(SoundIndex, TakesTheLastPacketForWhatLiesBehindAll) {
    EXPECT_EQ(indexOf({100, 50}).packetWith(1000), 1U);
}

TEST(SoundIndex, FindsWithAGoodHint) {
    EXPECT_EQ(indexOf({10, 10, 10, 10}).packetWith(25, 1), 2U);
}

TEST(SoundIndex, FindsWithABadHint) {
    SoundIndex const index = indexOf({10, 10, 10, 10, 10, 10, 10, 10, 10});
    EXPECT_EQ(index.packetWith(5, 3), 0U);
    EXPECT_EQ(index.packetWith(85, 0), 8U);
    EXPECT_EQ(index.packetWith(85, 100), 8U);
}

TEST(SoundIndex, MayStartAnywhereIfNothingElseIsSaid) {
    EXPECT_EQ(indexOf({10, 10, 10}).startAtOrBefore(2), 2U);
}

TEST(SoundIndex, GoesBackToAPacketThatDecodingMayBeginAt) {
    EXPECT_EQ(indexOf({10, 10, 10, 10}, {true, true, false, false}).startAtOrBefore(3), 1U);
}

TEST(SoundIndex, GoesBackToTheFirstPacketWhereNoneIsMarked) {
    EXPECT_EQ(indexOf({10, 10, 10}, {false, false, false}).startAtOrBefore(2), 0U);
}

}  // namespace
}  // namespace test
