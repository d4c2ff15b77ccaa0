/// Streams that are decoded into a buffer for each channel.
#include <algorithm>

#include "tests/audio/CompressedFixture.h"

namespace {

class AudioReaderCompressedTest : public CompressedFixture {
protected:
    AudioReaderCompressedTest() : CompressedFixture(true) {}
};

TEST_F(AudioReaderCompressedTest, GivesTheSamplesOfTheFramesFromTheRequestOn) {
    openWithDecoder();
    AudioRequestPtr const request = read({.channel = 1, .start = 300, .count = 200});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(3, 2, 1));
    EXPECT_EQ(request->buffer.getSampleCount(), 200U);
}

TEST_F(AudioReaderCompressedTest, ReadsOnePacketAtATime) {
    openWithDecoder();
    readFrames(3, 2);
    EXPECT_EQ(script->reads(), (Reads{{0, 3, 1}, {0, 4, 1}}));
}

TEST_F(AudioReaderCompressedTest, BeginsAtTheFrameAndCutsWhatComesBeforeTheRequest) {
    openWithDecoder();
    AudioRequestPtr const request = read({.start = 250, .count = 100, .fetch = 150});
    std::vector<std::uint16_t> expected = decodedFrames(2, 2, 0);
    expected.erase(expected.begin(), expected.begin() + 50);
    EXPECT_EQ(samplesOf(request->buffer), expected);
    EXPECT_EQ(request->buffer.getSampleCount(), 150U);
}

TEST_F(AudioReaderCompressedTest, RemembersTheReadFromTheFrameOn) {
    openWithDecoder();
    read({.start = 250, .count = 100, .fetch = 150});
    EXPECT_EQ(samplesOf(read({.channel = 1, .start = 200, .count = 200})->buffer), decodedFrames(2, 2, 1));
    EXPECT_EQ(decoder->decodes.size(), 2U);
}

TEST_F(AudioReaderCompressedTest, DecodesForAllChannelsAtOnce) {
    openWithDecoder(6);
    readFrames(0);
    EXPECT_EQ(samplesOf(read({.channel = 5})->buffer), decodedFrames(0, 1, 5));
    EXPECT_EQ(decoder->decodes.size(), 1U);
}

TEST_F(AudioReaderCompressedTest, DecodesUntilTheFetchIsOut) {
    openWithDecoder();
    AudioRequestPtr const request = read({.count = 101});
    EXPECT_EQ(decoder->framesDecoded(), (std::vector<std::uint64_t>{0, 1}));
    EXPECT_EQ(request->buffer.getSampleCount(), 200U);
    EXPECT_EQ(request->getUsed(), 400U);
}

TEST_F(AudioReaderCompressedTest, DecodesAFrameForARequestOfNoSamples) {
    openWithDecoder();
    EXPECT_EQ(read({.count = 0})->getRequestStatus(), requestComplete);
    EXPECT_EQ(decoder->decodes.size(), 1U);
}

TEST_F(AudioReaderCompressedTest, TellsTheDecoderOfTheFrameSizeAndGivesItRoomForAFrameMore) {
    openWithDecoder();
    read({.count = 250});
    EXPECT_EQ(decoder->decodes.front().samplesPerFrame, 100U);
    EXPECT_EQ(decoder->decodes.front().capacity, (250U / 100 + 1) * 100 * 2);
}

TEST_F(AudioReaderCompressedTest, TakesFiveForAGoodResultToo) {
    decoder->answer = [](DecodeCall const&) { return DecodeAnswer{5, 100}; };
    openWithDecoder();
    EXPECT_EQ(readFrames(0)->getRequestStatus(), requestComplete);
}

TEST_F(AudioReaderCompressedTest, FailsWithEveryOtherResult) {
    for (std::uint32_t const result : {0U, 1U, 4U, 11U}) {
        decoder->answer = [=](DecodeCall const&) { return DecodeAnswer{result, 0}; };
        openWithDecoder();
        log.clear();
        EXPECT_EQ(readFrames(0)->getRequestStatus(), requestFailed);
        EXPECT_EQ(log.log(), diskError(oxFailure));
    }
}

TEST_F(AudioReaderCompressedTest, FailsWhereTheInstanceDecodesByChannelsInName) {
    class InName : public Ox::AudioCodecInstance {
    public:
        bool decodesToStreams() override { return true; }
        unsigned int getPreRollFrames() override { return 0; }
    };
    openWithDecoder();
    file->codecs[0] = Ox::makePtr<InName>();
    EXPECT_EQ(readFrames(0)->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), diskError(oxFailure));
}

