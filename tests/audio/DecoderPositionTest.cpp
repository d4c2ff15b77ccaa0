/// Where a decoder stands: when it is reset, and which frames it is fed before those that are wanted. Both
/// ways of decoding position alike.
#include "tests/audio/CompressedFixture.h"

namespace {

class DecoderPositionTest : public CompressedFixture, public ::testing::WithParamInterface<bool> {
protected:
    DecoderPositionTest() : CompressedFixture(GetParam()) {}

    void openWithPreRoll(unsigned frames) {
        decoder->preRollFrames = frames;
        openWithDecoder();
    }
    void openAAC(unsigned preRoll) {
        decoder->preRollFrames = preRoll;
        openWithDecoder();
        file->codecs[0]->metadata.codec = "aac";
    }
};

INSTANTIATE_TEST_SUITE_P(Decoding, DecoderPositionTest, ::testing::Values(true, false), [](auto const& form) {
    return std::string(form.param ? "ByChannels" : "Interleaved");
});

TEST_P(DecoderPositionTest, GoesStraightOnInASequentialRead) {
    openWithPreRoll(2);
    Lines all;
    for (std::uint64_t const first : {0U, 2U, 4U, 6U}) {
        for (std::string const& line : callsOf(first, 2)) {
            all.push_back(line);
        }
    }
    EXPECT_EQ(all, (Lines{"decode 0", "decode 1", "decode 2", "decode 3", "decode 4", "decode 5", "decode 6",
                          "decode 7"}));
}

TEST_P(DecoderPositionTest, RemembersTheFrameThatItFedLast) {
    openWithPreRoll(2);
    EXPECT_EQ(file->lastFrameRead.at(0), 0xFFFFFFFFFFFFFFFFU);
    readFrames(0, 3);
    EXPECT_EQ(file->lastFrameRead.at(0), 2U);
    readFrames(700);
    EXPECT_EQ(file->lastFrameRead.at(0), 700U);
}

TEST_P(DecoderPositionTest, ResetsAndFeedsTheFramesBeforeAJumpBackwards) {
    openWithPreRoll(3);
    readFrames(20);
    EXPECT_EQ(callsOf(10), (Lines{"reset", "decode 7", "decode 8", "decode 9", "decode 10"}));
}

TEST_P(DecoderPositionTest, ResetsAndFeedsTheFramesBeforeAJumpForwards) {
    openWithPreRoll(2);
    readFrames(0);
    EXPECT_EQ(callsOf(2), (Lines{"reset", "decode 0", "decode 1", "decode 2"})) << "one frame too far";
    EXPECT_EQ(callsOf(50), (Lines{"reset", "decode 48", "decode 49", "decode 50"}));
}

TEST_P(DecoderPositionTest, TakesTheSamePositionAgainForAJump) {
    openWithPreRoll(1);
    readFrames(5);
    EXPECT_EQ(callsOf(5, 2), (Lines{"reset", "decode 4", "decode 5", "decode 6"}));
}

TEST_P(DecoderPositionTest, FeedsTheFramesBeforeItsVeryFirstRead) {
    openWithPreRoll(2);
    EXPECT_EQ(callsOf(5), (Lines{"reset", "decode 3", "decode 4", "decode 5"}));
}

TEST_P(DecoderPositionTest, FeedsNoMoreFramesThanThereAreBefore) {
    openWithPreRoll(2);
    EXPECT_EQ(callsOf(1), (Lines{"reset", "decode 0", "decode 1"}));
    openWithPreRoll(0xFFFFFFFF);
    EXPECT_EQ(callsOf(3), (Lines{"reset", "decode 0", "decode 1", "decode 2", "decode 3"}));
}

TEST_P(DecoderPositionTest, NeverResetsForAJumpWithoutPreRoll) {
    openWithPreRoll(0);
    readFrames(0);
    EXPECT_EQ(callsOf(50), Lines{"decode 50"});
    EXPECT_EQ(callsOf(20), Lines{"decode 20"});
}

TEST_P(DecoderPositionTest, ResetsForAReturnToTheStartWithoutPreRollToo) {
    openWithPreRoll(0);
    readFrames(50);
    EXPECT_EQ(callsOf(0), (Lines{"reset", "decode 0"}));
}

TEST_P(DecoderPositionTest, ResetsForAReturnToTheStartAndFeedsNothingBeforeIt) {
    openWithPreRoll(2);
    readFrames(50);
    EXPECT_EQ(callsOf(0), (Lines{"reset", "decode 0"}));
}

TEST_P(DecoderPositionTest, DoesNotResetForTheVeryFirstReadAtTheStart) {
    openWithPreRoll(2);
    EXPECT_EQ(callsOf(0), Lines{"decode 0"});
}

TEST_P(DecoderPositionTest, FeedsTheFirstFrameOfAnAACStreamTwice) {
    openAAC(1);
    AudioRequestPtr const request = readFrames(0, 2);
    EXPECT_EQ(decoder->calls->all(), (Lines{"decode 0", "decode 0", "decode 1"}));
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(0, 2, 0));
}

