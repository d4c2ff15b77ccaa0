/// Which decoder a compressed stream gets.
#include <algorithm>
#include <memory>

#include "tests/audio/AudioFixture.h"
#include "tests/fakes/ByteHolder.h"
#include "tests/fakes/ScriptedDecoder.h"

namespace {

class AudioCodecChoiceTest : public SoundFixture {
protected:
    using Lines = CallLog::Lines;
    static constexpr OxResult accepted = 5;

    AudioCodecChoiceTest() { script->packetCount = 1000; }

    /// Puts a decoder into the registry, behind those that are there.
    DecoderScriptPtr add(int status, bool able = true, bool makes = true) {
        auto decoder = std::make_shared<DecoderScript>();
        decoder->status = status;
        decoder->metadata = compressedFormat(6, 64);
        infos_.push_back(std::make_unique<ScriptedDecoderInfo>(decoder, able, makes));
        return decoder;
    }
    /// One that is tried, and gives these results one after the other, the last one for ever.
    DecoderScriptPtr addTried(std::vector<std::uint32_t> results, bool decodesToStreams = true) {
        DecoderScriptPtr const decoder = add(Ox::AudioCodecInstance::probe);
        decoder->decodesToStreams = decodesToStreams;
        decoder->answer = [results, call = std::size_t{0}](DecodeCall const&) mutable {
            return DecodeAnswer{results[std::min(call++, results.size() - 1)], 10};
        };
        return decoder;
    }
    /// Takes all decoders out of the registry.
    void removeAll() { infos_.clear(); }
    OxResult init(unsigned stream = 0) {
        open({compressedFormat(2, 100), compressedFormat(1, 50)});
        return file->initAudioCodec(stream, configuration);
    }
    [[nodiscard]] bool hasCodec() const { return file->codecs.count(0) != 0; }

