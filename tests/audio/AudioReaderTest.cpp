/// One read of a file's sound, as far as it isn't compressed: what is read and what is served from memory.
#include <array>

#include "tests/audio/AudioFixture.h"
#include "tests/fakes/ByteHolder.h"

namespace {

using AudioReaderTest = SoundFixture;

TEST_F(AudioReaderTest, GivesTheSamplesOfTheChannelThatIsWanted) {
    open({soundFormat(2), soundFormat(6)});
    EXPECT_EQ(bytesRead({.stream = 1, .channel = 4, .start = 700, .count = 50}), madeChannel(1, 4, 700, 50));
    EXPECT_EQ(bytesRead({.stream = 0, .channel = 1, .start = 9, .count = 70}), madeChannel(0, 1, 9, 70));
}

TEST_F(AudioReaderTest, GivesSamplesOfAnyWidth) {
    for (std::uint32_t const bytes : {1U, 2U, 3U, 4U, 5U, 8U}) {
        open({soundFormat(3, bytes)});
        EXPECT_EQ(bytesRead({.channel = 2, .start = 5, .count = 33}), madeChannel(0, 2, 5, 33, bytes))
            << bytes;
    }
}

TEST_F(AudioReaderTest, SaysHowManySamplesThereAreAndOfWhichForm) {
    open({soundFormat(2, 4)});
    AudioRequestPtr const request = read({.count = 50});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->buffer.getSampleCount(), 50U);
    EXPECT_EQ(request->buffer.getSampleFormat(), file->streams[0].sampleFormat);
    EXPECT_EQ(request->getUsed(), 200U);
}

TEST_F(AudioReaderTest, ReadsEachStreamOnceForAllItsChannelsAtAPosition) {
    open({soundFormat(2)});
    EXPECT_EQ(bytesRead({.channel = 0, .start = 300}), madeChannel(0, 0, 300, 100));
    EXPECT_EQ(bytesRead({.channel = 1, .start = 300}), madeChannel(0, 1, 300, 100));
    EXPECT_EQ(script->reads(), (Reads{{0, 300, 100}}));
}

TEST_F(AudioReaderTest, ServesPartsOfTheRangeFromMemoryUpToTheEndOfTheRead) {
    open({soundFormat(2)});
    read({.start = 300, .count = 100});
    EXPECT_EQ(bytesRead({.channel = 1, .start = 340, .count = 20}), madeChannel(0, 1, 340, 60));
    EXPECT_EQ(script->reads().size(), 1U);
}

TEST_F(AudioReaderTest, ReadsAgainForWhatEndsBehindTheLatestRead) {
    open({soundFormat(2)});
    read({.start = 300, .count = 100});
    EXPECT_EQ(bytesRead({.start = 340, .count = 61}), madeChannel(0, 0, 340, 61));
    EXPECT_EQ(script->reads(), (Reads{{0, 300, 100}, {0, 340, 61}}));
}

TEST_F(AudioReaderTest, RemembersTheLatestReadAlone) {
    open({soundFormat(2)});
    read({.start = 300});
    read({.start = 900});
    read({.start = 300});
    EXPECT_EQ(script->reads().size(), 3U);
}

TEST_F(AudioReaderTest, FetchesMoreThanTheRequestIsFor) {
    open({soundFormat(2)});
    AudioRequestPtr const request = read({.count = 10, .fetch = 30});
    EXPECT_EQ(script->reads(), (Reads{{0, 0, 30}}));
    EXPECT_EQ(request->buffer.getSampleCount(), 30U);
}

TEST_F(AudioReaderTest, CountsPositionsIn64Bits) {
    std::uint64_t const start = (std::uint64_t{1} << 40) + 7;
    script->sampleCount = start + 1000;
    open({soundFormat(2)});
    EXPECT_EQ(bytesRead({.channel = 1, .start = start}), madeChannel(0, 1, start, 100));
}