TEST_F(AudioReaderCompressedTest, FailsForAStreamWhoseFramesHaveNoSize) {
    openWithDecoder();
    file->streams[0].samplesPerCodecFrame = 0;
    EXPECT_EQ(readFrames(0)->getRequestStatus(), requestFailed);
    EXPECT_EQ(script->reads(), Reads{});
}

TEST_F(AudioReaderCompressedTest, KeepsTheStreamsOfAFileApart) {
    auto const second = std::make_shared<DecoderScript>();
    second->metadata = compressedFormat(1, frameSize);
    openWithDecoder();
    file->metadata->audioStreams.push_back(compressedFormat(1, frameSize));
    ScriptedDecoderInfo const info(second);
    file->initAudioCodec(1, nullptr);
    readFrames(0);
    read({.stream = 1, .start = 500, .count = 100});
    EXPECT_EQ(file->lastFrameRead.at(0), 0U);
    EXPECT_EQ(file->lastFrameRead.at(1), 5U);
    EXPECT_EQ(decoder->decodes.size(), 1U);
    EXPECT_EQ(second->decodes.size(), 1U);
}

/// Frames that give less than a frame, or nothing.
class SparseFramesTest : public AudioReaderCompressedTest {};

TEST_F(SparseFramesTest, AreReadAgainWhileTheyGiveNothing) {
    decode({0, 0, 100, 0});
    openWithDecoder();
    AudioRequestPtr const request = readFrames(5, 2);
    EXPECT_EQ(decoder->framesDecoded(), (std::vector<std::uint64_t>{5, 5, 5, 6, 6}));
    EXPECT_EQ(file->lastFrameRead.at(0), 6U);
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(5, 2, 0));
}

TEST_F(SparseFramesTest, FailAfterNineThatGiveNothing) {
    decode(std::vector<unsigned>(20, 0));
    openWithDecoder();
    EXPECT_EQ(readFrames(5)->getRequestStatus(), requestFailed);
    EXPECT_EQ(decoder->decodes.size(), 9U);
    EXPECT_EQ(log.log(), diskError(oxFailure));
    EXPECT_EQ(file->lastFrameRead.at(0), 5U);
}

TEST_F(SparseFramesTest, GoOnWhenTheNinthGivesSomething) {
    decode(std::vector<unsigned>(8, 0));
    openWithDecoder();
    AudioRequestPtr const request = readFrames(5, 3);
    EXPECT_EQ(request->buffer.getSampleCount(), 300U);
    EXPECT_EQ(decoder->decodes.size(), 11U);
}

TEST_F(SparseFramesTest, MayPauseForLongOnceSomethingHasCome) {
    std::vector<unsigned> counts(900, 0);
    counts.insert(counts.begin(), 100);
    decode(counts);
    openWithDecoder();
    EXPECT_EQ(samplesOf(readFrames(0, 2)->buffer), decodedFrames(0, 2, 0));
    EXPECT_EQ(decoder->decodes.size(), 902U);
}

TEST_F(SparseFramesTest, DoNotLoopForEverWhenNothingMoreComes) {
    decoder->answer = [](DecodeCall const& call) {
        return DecodeAnswer{.decoded = call.frame == 0 ? frameSize : 0};
    };
    openWithDecoder();
    AudioRequestPtr const request = readFrames(0, 2);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(0, 1, 0));
    EXPECT_EQ(request->buffer.getSampleCount(), 100U);
}

TEST_F(SparseFramesTest, AreCountedByTheSamplesThatTheyGive) {
    decode({30, 40, 50});
    openWithDecoder();
    EXPECT_EQ(readFrames(0)->buffer.getSampleCount(), 120U);
    EXPECT_EQ(decoder->framesDecoded(), (std::vector<std::uint64_t>{0, 1, 2}));
}

/// Reads that don't come to their end.
class BrokenStreamTest : public AudioReaderCompressedTest {
protected:
    static bool isAll(std::vector<std::uint8_t> const& bytes, std::uint8_t value) {
        return std::all_of(bytes.begin(), bytes.end(), [=](std::uint8_t byte) { return byte == value; });
    }
};

TEST_F(BrokenStreamTest, FailsWithoutTheReadersCodeWhenTheFirstFrameCannotBeRead) {
    packets[3] = {.result = 7};
    openWithDecoder();
    EXPECT_EQ(readFrames(3)->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), diskError(oxFailure));
    EXPECT_EQ(decoder->decodes.size(), 0U);
    EXPECT_EQ(file->lastFrameRead.at(0), 3U);
}