TEST_P(DecoderPositionTest, FeedsItTwiceAtTheVeryFirstReadAlone) {
    openAAC(1);
    readFrames(0);
    EXPECT_EQ(callsOf(0, 2), (Lines{"reset", "decode 0", "decode 1"}));
}

TEST_P(DecoderPositionTest, FeedsItOnceWithoutPreRoll) {
    openAAC(0);
    EXPECT_EQ(callsOf(0), Lines{"decode 0"});
}

TEST_P(DecoderPositionTest, ThrowsTheOutputOfTheFramesBeforeAway) {
    openWithPreRoll(3);
    AudioRequestPtr const request = readFrames(5, 2);
    for (std::size_t call = 0; call < 4; ++call) {
        EXPECT_EQ(decoder->decodes[call].usedBefore, 0U);
    }
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(5, 2, 0));
    EXPECT_EQ(request->buffer.getSampleCount(), 200U);
}

TEST_P(DecoderPositionTest, GivesUpWithTheResultOfTheLastFrameBefore) {
    packets[4] = {.result = 7};
    openWithPreRoll(2);
    EXPECT_EQ(readFrames(5)->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), diskError(7));
    EXPECT_EQ(decoder->framesDecoded(), std::vector<std::uint64_t>{3});
}

TEST_P(DecoderPositionTest, GivesUpWhenTheLastFrameBeforeCannotBeDecoded) {
    decoder->answer = [](DecodeCall const& call) {
        return DecodeAnswer{call.frame == 4 ? 0U : 3U, frameSize};
    };
    openWithPreRoll(2);
    EXPECT_EQ(readFrames(5)->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), diskError(oxFailure));
}

TEST_P(DecoderPositionTest, DoesNotMindTheOtherFramesBefore) {
    packets[3] = {.result = 7};
    openWithPreRoll(2);
    EXPECT_EQ(samplesOf(readFrames(5)->buffer), decodedFrames(5, 1, 0));
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{});
}

TEST_P(DecoderPositionTest, ForgetsNothingByGivingUp) {
    packets[49] = {.result = 7};
    openWithPreRoll(2);
    readFrames(0, 3);
    readFrames(50);
    EXPECT_EQ(file->lastFrameRead.at(0), 2U);
}

TEST_P(DecoderPositionTest, GivesUpWhenTheFirstFrameOfAnAACStreamFailsTheFirstTime) {
    packets[0] = {.result = 7};
    openAAC(1);
    EXPECT_EQ(readFrames(0)->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), diskError(7));
    EXPECT_EQ(script->reads().size(), 1U);
}

TEST_P(DecoderPositionTest, FailsWithTheEndOfThePacketsInTheFirstFrameOfAnAACStream) {
    packets[0] = {.result = oxNoMorePackets};
    openAAC(1);
    EXPECT_EQ(readFrames(0)->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), diskError(oxNoMorePackets));
}

/// The end of the packets before a jump's target is the end of the data in the one form alone.
TEST_P(DecoderPositionTest, TakesTheEndOfThePacketsBeforeAJumpForTheEndOfTheDataOnlyByChannels) {
    openWithPreRoll(2);
    AudioRequestPtr const request = readFrames(packetCount + 1);
    bool const isByChannels = GetParam();
    EXPECT_EQ(request->getRequestStatus(), isByChannels ? requestComplete : requestFailed);
    EXPECT_EQ(log.log(), isByChannels ? test::LogRecorder::Lines{} : diskError(oxNoMorePackets));
    EXPECT_FALSE(request->buffer.getHolder());
}

}  // namespace
