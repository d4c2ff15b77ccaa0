/// Which frames are decoded and kept, by how they are asked for.
#include "plugins/ffmpeg/ReadPattern.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr std::uint64_t MiB = 1 << 20;
constexpr PictureRoom room{8, 100};
constexpr std::uint32_t frameCount = 1000;

ReadPattern after(std::initializer_list<std::uint32_t> frames) {
    ReadPattern pattern;
    for (std::uint32_t const frame : frames) {
        pattern.note(frame);
    }
    return pattern;
}

/// So many frames one after the other, from `first` on.
ReadPattern afterPlay(std::uint32_t first, std::uint32_t count) {
    ReadPattern pattern;
    for (std::uint32_t frame = first; frame < first + count; ++frame) {
        pattern.note(frame);
    }
    return pattern;
}

void expectRun(ReadPattern const& pattern, std::uint32_t first, std::uint32_t end) {
    FrameRun const run = pattern.run(room, frameCount);
    EXPECT_EQ(run.first, first);
    EXPECT_EQ(run.end, end);
}

TEST(ReadPattern, TakesTheFirstFrameAloneBecauseItSaysNothingAboutTheNext) {
    expectRun(after({0}), 0, 1);
}

TEST(ReadPattern, TakesAFrameAfterAJumpAlone) {
    expectRun(after({0, 1, 2, 500}), 500, 501);
}

TEST(ReadPattern, TakesMoreAndMoreFramesOnward) {
    expectRun(after({0, 1}), 1, 3);
    expectRun(after({0, 1, 2}), 2, 6);
    expectRun(after({0, 1, 2, 3}), 3, 11);
}

TEST(ReadPattern, TakesAtMostABatchOnward) {
    expectRun(afterPlay(0, 100), 99, 107);
}

TEST(ReadPattern, NeverPassesTheLastFrame) {
    expectRun(afterPlay(900, 98), 997, 1000);
    expectRun(afterPlay(900, 100), 999, 1000);
}

TEST(ReadPattern, EndsARunBackwardWithTheFrame) {
    expectRun(after({500, 499}), 492, 500);
}

TEST(ReadPattern, NeverStartsBeforeTheFirstFrame) {
    expectRun(after({4, 3}), 0, 4);
}

TEST(ReadPattern, TakesAFrameNearTheOneBeforeAlone) {
    expectRun(after({500, 490}), 490, 491);
}

TEST(ReadPattern, KeepsItsDirectionWhenAFrameIsAskedForAgain) {
    EXPECT_EQ(after({500, 499, 499}).direction(), eDirection::backward);
}

TEST(ReadPattern, TellsAStepFromALookAroundAndAJump) {
    EXPECT_EQ(after({500, 501}).direction(), eDirection::onward);
    EXPECT_EQ(after({500, 516}).direction(), eDirection::around);
    EXPECT_EQ(after({500, 484}).direction(), eDirection::around);
    EXPECT_EQ(after({500, 517}).direction(), eDirection::jump);
}

TEST(ReadPattern, KeepsNothingBehindAPlay) {
    Keep const keep = afterPlay(100, 20).keep(119, room);
    EXPECT_EQ(keep.first, 119U);
    EXPECT_EQ(keep.wantedFrom, 119U);
}

TEST(ReadPattern, KeepsBothSidesOfTwoStepsOnward) {
    Keep const keep = afterPlay(499, 3).keep(501, room);
    EXPECT_LT(keep.first, 460U);
    EXPECT_GT(keep.last, 540U);
}

TEST(ReadPattern, TakesThreeStepsOnwardForAPlay) {
    EXPECT_EQ(afterPlay(498, 4).keep(501, room).first, 501U);
}

TEST(ReadPattern, KeepsAlmostAllBeforeAFrameThatIsReachedBackward) {
    Keep const keep = after({500, 499}).keep(499, room);
    EXPECT_EQ(keep.first, 499U - 91);
    EXPECT_EQ(keep.last, 499U + 8);
    EXPECT_EQ(keep.wantedFrom, keep.first);
}

TEST(ReadPattern, KeepsAtMostWhatTheStoreHolds) {
    for (std::uint32_t store = 2; store < 200; ++store) {
        for (ReadPattern const& pattern : {after({500, 499}), after({500, 490}), after({500, 501})}) {
            Keep const keep = pattern.keep(500, {1, store});
            EXPECT_LE(keep.last - keep.first + 1, store);
        }
    }
}

TEST(ReadPattern, DecodesNothingForAJumpThatNobodyNeedsOnTheWay) {
    EXPECT_EQ(after({0, 500}).keep(500, room).wantedFrom, 500U);
}

TEST(ReadPattern, KeepsWhatComesOutBeforeAJumpsEnd) {
    EXPECT_EQ(after({0, 500}).keep(500, room).first, 401U);
}

TEST(PictureRoom, GivesTheStoreWhatTwoBatchesLeave) {
    PictureRoom const hd = PictureRoom::of(384 * MiB, 3 * MiB);
    EXPECT_EQ(hd.batch, 3U);
    EXPECT_EQ(hd.store, 128U - 6);
}

TEST(PictureRoom, TakesSmallBatchesOfLargePictures) {
    PictureRoom const uhd = PictureRoom::of(384 * MiB, 12 * MiB);
    EXPECT_EQ(uhd.batch, 2U);
    EXPECT_EQ(uhd.store, 28U);
}

TEST(PictureRoom, TakesATwelfthOfThePicturesWhereThereAreFew) {
    EXPECT_EQ(PictureRoom::of(96 * MiB, 3 * MiB).batch, 2U);
    EXPECT_EQ(PictureRoom::of(48 * MiB, 3 * MiB).batch, 1U);
}

TEST(PictureRoom, TakesAtMostSixteenPicturesABatch) {
    EXPECT_EQ(PictureRoom::of(384 * MiB, 1000).batch, 16U);
}

TEST(PictureRoom, NeverHoldsMoreThanTheMemoryAllows) {
    for (std::uint64_t pictures = 4; pictures < 300; ++pictures) {
        PictureRoom const part = PictureRoom::of(pictures * MiB, MiB);
        EXPECT_LE(2 * part.batch + part.store, pictures);
    }
}

TEST(PictureRoom, HasAFewPicturesHoweverLittleMemoryThereIs) {
    PictureRoom const least = PictureRoom::of(0, MiB);
    EXPECT_EQ(least.batch, 1U);
    EXPECT_EQ(least.store, 2U);
}

}  // namespace
}  // namespace test
