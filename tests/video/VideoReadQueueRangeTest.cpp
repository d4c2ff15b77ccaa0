/// Which frames a request yields: its own, those of its group, or those of its stored unit.
#include "tests/video/QueueFixture.h"

namespace {

class VideoReadQueueRangeTest : public QueueFixture {
protected:
    VideoReadQueueRangeTest() { occupyWorker(); }

    void group(bool isGrouped, std::uint16_t framesPerGroup) {
        file->metadata->frameGrouped = isGrouped;
        file->metadata->framesPerGroup = framesPerGroup;
    }
    /// True if a request for `frame` is absorbed by one that waits.
    bool absorbs(RequestPtr const& waiting, std::uint32_t frame) { return ask(frame) == waiting; }
};

using GroupedTest = VideoReadQueueRangeTest;

TEST_F(GroupedTest, TakesInTheFirstAndTheLastFrameOfTheGroup) {
    group(true, 8);
    RequestPtr const waiting = ask(13);
    EXPECT_TRUE(absorbs(waiting, 8));
    EXPECT_TRUE(absorbs(waiting, 15));
    EXPECT_EQ(finish(), Frames{13});
}

TEST_F(GroupedTest, DoesNotTakeInTheFramesBesideTheGroup) {
    group(true, 8);
    RequestPtr const waiting = ask(13);
    EXPECT_FALSE(absorbs(waiting, 7));
    EXPECT_FALSE(absorbs(waiting, 16));
}

TEST_F(GroupedTest, IgnoresTheGroupSizeOfAFileThatIsNotGrouped) {
    group(false, 8);
    RequestPtr const waiting = ask(13);
    EXPECT_FALSE(absorbs(waiting, 12));
    EXPECT_TRUE(absorbs(waiting, 13));
}

TEST_F(GroupedTest, CountsAGroupSizeOfZeroAsNotGrouped) {
    group(true, 0);
    RequestPtr const waiting = ask(13);
    EXPECT_FALSE(absorbs(waiting, 12));
    EXPECT_TRUE(absorbs(waiting, 13));
}

TEST_F(GroupedTest, TakesAGroupSizeOfAllItsBits) {
    group(true, 65535);
    RequestPtr const waiting = ask(65534);
    EXPECT_TRUE(absorbs(waiting, 0));
    EXPECT_FALSE(absorbs(waiting, 65535));
}

TEST_F(GroupedTest, DoesNotMergeInAStreamedFile) {
    group(true, 8);
    file->metadata->setReadStreaming(true);
    RequestPtr const waiting = ask(13);
    EXPECT_FALSE(absorbs(waiting, 8));
    EXPECT_FALSE(absorbs(waiting, 15));
}

TEST_F(GroupedTest, MergesTheSameFrameInAStreamedFile) {
    group(true, 8);
    file->metadata->setReadStreaming(true);
    RequestPtr const waiting = ask(13);
    EXPECT_TRUE(absorbs(waiting, 13));
}

TEST_F(GroupedTest, AsksTheNewRequestsFileWhetherItStreams) {
    group(true, 8);
    RequestPtr const waiting = ask(13);
    Ox::Ptr<FileReadInstance> const streaming = makeVideoFile(std::make_shared<FileScript>());
    streaming->metadata->setReadStreaming(true);
    EXPECT_NE(ask(8, {.file = streaming}), waiting);
}

TEST_F(GroupedTest, AsksTheOlderRequestsFileForItsGroups) {
    group(true, 8);
    RequestPtr const waiting = ask(13);
    EXPECT_EQ(ask(8, {.file = makeVideoFile(std::make_shared<FileScript>())}), waiting);
}

using IndexUnitTest = VideoReadQueueRangeTest;

TEST_F(IndexUnitTest, YieldsOffsetPlusStartToEndBothIncluded) {
    RequestPtr const waiting = ask(15, {.indexInfo = makeUnit(2, 10, 20)});
    EXPECT_FALSE(absorbs(waiting, 11));
    EXPECT_TRUE(absorbs(waiting, 12));
    EXPECT_TRUE(absorbs(waiting, 20));
    EXPECT_FALSE(absorbs(waiting, 21));
}

TEST_F(IndexUnitTest, DoesNotAddTheOffsetToTheEnd) {
    RequestPtr const waiting = ask(15, {.indexInfo = makeUnit(5, 10, 20)});
    EXPECT_FALSE(absorbs(waiting, 25));
}

TEST_F(IndexUnitTest, AddsASixteenBitOffsetToAThirtyTwoBitStart) {
    RequestPtr const waiting = ask(15, {.indexInfo = makeUnit(65535, 100000, 200000)});
    EXPECT_FALSE(absorbs(waiting, 165534));
    EXPECT_TRUE(absorbs(waiting, 165535));
}

TEST_F(IndexUnitTest, WrapsTheSumAtThirtyTwoBits) {
    RequestPtr const waiting = ask(1000, {.indexInfo = makeUnit(10, 0xFFFFFFFF, 20)});
    EXPECT_FALSE(absorbs(waiting, 8));
    EXPECT_TRUE(absorbs(waiting, 9));
}

TEST_F(IndexUnitTest, ComparesFramesAsUnsignedNumbers) {
    RequestPtr const waiting = ask(15, {.indexInfo = makeUnit(0, 10, 0xFFFFFFFF)});
    EXPECT_TRUE(absorbs(waiting, 0x80000001));
}

TEST_F(IndexUnitTest, YieldsNothingWhenTheUnitIsEmpty) {
    RequestPtr const waiting = ask(15, {.indexInfo = makeUnit(0, 16, 14)});
    EXPECT_FALSE(absorbs(waiting, 15));
}

TEST_F(IndexUnitTest, CountsMoreThanTheGroups) {
    group(true, 8);
    RequestPtr const waiting = ask(13, {.indexInfo = makeUnit(0, 13, 14)});
    EXPECT_FALSE(absorbs(waiting, 8));
    EXPECT_TRUE(absorbs(waiting, 14));
}

TEST_F(IndexUnitTest, IsIgnoredInAStreamedFile) {
    file->metadata->setReadStreaming(true);
    RequestPtr const waiting = ask(15, {.indexInfo = makeUnit(0, 10, 20)});
    EXPECT_FALSE(absorbs(waiting, 12));
    EXPECT_TRUE(absorbs(waiting, 15));
}

TEST_F(IndexUnitTest, OfTheNewRequestIsNotLookedAt) {
    RequestPtr const waiting = ask(15);
    EXPECT_NE(ask(16, {.indexInfo = makeUnit(0, 10, 20)}), waiting);
    EXPECT_EQ(ask(15, {.indexInfo = makeUnit(0, 30, 40)}), waiting);
}

/// What a read teaches of a file holds for those that have been taken up before.
class LearntRangeTest : public QueueFixture {};

TEST_F(LearntRangeTest, AReadWhoseUnitHasGrownTakesInMore) {
    Ox::Ptr<IndexInfoRep> const unit = makeUnit(0, 5, 5);
    Wanted wanted;
    wanted.indexInfo = unit;
    RequestPtr const held = read(5, wanted);
    EXPECT_NE(read(12), held);
    unit->unitStart = 0;
    unit->unitEnd = 24;
    EXPECT_EQ(ask(13), held);
}

TEST_F(LearntRangeTest, AFileThatTurnsOutToBeGroupedMergesFromThenOn) {
    RequestPtr const held = read(13);
    EXPECT_NE(read(8), held);
    file->metadata->frameGrouped = true;
    file->metadata->framesPerGroup = 8;
    EXPECT_EQ(ask(15), held);
}

}  // namespace
