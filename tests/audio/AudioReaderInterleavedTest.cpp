/// Streams that are decoded into one interleaved buffer.
#include "tests/audio/CompressedFixture.h"
#include "tests/fakes/ByteHolder.h"

namespace {

class AudioReaderInterleavedTest : public CompressedFixture {
protected:
    AudioReaderInterleavedTest() : CompressedFixture(false) {}
};

TEST_F(AudioReaderInterleavedTest, GivesTheSamplesOfEachChannel) {
    openWithDecoder(3);
    for (unsigned channel = 0; channel < 3; ++channel) {
        AudioRequestPtr const request = read({.channel = channel, .start = 300, .count = 200});
        EXPECT_EQ(samplesOf(request->buffer), decodedFrames(3, 2, channel));
        EXPECT_EQ(request->buffer.getSampleCount(), 200U);
    }
    EXPECT_EQ(decoder->decodes.size(), 2U);
}

TEST_F(AudioReaderInterleavedTest, GivesTheSamplesOfASingleChannel) {
    openWithDecoder(1);
    AudioRequestPtr const request = read({.start = 300, .count = 200});
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(3, 2, 0));
    EXPECT_EQ(request->buffer.getSampleCount(), 200U);
}

TEST_F(AudioReaderInterleavedTest, CutsWhatComesBeforeTheRequest) {
    openWithDecoder();
    AudioRequestPtr const request = read({.channel = 1, .start = 250, .count = 100, .fetch = 150});
    std::vector<std::uint16_t> expected = decodedFrames(2, 2, 1);
    expected.erase(expected.begin(), expected.begin() + 50);
    EXPECT_EQ(samplesOf(request->buffer), expected);
}

TEST_F(AudioReaderInterleavedTest, GivesTheDecoderRoomForTheFetch) {
    openWithDecoder();
    read({.count = 250});
    EXPECT_EQ(decoder->decodes.front().capacity, 250U * 2 * 2);
    EXPECT_EQ(decoder->decodes.front().samplesPerFrame, 100U);
}

TEST_F(AudioReaderInterleavedTest, DecodesASingleChannelStraightIntoTheResult) {
    openWithDecoder(1);
    read({.count = 250});
    EXPECT_EQ(decoder->decodes.front().capacity, (250U / 100 + 1) * 100 * 2) << "the result's own buffer";
}

TEST_F(AudioReaderInterleavedTest, FailsWhereASingleChannelsBufferIsOfAnotherKind) {
    openWithDecoder(1);
    AudioRequestPtr request = makeSoundRequest(file, {});
    Aud::StreamBufferList list;
    list.push_back({Ox::makePtr<ByteHolder>(500), 0});
    EXPECT_EQ(file->readCompressedAudioInterleaved(0, list, request), oxFailure);
    Aud::StreamBufferList none;
    EXPECT_EQ(file->readCompressedAudioInterleaved(0, none, request), oxFailure);
    EXPECT_EQ(decoder->decodes.size(), 0U);
}

TEST_F(AudioReaderInterleavedTest, TellsTheDecoderWhatToSkipAndBlanksNothingItself) {
    packets[0] = {.skipStart = 10, .skipEnd = 20};
    openWithDecoder();
    EXPECT_EQ(samplesOf(readFrames(0)->buffer), decodedFrames(0, 1, 0));
    EXPECT_EQ(decoder->decodes[0].skipStart, 10U);
    EXPECT_EQ(decoder->decodes[0].skipEnd, 20U);
}

TEST_F(AudioReaderInterleavedTest, TakesFiveForAGoodResultAndNoOtherThanThreeBeside) {
    for (std::uint32_t const result : {0U, 1U, 3U, 4U, 5U, 11U}) {
        decoder->answer = [=](DecodeCall const&) { return DecodeAnswer{result, result < 6 ? frameSize : 0}; };
        openWithDecoder();
        AudioRequestPtr request = makeSoundRequest(file, {});
        auto output = Ox::makePtr<ByteBufferImpl>(0U);
        unsigned decoded = 0;
        bool const isGood = result == 3 || result == 5;
        EXPECT_EQ(file->readAndDecodeInterleaved(0, 0, output, decoded), isGood ? 1U : 0U) << result;
    }
}