TEST_F(AudioReaderTest, GoesOnWhereAShortReadEnded) {
    script->answer = [](SoundRead const&) { return SoundAnswer{.samplesRead = 40}; };
    open({soundFormat(2)});
    EXPECT_EQ(bytesRead({.channel = 1, .count = 120}), madeChannel(0, 1, 0, 120));
    EXPECT_EQ(script->reads(), (Reads{{0, 0, 120}, {0, 40, 80}, {0, 80, 40}}));
}

TEST_F(AudioReaderTest, StopsWhenItHasMoreThanItAskedFor) {
    script->answer = [](SoundRead const&) { return SoundAnswer{.samplesRead = 70}; };
    open({soundFormat(2)});
    EXPECT_EQ(read({.count = 120})->buffer.getSampleCount(), 140U);
    EXPECT_EQ(script->reads().size(), 2U);
}

TEST_F(AudioReaderTest, EndsWithAShorterBufferAtTheEndOfTheFile) {
    script->sampleCount = 150;
    open({soundFormat(2)});
    AudioRequestPtr const request = read({.start = 100});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(bytesOf(request->buffer), madeChannel(0, 0, 100, 50));
    EXPECT_EQ(request->buffer.getSampleCount(), 50U);
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{});
}

TEST_F(AudioReaderTest, EndsWithAnEmptyBufferBehindTheEndOfTheFile) {
    script->sampleCount = 150;
    open({soundFormat(2)});
    AudioRequestPtr const request = read({.start = 150});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_FALSE(request->buffer.getHolder());
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{});
}

TEST_F(AudioReaderTest, RemembersNothingOfAReadThatFoundTheEnd) {
    script->sampleCount = 150;
    open({soundFormat(2)});
    read({.start = 50});
    read({.start = 150});
    EXPECT_EQ(bytesRead({.channel = 1, .start = 50}), madeChannel(0, 1, 50, 100));
    EXPECT_EQ(script->reads().size(), 2U);
}

TEST_F(AudioReaderTest, TakesAReadOfNoSamplesForTheEnd) {
    script->answer = [](SoundRead const&) { return SoundAnswer{.samplesRead = 0}; };
    open({soundFormat(2)});
    AudioRequestPtr const request = read({});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_FALSE(request->buffer.getHolder());
    EXPECT_EQ(script->reads().size(), 1U);
}

TEST_F(AudioReaderTest, TakesAReadOfFewerSamplesThanASampleHasBytesForTheEnd) {
    script->answer = [](SoundRead const&) { return SoundAnswer{.samplesRead = 3}; };
    open({soundFormat(2, 4)});
    AudioRequestPtr const request = read({});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(bytesOf(request->buffer), madeChannel(0, 0, 0, 3, 4));
    EXPECT_EQ(script->reads().size(), 1U);
}

TEST_F(AudioReaderTest, GoesOnAfterAReadOfAsManySamplesAsASampleHasBytes) {
    script->answer = [](SoundRead const&) { return SoundAnswer{.samplesRead = 4}; };
    open({soundFormat(2, 4)});
    EXPECT_EQ(bytesRead({.count = 12}), madeChannel(0, 0, 0, 12, 4));
    EXPECT_EQ(script->reads().size(), 3U);
}

/// A read of 4 bytes a sample that comes in 8 samples and then in the last 2.
class SmallLastReadTest : public SoundFixture {
protected:
    SmallLastReadTest() {
        script->answer = [](SoundRead const& asked) {
            return SoundAnswer{.samplesRead = asked.sample == 0 ? 8U : 2U};
        };
        open({soundFormat(2, 4)});
    }
};

TEST_F(SmallLastReadTest, CountsAsTheEndOfTheData) {
    AudioRequestPtr request = makeSoundRequest(file, {.count = 10});
    Ox::Ptr<ByteBufferImpl> buffer;
    EXPECT_EQ(file->readAudioByAudioSamples(buffer, request), oxEndOfData);
}

TEST_F(SmallLastReadTest, IsKept) {
    AudioRequestPtr const request = read({.count = 10});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(bytesOf(request->buffer), madeChannel(0, 0, 0, 10, 4));
}

