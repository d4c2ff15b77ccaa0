#include "plugins/ffmpeg/FrameIndex.h"

#include <gtest/gtest.h>

#include <string>

namespace test {
namespace {

using playfile_ffmpeg::FrameIndex;
using playfile_ffmpeg::PacketEntry;

constexpr int32_t hidden = PacketEntry::notShown;

/// Packets by the number of the frame that they show; a key's is marked in `keys`.
FrameIndex indexOf(std::vector<int32_t> const& frames, std::string const& keys) {
    std::vector<PacketEntry> packets(frames.size());
    for (size_t packet = 0; packet < frames.size(); ++packet) {
        packets[packet].frame = frames[packet];
        packets[packet].isKey = keys[packet] == 'k';
        packets[packet].pts = frames[packet] * 100;
    }
    return FrameIndex(std::move(packets));
}

/// Two groups: frames 0 to 3, and 4 to 7; 6 and 5 are coded after the second key, 4 before it is shown.
FrameIndex openGroups() {
    return indexOf({0, 3, 1, 2, 6, 4, 5, 7}, "k---k---");
}

TEST(FrameIndex, CountsTheFramesThatAreShown) {
    EXPECT_EQ(indexOf({0, hidden, 1, hidden}, "k---").frameCount(), 2U);
}

TEST(FrameIndex, FindsThePacketOfEachFrame) {
    FrameIndex const index = openGroups();
    EXPECT_EQ(index.packetOf(3), 1U);
    EXPECT_EQ(index.packetOf(4), 5U);
}

TEST(FrameIndex, GivesTheTimeOfAFrame) {
    EXPECT_EQ(openGroups().ptsOf(6), 600);
}

TEST(FrameIndex, BeginsAtTheLastKeyThatIsShownNoLaterThanTheFrame) {
    EXPECT_EQ(openGroups().startPacketFor(7), 4U);
}

TEST(FrameIndex, BeginsAtTheKeyBeforeForAFrameThatIsShownBeforeTheKey) {
    EXPECT_EQ(openGroups().startPacketFor(4), 0U);
}

TEST(FrameIndex, BeginsAtTheKeyItselfForItsFrame) {
    EXPECT_EQ(openGroups().startPacketFor(6), 4U);
}

TEST(FrameIndex, BeginsAtTheFirstPacketWithoutAnyKey) {
    EXPECT_EQ(indexOf({0, 1, 2}, "---").startPacketFor(2), 0U);
}

TEST(FrameIndex, BeginsAtAHiddenKeyForWhatFollowsIt) {
    EXPECT_EQ(indexOf({0, hidden, 1, 2}, "kk--").startPacketFor(2), 1U);
}

TEST(FrameIndex, FindsTheKeyBefore) {
    EXPECT_EQ(openGroups().keyBefore(4), 0U);
}

TEST(FrameIndex, FindsNoKeyBeforeTheFirst) {
    EXPECT_EQ(indexOf({0, 1}, "-k").keyBefore(1), 0U);
}

TEST(FrameIndex, EndsAFrameBehindThePacketsThatShowNothing) {
    EXPECT_EQ(indexOf({0, hidden, hidden, 1}, "k--k").endOfFrameAt(0), 3U);
}

TEST(FrameIndex, NeedsNoReorderingForFramesInOrder) {
    EXPECT_EQ(indexOf({0, 1, 2}, "k--").reorderDepth(), 0U);
}

TEST(FrameIndex, MeasuresHowManyPacketsWaitForAFrame) {
    EXPECT_EQ(indexOf({0, 4, 2, 1, 3}, "k----").reorderDepth(), 2U);
}

TEST(FrameIndex, BoundsTheReorderingOfTimesWithoutSense) {
    std::vector<int32_t> backward;
    for (int32_t frame = 99; frame >= 0; --frame) {
        backward.push_back(frame);
    }
    EXPECT_EQ(indexOf(backward, std::string(100, 'k')).reorderDepth(), 16U);
}

TEST(FrameIndex, TellsAStreamOfKeysOnly) {
    EXPECT_TRUE(indexOf({0, 1, 2}, "kkk").isEveryPacketAKey());
}

TEST(FrameIndex, TellsAStreamOfOtherPackets) {
    EXPECT_FALSE(indexOf({0, 1, 2}, "k-k").isEveryPacketAKey());
}

TEST(FrameIndex, TakesSecondFieldsForPartsOfTheirKeys) {
    EXPECT_TRUE(indexOf({0, hidden, 1, hidden}, "k-k-").isEveryPacketAKey());
}

TEST(FrameIndex, ForgetsAKeyWhoseMarkIsTaken) {
    FrameIndex index = openGroups();
    index.takeKeyMark(4);
    EXPECT_EQ(index.startPacketFor(7), 0U);
}

TEST(FrameIndex, KnowsTheFrameOfTheFirstKey) {
    EXPECT_EQ(indexOf({2, 0, 1, 3}, "k---").firstKeyFrame(), 2U);
}

TEST(FrameIndex, RenumbersTheFramesBehindHiddenOnes) {
    FrameIndex index = indexOf({2, 0, 1, 3}, "k---");
    index.hideFramesBefore(2);
    EXPECT_EQ(index.frameCount(), 2U);
    EXPECT_EQ(index.packetOf(1), 3U);
}

}  // namespace
}  // namespace test