TEST_F(AudioReaderInterleavedTest, ReadsFramesThatGiveNothingAgain) {
    decode({0, 0, 100, 0});
    openWithDecoder();
    EXPECT_EQ(samplesOf(readFrames(5, 2)->buffer), decodedFrames(5, 2, 0));
    EXPECT_EQ(decoder->framesDecoded(), (std::vector<std::uint64_t>{5, 5, 5, 6, 6}));
    EXPECT_EQ(file->lastFrameRead.at(0), 6U);
}

TEST_F(AudioReaderInterleavedTest, FailsAfterNineFramesThatGiveNothing) {
    decode(std::vector<unsigned>(20, 0));
    openWithDecoder();
    EXPECT_EQ(readFrames(5)->getRequestStatus(), requestFailed);
    EXPECT_EQ(decoder->decodes.size(), 9U);
    EXPECT_EQ(log.log(), diskError(oxFailure));
}

TEST_F(AudioReaderInterleavedTest, EndsWithTheNinthFrameAndCountsItsSamples) {
    decode(std::vector<unsigned>(8, 0));
    openWithDecoder();
    AudioRequestPtr const request = readFrames(5, 3);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(decoder->decodes.size(), 9U);
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(5, 1, 0));
    EXPECT_EQ(request->buffer.getSampleCount(), 100U);
}

TEST_F(AudioReaderInterleavedTest, GoesOnWhenTheEighthFrameGivesSomething) {
    decode(std::vector<unsigned>(7, 0));
    openWithDecoder();
    EXPECT_EQ(readFrames(5, 3)->buffer.getSampleCount(), 300U);
}

TEST_F(AudioReaderInterleavedTest, DoesNotLoopForEverWhenNothingMoreComes) {
    decoder->answer = [](DecodeCall const& call) {
        return DecodeAnswer{.decoded = call.frame == 0 ? frameSize : 0};
    };
    openWithDecoder();
    EXPECT_EQ(readFrames(0, 2)->buffer.getSampleCount(), 100U);
}

TEST_F(AudioReaderInterleavedTest, IsShortWhereThePacketsEnd) {
    openWithDecoder();
    AudioRequestPtr const request = readFrames(packetCount - 1, 3);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->buffer.getSampleCount(), 100U) << "nothing is padded";
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(packetCount - 1, 1, 0));
}

TEST_F(AudioReaderInterleavedTest, IsShortInASingleChannelWhereThePacketsEnd) {
    openWithDecoder(1);
    AudioRequestPtr const request = readFrames(packetCount - 1, 3);
    EXPECT_EQ(request->buffer.getSampleCount(), 100U);
    EXPECT_EQ(request->getUsed(), 200U);
}

TEST_F(AudioReaderInterleavedTest, FailsBehindTheLastPacketAndForAFirstFrameThatCannotBeRead) {
    packets[3] = {.result = 7};
    openWithDecoder();
    EXPECT_EQ(readFrames(packetCount)->getRequestStatus(), requestFailed);
    EXPECT_EQ(readFrames(3)->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), (test::LogRecorder::Lines{diskError(0).front(), diskError(0).front()}));
}

TEST_F(AudioReaderInterleavedTest, DoesNotReportAFailureAfterTheFirstSamples) {
    packets[4] = {.result = 7};
    openWithDecoder();
    AudioRequestPtr const request = readFrames(3, 3);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(3, 1, 0));
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{});
}

TEST_F(AudioReaderInterleavedTest, CountsTheSamplesOfAFirstFrameThatIsDecodedBadly) {
    decoder->answer = [](DecodeCall const&) { return DecodeAnswer{7, frameSize}; };
    openWithDecoder();
    AudioRequestPtr const request = readFrames(3, 3);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->buffer.getSampleCount(), 100U);
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(3, 1, 0));
}

TEST_F(AudioReaderInterleavedTest, DoesNotMindSamplesThatCannotBeSplit) {
    openWithDecoder(0);
    AudioRequestPtr const request = readFrames(0);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_FALSE(request->buffer.getHolder());
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{});
}

}  // namespace
