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

/// Among reads that were taken up each yields its own frames, whatever the others are like.
class MixedRangesTest : public QueueFixture {
protected:
    RequestPtr readUnit(std::uint32_t frame, Ox::Ptr<IndexInfoRep> const& unit) {
        Wanted wanted;
        wanted.indexInfo = unit;
        return read(frame, wanted);
    }
    RequestPtr readOf(Ox::Ptr<FileReadInstance> const& other, std::uint32_t frame) {
        Wanted wanted;
        wanted.file = other;
        return read(frame, wanted);
    }

    /// `read` waits for the worker of the fixture's own file, which must have read something.
    RequestPtr readFirstOf(Ox::Ptr<FileReadInstance> const& other, std::uint32_t frame) {
        read(1000);
        queue.purge();
        return readOf(other, frame);
    }

    Ox::Ptr<FileReadInstance> const groupedFile = [] {
        auto const made = makeVideoFile(std::make_shared<FileScript>());
        made->metadata->frameGrouped = true;
        made->metadata->framesPerGroup = 8;
        return made;
    }();
};

TEST_F(MixedRangesTest, AUnitBehindSingleFramesYieldsAllOfItsOwn) {
    RequestPtr const single = read(3);
    RequestPtr const unit = readUnit(15, makeUnit(0, 10, 20));
    EXPECT_EQ(ask(12), unit);
    EXPECT_EQ(ask(3), single);
}

TEST_F(MixedRangesTest, ASingleFrameBehindAUnitYieldsOnlyItself) {
    RequestPtr const unit = readUnit(15, makeUnit(0, 10, 20));
    RequestPtr const single = read(30);
    EXPECT_EQ(ask(30), single);
    EXPECT_NE(ask(31), single);
}

TEST_F(MixedRangesTest, AGroupedFilesReadYieldsItsGroupBehindThoseOfAnotherFile) {
    RequestPtr const single = read(3);
    RequestPtr const grouped = readOf(groupedFile, 13);
    EXPECT_EQ(ask(8), grouped);
    EXPECT_EQ(ask(3), single);
}

TEST_F(MixedRangesTest, AnotherFilesReadYieldsOneFrameBehindAGroup) {
    RequestPtr const grouped = readFirstOf(groupedFile, 13);
    RequestPtr const single = read(30);
    EXPECT_EQ(ask(15), grouped);
    EXPECT_NE(ask(29), single);
}

TEST_F(MixedRangesTest, AUnitStillYieldsItsFramesWhenTheReadsBeforeItAreGone) {
    RequestPtr single = read(3);
    RequestPtr const unit = readUnit(15, makeUnit(0, 10, 20));
    single = nullptr;
    queue.limitUsage();
    RequestPtr const later = read(40);
    EXPECT_EQ(ask(12), unit);
    EXPECT_EQ(ask(40), later);
}

TEST_F(MixedRangesTest, ReadsAreFoundByTheirFramesWhenSomeBetweenThemAreGone) {
    std::vector<RequestPtr> held;
    for (std::uint32_t frame = 0; frame < 9; ++frame) {
        held.push_back(read(frame));
    }
    for (std::size_t const gone : {0U, 3U, 4U, 8U}) {
        held[gone] = nullptr;
    }
    queue.limitUsage();
    for (std::uint32_t const frame : {1U, 2U, 5U, 6U, 7U}) {
        EXPECT_EQ(ask(frame), held[frame]) << frame;
    }
    EXPECT_EQ(queue.getActiveCount(), 5U);
}

TEST_F(MixedRangesTest, ReadsAreFoundByTheirFramesWhenAllWereLetGoBefore) {
    RequestPtr const unit = readUnit(15, makeUnit(0, 10, 20));
    queue.purge();
    RequestPtr const single = read(30);
    EXPECT_EQ(ask(30), single);
    EXPECT_NE(ask(12), unit);
}

}  // namespace