TEST_F(AudioReaderTest, LeavesNothingOutOfATinyRequest) {
    open({soundFormat(2, 4)});
    AudioRequestPtr const request = read({.start = 6, .count = 1});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(bytesOf(request->buffer), madeChannel(0, 0, 6, 1, 4));
}

TEST_F(AudioReaderTest, DoesNotLoopForEverWhereSamplesHaveNoBytes) {
    script->answer = [](SoundRead const&) { return SoundAnswer{.samplesRead = 0}; };
    open({soundFormat(2, 0)});
    EXPECT_EQ(read({})->getRequestStatus(), requestComplete);
}

TEST_F(AudioReaderTest, ReadsNothingForARequestOfNoSamples) {
    open({soundFormat(2)});
    AudioRequestPtr const request = read({.start = 5, .count = 0});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->getUsed(), 0U);
    EXPECT_EQ(script->reads(), Reads{});
}

TEST_F(AudioReaderTest, FindsAStreamEmptyAfterARequestOfNoSamplesAtItsStart) {
    open({soundFormat(2)});
    read({.start = 0, .count = 0});
    AudioRequestPtr const request = read({.channel = 1, .start = 500});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->getUsed(), 0U);
    EXPECT_EQ(script->reads(), Reads{});
}

/// Notes what the three output values hold when a read is asked for.
class OutputWatcher : public ScriptedSound {
public:
    using Outputs = std::array<unsigned, 3>;
    using ScriptedSound::ScriptedSound;

    OxResult readAudioSamples(unsigned int stream, unsigned long sample, unsigned int count,
                              Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                              unsigned int& skipStart, unsigned int& skipEnd) override {
        outputs.push_back({samplesRead, skipStart, skipEnd});
        return ScriptedSound::readAudioSamples(stream, sample, count, buffer, samplesRead, skipStart,
                                               skipEnd);
    }

    std::vector<Outputs> outputs;
};

TEST_F(AudioReaderTest, AsksForEveryReadWithTheOutputsAtZero) {
    script->answer = [](SoundRead const&) {
        return SoundAnswer{.samplesRead = 40, .skipStart = 3, .skipEnd = 4};
    };
    auto const watcher =
        Ox::makePtr<OutputWatcher>("sound", OpenType::audio, script, std::vector{soundFormat(2)});
    file = watcher;
    read({.count = 120});
    EXPECT_EQ(watcher->outputs, std::vector<OutputWatcher::Outputs>(3));
}

TEST_F(AudioReaderTest, ReadsIntoABufferWithRoomToSpare) {
    open({soundFormat(2)});
    AudioRequestPtr request = makeSoundRequest(file, {.count = 100});
    Ox::Ptr<ByteBufferImpl> buffer;
    EXPECT_EQ(file->readAudioByAudioSamples(buffer, request), oxSuccess);
    EXPECT_EQ(file->readSlack, 512U);
    EXPECT_EQ(buffer->getSize(), 512U + 400U);
    EXPECT_EQ(buffer->getUsed(), 400U);
}

TEST_F(AudioReaderTest, GivesBackWhatTheLastReadSaidTogetherWithWhatWasRead) {
    script->answer = [](SoundRead const& asked) {
        return SoundAnswer{.result = asked.sample == 0 ? OxResult(oxSuccess) : 77, .samplesRead = 40};
    };
    open({soundFormat(2)});
    AudioRequestPtr request = makeSoundRequest(file, {.count = 100});
    Ox::Ptr<ByteBufferImpl> buffer;
    EXPECT_EQ(file->readAudioByAudioSamples(buffer, request), 77U);
    EXPECT_EQ(buffer->getUsed(), 2U * 40 * 4);
}

/// A file whose sound can only be reached through its video samples.
class ReadByVideoSamplesTest : public SoundFixture {
protected:
    ReadByVideoSamplesTest() { script->readsByVideoSamples = true; }