    Ox::Ptr<iMemHolder> configuration;

private:
    std::vector<std::unique_ptr<ScriptedDecoderInfo>> infos_;
};

TEST_F(AudioCodecChoiceTest, LeavesAStreamThatNobodyDecodesAsItIs) {
    add(Ox::AudioCodecInstance::ready, false);
    EXPECT_EQ(init(), oxSuccess);
    EXPECT_FALSE(hasCodec());
    EXPECT_TRUE(file->lastFrameRead.empty());
    EXPECT_EQ(file->streams[0].channels, 2U);
}

TEST_F(AudioCodecChoiceTest, ReadsAStreamWithoutADecoderAsPlainSamples) {
    init();
    script->packetCount.reset();
    EXPECT_EQ(bytesRead({.channel = 1}), madeChannel(0, 1, 0, 100));
}

TEST_F(AudioCodecChoiceTest, TakesADecoderThatIsReadyWithoutTryingIt) {
    DecoderScriptPtr const decoder = add(Ox::AudioCodecInstance::ready);
    EXPECT_EQ(init(), accepted);
    EXPECT_TRUE(hasCodec());
    EXPECT_EQ(script->reads(), Reads{});
    EXPECT_EQ(decoder->decodes.size(), 0U);
}

TEST_F(AudioCodecChoiceTest, GivesTheStreamTheDecodersFormat) {
    DecoderScriptPtr const decoder = add(Ox::AudioCodecInstance::ready);
    Aud::Metadata& format = decoder->metadata;
    format = {6, 77, 4, 24, 1152, 44100.0, "mp3", false};
    init();
    Aud::Metadata const& stream = file->metadata->audioStreams[0];
    EXPECT_EQ(stream.channels, 6U);
    EXPECT_EQ(stream.sampleFormat, 77U);
    EXPECT_EQ(stream.bytesPerSample, 4U);
    EXPECT_EQ(stream.bitsPerSample, 24U);
    EXPECT_EQ(stream.samplesPerCodecFrame, 1152U);
    EXPECT_EQ(stream.sampleRate, 44100.0);
    EXPECT_EQ(stream.codec, "mp3");
    EXPECT_FALSE(stream.isCompressedFormat());
}

TEST_F(AudioCodecChoiceTest, LeavesTheOtherStreamsAlone) {
    add(Ox::AudioCodecInstance::ready);
    init(1);
    EXPECT_EQ(file->streams[0].channels, 2U);
    EXPECT_EQ(file->streams[1].channels, 6U);
    EXPECT_FALSE(hasCodec());
    EXPECT_EQ(file->codecs.count(1), 1U);
}

TEST_F(AudioCodecChoiceTest, ResetsTheDecoderThatItTakesAndSetsItBeforeTheFirstFrame) {
    DecoderScriptPtr const decoder = add(Ox::AudioCodecInstance::ready);
    init();
    EXPECT_EQ(decoder->calls->all(), (Lines{"make", "reset"}));
    EXPECT_EQ(file->lastFrameRead.at(0), 0xFFFFFFFFFFFFFFFFU);
}

TEST_F(AudioCodecChoiceTest, TakesTheFirstThatIsReady) {
    DecoderScriptPtr const first = add(Ox::AudioCodecInstance::ready);
    DecoderScriptPtr const second = add(Ox::AudioCodecInstance::ready);
    first->metadata.channels = 3;
    EXPECT_EQ(init(), accepted);
    EXPECT_EQ(file->streams[0].channels, 3U);
    EXPECT_EQ(second->calls->all(), Lines{});
}

TEST_F(AudioCodecChoiceTest, MakesTheDecoderForTheStreamAndItsConfiguration) {
    DecoderScriptPtr const decoder = add(Ox::AudioCodecInstance::ready);
    configuration = Ox::makePtr<ByteHolder>(3);
    init(1);
    EXPECT_EQ(decoder->formatGiven.samplesPerCodecFrame, 50U);
    EXPECT_EQ(decoder->configurationGiven, configuration);
}

TEST_F(AudioCodecChoiceTest, PassesOverOneThatMakesNoInstance) {
    add(Ox::AudioCodecInstance::ready, true, false);
    EXPECT_EQ(init(), oxSuccess);
    EXPECT_FALSE(hasCodec());
    DecoderScriptPtr const second = add(Ox::AudioCodecInstance::ready);
    EXPECT_EQ(init(), accepted);
    EXPECT_EQ(second->calls->count("make"), 1U);
}

TEST_F(AudioCodecChoiceTest, PassesOverAnInstanceThatIsNeitherReadyNorToBeTried) {
    for (int const status : {-1, 1, 3, 4, 6}) {
        DecoderScriptPtr const decoder = add(status);
        EXPECT_EQ(init(), oxSuccess) << status;
        EXPECT_FALSE(hasCodec());
        EXPECT_EQ(decoder->decodes.size(), 0U);
        removeAll();
    }
    EXPECT_EQ(script->reads(), Reads{});
}

TEST_F(AudioCodecChoiceTest, TriesAnInstanceThatAsksForItOnTheFirstFrame) {
    DecoderScriptPtr const decoder = addTried({5});
    EXPECT_EQ(init(), accepted);
    EXPECT_TRUE(hasCodec());
    EXPECT_EQ(script->reads(), (Reads{{0, 0, 1}}));
    EXPECT_EQ(decoder->calls->all(), (Lines{"make", "decode 0", "reset"}));
}

TEST_F(AudioCodecChoiceTest, TellsTheInstanceThatItTriesOfFramesOf99Samples) {
    DecoderScriptPtr const decoder = addTried({0, 5});
    init();
    EXPECT_EQ(decoder->decodes[0].samplesPerFrame, 99U);
    EXPECT_EQ(decoder->decodes[1].samplesPerFrame, 99U);
}

TEST_F(AudioCodecChoiceTest, TriesFourFramesAtMost) {
    DecoderScriptPtr const decoder = addTried({0, 0, 0, 5});
    EXPECT_EQ(init(), accepted);
    EXPECT_EQ(decoder->framesDecoded(), (std::vector<std::uint64_t>{0, 1, 2, 3}));
}

TEST_F(AudioCodecChoiceTest, GivesUpAnInstanceThatNeedsMoreThanFourFrames) {
    DecoderScriptPtr const decoder = addTried({0, 0, 0, 0, 5});
    EXPECT_EQ(init(), oxFailure);
    EXPECT_EQ(decoder->decodes.size(), 4U);
    EXPECT_FALSE(hasCodec());
}

TEST_F(AudioCodecChoiceTest, TriesTheNextWhenOneNeedsMore) {
    addTried({0, 0, 0, 0});
    DecoderScriptPtr const second = addTried({5});
    EXPECT_EQ(init(), accepted);
    EXPECT_EQ(second->framesDecoded(), std::vector<std::uint64_t>{0});
}

TEST_F(AudioCodecChoiceTest, GivesUpAtOnceWithAnyOtherResult) {
    for (std::uint32_t const result : {1U, 3U, 4U, 77U}) {
        DecoderScriptPtr const decoder = addTried({result});
        EXPECT_EQ(init(), result);
        EXPECT_EQ(decoder->decodes.size(), 1U);
        EXPECT_FALSE(hasCodec());
        removeAll();
    }
}

TEST_F(AudioCodecChoiceTest, GivesUpWithOneWhenAFrameCannotBeRead) {
    for (OxResult const code : {OxResult(oxFailure), OxResult(oxNoMorePackets), OxResult(oxEndOfData)}) {
        DecoderScriptPtr const decoder = addTried({0, 5});
        script->answer = [=](SoundRead const& asked) {
            return SoundAnswer{.result = asked.sample == 0 ? OxResult(oxSuccess) : code};
        };
        EXPECT_EQ(init(), oxSuccess);
        EXPECT_EQ(decoder->decodes.size(), 1U);
        EXPECT_FALSE(hasCodec());
        removeAll();
    }
}

TEST_F(AudioCodecChoiceTest, TriesTheNextWhenAFrameCannotBeRead) {
    script->packetCount = 1;
    addTried({0});
    addTried({5});
    EXPECT_EQ(init(), accepted);
    EXPECT_EQ(script->reads(), (Reads{{0, 0, 1}, {0, 1, 1}, {0, 0, 1}}));
}

TEST_F(AudioCodecChoiceTest, AnswersWhatTheLastThatWasTriedSaid) {
    addTried({7});
    addTried({0, 0, 0, 0});
    EXPECT_EQ(init(), oxFailure);
    addTried({9});
    add(1);
    add(Ox::AudioCodecInstance::ready, true, false);
    EXPECT_EQ(init(), 9U) << "those that weren't tried have said nothing";
}

TEST_F(AudioCodecChoiceTest, TriesOnOneFrameOfTheStreamsFormatInTheFormByChannels) {
    DecoderScriptPtr const decoder = addTried({0, 0, 5});
    init();
    EXPECT_EQ(decoder->decodes[0].capacity, 100U * 2);
    EXPECT_EQ(decoder->decodes[0].usedBefore, 0U);
    EXPECT_EQ(decoder->decodes[2].usedBefore, 2U * 10 * 2) << "the output isn't emptied in between";
}

TEST_F(AudioCodecChoiceTest, TriesOnOneFrameOfTheDecodersFormatInTheInterleavedForm) {
    DecoderScriptPtr const decoder = addTried({0, 0, 5}, false);
    init();
    EXPECT_EQ(decoder->decodes[0].capacity, 64U * 2 * 6);
    EXPECT_EQ(decoder->decodes[1].usedBefore, 0U);
    EXPECT_EQ(decoder->decodes[2].usedBefore, 0U) << "the output is emptied in between";
}

TEST_F(AudioCodecChoiceTest, HandsTheSkipsOfEachFrameOn) {
    DecoderScriptPtr const decoder = addTried({0, 5});
    script->answer = [](SoundRead const& asked) {
        return asked.sample == 0 ? SoundAnswer{.skipStart = 3, .skipEnd = 4} : SoundAnswer{};
    };
    init();
    EXPECT_EQ(decoder->decodes[0].skipStart, 3U);
    EXPECT_EQ(decoder->decodes[0].skipEnd, 4U);
    EXPECT_EQ(decoder->decodes[1].skipStart + decoder->decodes[1].skipEnd, 0U);
}

TEST_F(AudioCodecChoiceTest, AnswersFourOfAnInstanceThatDecodesByChannelsInName) {
    class InName : public Ox::AudioCodecInstance {
    public:
        InName() { status = probe; }
        bool decodesToStreams() override { return true; }
        unsigned int getPreRollFrames() override { return 0; }
    };
    class Info : public Ox::AudioDecoderInfo {
    public:
        bool canDecode(Aud::Metadata const&, Ox::Ptr<iMemHolder> const&) override { return true; }
        Ox::Ptr<Ox::AudioCodecInstance> makeInstance(Aud::Metadata const&,
                                                     Ox::Ptr<iMemHolder> const&) override {
            return Ox::makePtr<InName>();
        }
    };
    auto const info = Ox::makePtr<Info>();
    Ox::AudioDecoderInfo::add(info, 1);
    EXPECT_EQ(init(), 4U);
    Ox::AudioDecoderInfo::remove(info);
}

TEST_F(AudioCodecChoiceTest, ReplacesTheDecoderOfAStreamAndForgetsItsPosition) {
    add(Ox::AudioCodecInstance::ready);
    init();
    Ox::Ptr<Ox::AudioCodecInstance> const before = file->codecs.at(0);
    file->lastFrameRead[0] = 12;
    EXPECT_EQ(file->initAudioCodec(0, nullptr), accepted);
    EXPECT_NE(file->codecs.at(0), before);
    EXPECT_EQ(file->lastFrameRead.at(0), file->nothingFed);
}

TEST_F(AudioCodecChoiceTest, KnowsNoStreamThatTheFileDoesNotHave) {
    add(Ox::AudioCodecInstance::ready);
    EXPECT_EQ(init(2), oxFailure);
    EXPECT_TRUE(file->codecs.empty());
}

}  // namespace