TEST_F(BrokenStreamTest, FailsBehindTheLastPacket) {
    openWithDecoder();
    EXPECT_EQ(readFrames(packetCount)->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), diskError(oxFailure));
}

TEST_F(BrokenStreamTest, DoesNotReportAReadThatFailsAfterTheFirstSamples) {
    packets[4] = {.result = 7};
    openWithDecoder();
    AudioRequestPtr const request = readFrames(3, 3);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(3, 1, 0));
    EXPECT_EQ(request->buffer.getSampleCount(), 100U);
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{});
}

TEST_F(BrokenStreamTest, DoesNotReportAFrameThatCannotBeDecodedAfterTheFirstSamples) {
    decoder->answer = [](DecodeCall const& call) {
        return call.frame == 3 ? DecodeAnswer{.decoded = 100} : DecodeAnswer{.result = 0};
    };
    openWithDecoder();
    AudioRequestPtr const request = readFrames(3, 3);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->buffer.getSampleCount(), 100U);
    EXPECT_TRUE(isAll(bytesBehind(request->buffer), scribble)) << "only the end of the packets is padded";
}

TEST_F(BrokenStreamTest, CountsTheSamplesOfAFirstFrameThatIsDecodedBadly) {
    decoder->answer = [](DecodeCall const&) { return DecodeAnswer{7, frameSize}; };
    openWithDecoder();
    AudioRequestPtr const request = readFrames(3, 3);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->buffer.getSampleCount(), 100U);
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(3, 1, 0));
}

TEST_F(BrokenStreamTest, IsPaddedWithSilenceWhereThePacketsEnd) {
    openWithDecoder();
    AudioRequestPtr const request = readFrames(packetCount - 1, 3);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->buffer.getSampleCount(), 300U);
    EXPECT_EQ(samplesOf(request->buffer), decodedFrames(packetCount - 1, 1, 0)) << "the used size stays";
    EXPECT_EQ(bytesBehind(request->buffer).size(), 3U * 100 * 2);
    EXPECT_TRUE(isAll(bytesBehind(request->buffer), 0));
}

TEST_F(BrokenStreamTest, IsPaddedInEveryChannel) {
    openWithDecoder();
    readFrames(packetCount - 1, 3);
    AudioRequestPtr const other = read({.channel = 1, .start = (packetCount - 1) * frameSize, .count = 300});
    EXPECT_TRUE(isAll(bytesBehind(other->buffer), 0));
    EXPECT_EQ(other->buffer.getSampleCount(), 300U);
}

TEST_F(BrokenStreamTest, IsNotPaddedWhenTheFetchIsOutWithTheLastPacket) {
    openWithDecoder();
    AudioRequestPtr const request = readFrames(packetCount - 2, 2);
    EXPECT_EQ(request->buffer.getSampleCount(), 200U);
    EXPECT_TRUE(isAll(bytesBehind(request->buffer), scribble));
}

TEST_F(BrokenStreamTest, HandsOutAnEmptyViewOfThePadding) {
    openWithDecoder();
    std::uint64_t const start = (packetCount - 1) * frameSize;
    read({.start = start, .count = 300});
    AudioRequestPtr const behind = read({.start = start + 150, .count = 50});
    EXPECT_EQ(behind->getRequestStatus(), requestComplete);
    EXPECT_EQ(behind->getUsed(), 0U);
    EXPECT_EQ(behind->buffer.getSampleCount(), 150U);
}

TEST_F(BrokenStreamTest, HandsOutNothingWhereAReadEndedBeforeTheRequest) {
    packets[4] = {.result = 7};
    openWithDecoder();
    AudioRequestPtr const request = read({.start = 350, .count = 10, .fetch = 250});
    EXPECT_EQ(request->buffer.getSampleCount(), 50U);
    packets[3] = {.result = oxSuccess};
    decoder->answer = [](DecodeCall const& call) {
        return call.frame == 7 ? DecodeAnswer{.decoded = 20} : DecodeAnswer{.result = 0};
    };
    AudioRequestPtr const behind = read({.start = 750, .count = 10, .fetch = 50});
    EXPECT_EQ(behind->getRequestStatus(), requestComplete);
    EXPECT_EQ(behind->getUsed(), 0U);
    EXPECT_EQ(behind->buffer.getSampleCount(), 0U);
}

}  // namespace