    void giveSamples(OxResult code, unsigned count) {
        script->videoRead = [=, this](Ox::Ptr<ByteBufferImpl>& buffer, Ox::Ptr<AudioReadRequest>& request) {
            ++calls;
            buffer = Ox::makePtr<ByteBufferImpl>(0U);
            for (unsigned i = 0; i < count; ++i) {
                for (unsigned channel = 0; channel < 2; ++channel) {
                    std::uint64_t const sample = madeSample(0, channel, request->startSample + i, 2);
                    buffer->append(&sample, 2);
                }
            }
            return code;
        };
    }
    unsigned calls = 0;
};

TEST_F(ReadByVideoSamplesTest, FailsWithItsOwnCodeWhereTheReaderHasNoSuchRead) {
    open({soundFormat(2)});
    EXPECT_EQ(read({})->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{"** disk read error 0xc\n"});
    EXPECT_EQ(script->reads(), Reads{});
}

TEST_F(ReadByVideoSamplesTest, SplitsAndKeepsWhatTheReaderGives) {
    giveSamples(oxSuccess, 100);
    open({soundFormat(2)});
    EXPECT_EQ(bytesRead({.channel = 0, .start = 30}), madeChannel(0, 0, 30, 100));
    EXPECT_EQ(bytesRead({.channel = 1, .start = 30}), madeChannel(0, 1, 30, 100));
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(script->reads(), Reads{});
}

TEST_F(ReadByVideoSamplesTest, IsCompleteAtTheEndOfTheData) {
    giveSamples(oxEndOfData, 20);
    open({soundFormat(2)});
    EXPECT_EQ(bytesRead({.channel = 1}), madeChannel(0, 1, 0, 20));
    giveSamples(oxEndOfData, 0);
    AudioRequestPtr const behind = read({.start = 20});
    EXPECT_EQ(behind->getRequestStatus(), requestComplete);
    EXPECT_FALSE(behind->buffer.getHolder());
}

TEST_F(ReadByVideoSamplesTest, IsCompleteWithoutABufferAtTheEndOfTheData) {
    script->videoRead = [](Ox::Ptr<ByteBufferImpl>&, Ox::Ptr<AudioReadRequest>&) {
        return OxResult(oxEndOfData);
    };
    open({soundFormat(2)});
    EXPECT_EQ(read({})->getRequestStatus(), requestComplete);
}

TEST_F(ReadByVideoSamplesTest, FailsWhereTheReaderGivesNoBuffer) {
    script->videoRead = [](Ox::Ptr<ByteBufferImpl>&, Ox::Ptr<AudioReadRequest>&) {
        return OxResult(oxSuccess);
    };
    open({soundFormat(2)});
    EXPECT_EQ(read({})->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{"** disk read error 0x0\n"});
}

TEST(OutputBuffers, AreOneForEachChannelWithRoomForThatManyFrames) {
    Aud::StreamBufferList list;
    Ox::AudioReader::createOutputBuffers(3, compressedFormat(6, 1024), list);
    ASSERT_EQ(list.size(), 6U);
    EXPECT_EQ(list.sampleCount, 3072U);
    EXPECT_EQ(list.format, soundFormat(2).sampleFormat);
    for (Aud::StreamBuffer const& buffer : list) {
        EXPECT_EQ(buffer.getSize(), 6144U);
        EXPECT_EQ(buffer.getUsed(), 0U);
        EXPECT_EQ(buffer.getTag(), 0U);
        EXPECT_EQ(buffer.getSampleCount(), 3072U);
        EXPECT_EQ(buffer.getSampleFormat(), list.format);
        EXPECT_TRUE(Ox::dynamicPtrCast<ByteBufferImpl>(buffer.getHolder()));
    }
    EXPECT_NE(list[0].getHolder(), list[1].getHolder());
}

TEST(OutputBuffers, LeaveTheListAloneForAFormatWithoutChannels) {
    Aud::StreamBufferList list;
    list.push_back({Ox::makePtr<ByteHolder>(3), 0});
    list.sampleCount = 4711;
    Ox::AudioReader::createOutputBuffers(3, compressedFormat(0, 1024), list);
    EXPECT_EQ(list.size(), 1U);
    EXPECT_EQ(list.sampleCount, 4711U);
    EXPECT_EQ(list.format, Aud::StreamBufferList::noFormat);
}

}  // namespace
