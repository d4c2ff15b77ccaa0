/// The road of a channel's samples from the caller's call to a request, and on to the reader.
#include <cstdint>
#include <limits>
#include <string>

#include "audio/AudioReadRequest.h"
#include "tests/fakes/CacheFixture.h"
#include "tests/fakes/RecordingIssuer.h"
#include "tests/fakes/ScriptedSound.h"
#include "toolkit/services/ResourceText.h"

namespace {

class PlayFileCacheAudioTest : public CacheFixture {
protected:
    using AudioRequestPtr = Ox::Ptr<AudioReadRequest>;

    PlayFileCacheAudioTest() {
        addFile(path);
        reader->describe = [this](PlayFileMetadataRep& metadata) {
            metadata.audioStreams = streams;
            metadata.audioSampleCount = sampleCount;
        };
    }
    ~PlayFileCacheAudioTest() override { request = nullptr; }

    /// The cookie of a channel of the clip, which the catalogue then knows.
    Cookie cookieOf(std::uint8_t channel, std::uint32_t level = levelOriginal) {
        Cookie const cookie = makeCookie(1, 'S', channel);
        catalogue.addFile(cookie, path, level);
        return cookie;
    }
    OxResult ask(std::uint8_t channel, unsigned long start = 0, unsigned count = 100,
                 bool startIsAbsolute = false) {
        return PlayFileCache::Shared()->audioReadRequest(request, cookieOf(channel), start, count,
                                                         levelOriginal, issuer.getProxy(), startIsAbsolute);
    }
    /// The samples to fetch of a compressed stream; 0 if the call fails.
    std::uint32_t fetchOf(std::uint32_t frameSize, unsigned count, unsigned long start = 0) {
        streams = {compressedFormat(2, frameSize)};
        sampleCount = 100000000;
        PlayFileCache::Shared()->closeAll();
        return ask(1, start, count) == oxSuccess ? request->mcsCount : 0;
    }
    /// What a failure with a code leaves in the log.
    static CallLog::Lines failure(OxResult code) {
        return loggedToBoth(std::string("Audio Read request failed: ") + resourceStr(code).str() + "\n");
    }
    /// The lines of this call in console and log, without those of the open.
    CallLog::Lines failuresLogged() { return calls->with("Audio Read"); }

    std::string const path = "/m/a.wav";
    std::vector<Aud::Metadata> streams{soundFormat(2), soundFormat(6)};
    std::uint64_t sampleCount = 10000;
    Ox::Ptr<ScriptedReader> reader = addReader("A");
    RecordingIssuer issuer;
    AudioRequestPtr request;
};

TEST_F(PlayFileCacheAudioTest, BuildsTheRequestFromWhatTheCallerWants) {
    EXPECT_EQ(ask(4, 700, 50), oxSuccess);
    EXPECT_EQ(request->stream, 1U);
    EXPECT_EQ(request->channelInStream, 1U);
    EXPECT_EQ(request->channel, 3U);
    EXPECT_EQ(request->startSample, 700U);
    EXPECT_EQ(request->numSamples, 50U);
    EXPECT_EQ(request->mcsCount, 50U);
    EXPECT_EQ(request->getChannelIndex(), 7U);
    EXPECT_EQ(narrow(request->file->filename), path);
    EXPECT_EQ(request->file->openType.mask(), OpenType::audio);
    EXPECT_EQ(request->issuers.size(), 1U);
}

TEST_F(PlayFileCacheAudioTest, DoesNotQueueTheRequest) {
    ask(1);
    EXPECT_EQ(request->getRequestStatus(), requestBuilt);
    EXPECT_EQ(request.useCount(), 1U);
    EXPECT_EQ(issuer.callCount(), 0U);
}

TEST_F(PlayFileCacheAudioTest, ReplacesTheRequestThatWasThere) {
    ask(1);
    AudioRequestPtr const first = request;
    ask(1);
    EXPECT_NE(request, first);
    EXPECT_EQ(first.useCount(), 1U);
}

TEST_F(PlayFileCacheAudioTest, WorksWithoutAnIssuer) {
    EXPECT_EQ(
        PlayFileCache::Shared()->audioReadRequest(request, cookieOf(1), 0, 10, levelOriginal, nullptr, false),
        oxSuccess);
    EXPECT_TRUE(request->issuers.empty());
}

TEST_F(PlayFileCacheAudioTest, WorksOnTheCacheThatItIsCalledOn) {
    PlayFileCache own(2, 4);
    EXPECT_EQ(own.audioReadRequest(request, cookieOf(1), 0, 10, levelOriginal, nullptr, false), oxSuccess);
    EXPECT_EQ(own.getOpenCount(), 1U);
    EXPECT_EQ(PlayFileCache::Shared()->getOpenCount(), 0U);
}

TEST_F(PlayFileCacheAudioTest, FindsEachChannelInItsStream) {
    struct Case {
        std::uint8_t channel;
        std::uint32_t stream;
        std::uint32_t inStream;
    };
    streams = {soundFormat(1), soundFormat(2), soundFormat(0), soundFormat(3)};
    for (auto const& [channel, stream, inStream] :
         {Case{1, 0, 0}, {2, 1, 0}, {3, 1, 1}, {4, 3, 0}, {5, 3, 1}, {6, 3, 2}}) {
        EXPECT_EQ(ask(channel), oxSuccess);
        EXPECT_EQ(request->stream, stream) << int{channel};
        EXPECT_EQ(request->channelInStream, inStream) << int{channel};
        EXPECT_EQ(request->channel, channel - 1U);
    }
}

TEST_F(PlayFileCacheAudioTest, ServesAChannelThatTheFileDoesNotHaveByItsFirst) {
    for (std::uint8_t const channel : {9, 100, 254}) {
        EXPECT_EQ(ask(channel), oxSuccess);
        EXPECT_EQ(request->stream, 0U);
        EXPECT_EQ(request->channelInStream, 0U);
        EXPECT_EQ(request->channel, channel - 1U);
    }
}

TEST_F(PlayFileCacheAudioTest, OpensTheFileAgainForTheStreamThatHoldsTheChannel) {
    std::vector<std::uint32_t> channelsAsked;
    reader->onReadableTypes = [&](PlayFileMetadataRep const&, Aud::Metadata const& stream) {
        channelsAsked.push_back(stream.channels);
        return 3U;
    };
    catalogue.onFind = [this] { PlayFileCache::Shared()->closeAll(); };
    EXPECT_EQ(ask(4), oxSuccess);
    EXPECT_EQ(channelsAsked, (std::vector<std::uint32_t>{2, 2, 6, 6}));
}

TEST_F(PlayFileCacheAudioTest, FailsWhenTheFileCannotBeOpenedAgain) {
    catalogue.onFind = [this] { PlayFileCache::Shared()->closeAll(); };
    reader->opens = [](ScriptedReader::OpenCall const& call) { return call.number == 1; };
    EXPECT_EQ(ask(4), 2061U);
    EXPECT_FALSE(request);
    EXPECT_EQ(failuresLogged(), failure(2061));
}

TEST_F(PlayFileCacheAudioTest, FailsWhenTheFileHasFewerStreamsTheSecondTime) {
    catalogue.onFind = [this] { PlayFileCache::Shared()->closeAll(); };
    reader->onOpen = [this](ScriptedReader::OpenCall const& call) {
        if (call.number == 2) {
            streams = {soundFormat(2)};
        }
    };
    EXPECT_EQ(ask(4), 2061U);
    EXPECT_FALSE(request);
}

TEST_F(PlayFileCacheAudioTest, OpensTheLevelThatIsWanted) {
    addFile("/m/proxy.wav");
    Cookie const cookie = cookieOf(1);
    catalogue.addFile(cookie, "/m/proxy.wav", levelProxy);
    EXPECT_EQ(PlayFileCache::Shared()->audioReadRequest(request, cookie, 0, 10, levelProxy, nullptr, false),
              oxSuccess);
    EXPECT_EQ(narrow(request->file->filename), "/m/proxy.wav");
    EXPECT_EQ(request->file->decodeFormat.level, levelProxy);
}

TEST_F(PlayFileCacheAudioTest, HoldsTheFileThroughTheRequestWhenTheCacheForgetsIt) {
    ask(1);
    PlayFileCache::Shared()->closeAll();
    EXPECT_EQ(reader->aliveCount(), 1U);
    request = nullptr;
    EXPECT_EQ(reader->aliveCount(), 0U);
}

/// Calls that can't be served.
class RefusedSoundTest : public PlayFileCacheAudioTest {
protected:
    /// Asks with a request of before in hand.
    OxResult askAfterAnother(std::uint8_t channel, unsigned long start = 0) {
        ask(1);
        before = request;
        calls->clear();
        return ask(channel, start);
    }
    AudioRequestPtr before;
};

TEST_F(RefusedSoundTest, IsZeroWithoutAChannelAndOpensNothing) {
    EXPECT_EQ(ask(0), oxFailure);
    EXPECT_EQ(calls->all(), failure(0));
    EXPECT_EQ(PlayFileCache::Shared()->getOpenCount(), 0U);
}

TEST_F(RefusedSoundTest, LeavesTheCallersRequestAlone) {
    EXPECT_EQ(askAfterAnother(0), oxFailure);
    EXPECT_EQ(request, before);
    EXPECT_EQ(askAfterAnother(1, sampleCount), 2061U);
    EXPECT_EQ(request, before);
    EXPECT_EQ(issuer.callCount(), 0U);
}

TEST_F(RefusedSoundTest, Is2061ForAClipThatTheCatalogueDoesNotKnow) {
    EXPECT_EQ(PlayFileCache::Shared()->audioReadRequest(request, makeCookie(99, 'S', 1), 0, 10, levelOriginal,
                                                        nullptr, false),
              2061U);
    EXPECT_EQ(calls->all(), failure(2061));
}

TEST_F(RefusedSoundTest, Is2061ForAFileThatDoesNotOpen) {
    reader->canOpenFiles = false;
    EXPECT_EQ(ask(1), 2061U);
    EXPECT_EQ(failuresLogged(), failure(2061));
}

TEST_F(RefusedSoundTest, Is2061ForAFileWithoutStreams) {
    streams.clear();
    EXPECT_EQ(ask(1), 2061U);
    EXPECT_EQ(failuresLogged(), failure(2061));
}

TEST_F(RefusedSoundTest, Is2061WhereTheFirstStreamHasNoChannels) {
    streams = {soundFormat(0)};
    EXPECT_EQ(ask(1), 2061U);
    streams = {soundFormat(0), soundFormat(2)};
    PlayFileCache::Shared()->closeAll();
    EXPECT_EQ(ask(3), 2061U) << "served by the first channel of the first stream, which isn't there";
    EXPECT_EQ(ask(1), oxSuccess);
}

TEST_F(RefusedSoundTest, Is2061FromTheEndOfTheFileOn) {
    EXPECT_EQ(ask(1, 9999), oxSuccess);
    EXPECT_EQ(request->numSamples, 1U);
    EXPECT_EQ(ask(1, 10000), 2061U);
    EXPECT_EQ(failuresLogged(), failure(2061));
    EXPECT_EQ(ask(1, std::numeric_limits<unsigned long>::max()), 2061U);
}

TEST_F(RefusedSoundTest, Is2061ForAFileOfNoSamples) {
    sampleCount = 0;
    EXPECT_EQ(ask(1), 2061U);
}

/// Where a request begins and where it ends.
using SoundRangeTest = PlayFileCacheAudioTest;

TEST_F(SoundRangeTest, BeginsBehindTheClipsStartOffset) {
    catalogue.setStartOffset(cookieOf(1), 30);
    ask(1, 700);
    EXPECT_EQ(request->startSample, 730U);
    catalogue.setStartOffset(cookieOf(1), -30);
    ask(1, 700);
    EXPECT_EQ(request->startSample, 670U);
}

TEST_F(SoundRangeTest, BeginsAtAnAbsoluteStartWithoutTheOffset) {
    catalogue.setStartOffset(cookieOf(1), 30);
    ask(1, 700, 10, true);
    EXPECT_EQ(request->startSample, 700U);
}

TEST_F(SoundRangeTest, IsRefusedWhereTheOffsetLeadsOutOfTheFile) {
    catalogue.setStartOffset(cookieOf(1), -30);
    EXPECT_EQ(ask(1, 29), 2061U);
    EXPECT_EQ(ask(1, 30), oxSuccess);
    EXPECT_EQ(request->startSample, 0U);
    catalogue.setStartOffset(cookieOf(1), 10000);
    EXPECT_EQ(ask(1, 0), 2061U);
}

TEST_F(SoundRangeTest, UsesTheOffsetOfTheChannelsOwnCookie) {
    catalogue.setStartOffset(cookieOf(2), 30);
    ask(1);
    EXPECT_EQ(request->startSample, 0U);
    ask(2);
    EXPECT_EQ(request->startSample, 30U);
}

TEST_F(SoundRangeTest, EndsAtTheEndOfTheFile) {
    ask(1, 9950, 100);
    EXPECT_EQ(request->numSamples, 50U);
    EXPECT_EQ(request->mcsCount, 50U);
    ask(1, 9950, 50);
    EXPECT_EQ(request->numSamples, 50U);
}

TEST_F(SoundRangeTest, MayBeOfNoSamples) {
    EXPECT_EQ(ask(1, 5, 0), oxSuccess);
    EXPECT_EQ(request->numSamples, 0U);
    EXPECT_EQ(request->mcsCount, 0U);
}

TEST_F(SoundRangeTest, CountsPositionsIn64Bits) {
    sampleCount = (std::uint64_t{1} << 40) + 10;
    ask(1, std::uint64_t{1} << 40, 0xFFFFFFFF);
    EXPECT_EQ(request->startSample, std::uint64_t{1} << 40);
    EXPECT_EQ(request->numSamples, 10U);
    ask(1, 0, 0xFFFFFFFF);
    EXPECT_EQ(request->numSamples, 0xFFFFFFFFU);
    EXPECT_EQ(request->mcsCount, 0xFFFFFFFFU);
}

/// How much is fetched of a compressed stream.
using SoundFetchTest = PlayFileCacheAudioTest;

TEST_F(SoundFetchTest, Of4096SamplesIsARunOfBlocksForEachFrameSize) {
    struct Case {
        std::uint32_t frameSize;
        std::uint32_t blocks;
    };
    for (auto const& [frameSize, blocks] : {Case{0, 1},
                                            {64, 64},
                                            {240, 15},
                                            {384, 3},
                                            {512, 8},
                                            {576, 9},
                                            {960, 15},
                                            {1024, 4},
                                            {1152, 9},
                                            {1536, 3},
                                            {2048, 4},
                                            {4096, 4},
                                            {4608, 9}}) {
        EXPECT_EQ(fetchOf(frameSize, 4096), blocks * 4096) << frameSize;
        EXPECT_EQ(request->numSamples, 4096U);
    }
}

TEST_F(SoundFetchTest, Of4096SamplesHoldsWholeFramesOfAnyOtherSize) {
    EXPECT_EQ(fetchOf(100, 4096), 25U * 4096);
    EXPECT_EQ(fetchOf(128, 4096), 4096U);
    EXPECT_EQ(fetchOf(1, 4096), 4096U);
    EXPECT_EQ(fetchOf(8192, 4096), 2U * 4096);
}

TEST_F(SoundFetchTest, Of4096SamplesIsAtMost64Blocks) {
    EXPECT_EQ(fetchOf(1000, 4096), 262144U);
    EXPECT_EQ(fetchOf(1100, 4096), 262144U);
    EXPECT_EQ(fetchOf(0xFFFFFFFF, 4096), 262144U);
}

TEST_F(SoundFetchTest, OfAnyOtherNumberGoesOnToTheNextFrame) {
    EXPECT_EQ(fetchOf(1152, 4000), 4608U);
    EXPECT_EQ(fetchOf(1152, 4000, 100), 4000U + 508);
    EXPECT_EQ(fetchOf(1152, 4095), 4608U);
    EXPECT_EQ(fetchOf(1152, 4097), 4608U);
    EXPECT_EQ(fetchOf(1000, 1), 1000U);
    EXPECT_EQ(fetchOf(1000, 0), 0U);
}

TEST_F(SoundFetchTest, ThatEndsWithAFrameStaysAsItIs) {
    EXPECT_EQ(fetchOf(1152, 2304), 2304U);
    EXPECT_EQ(fetchOf(1152, 1052, 100), 1052U);
}

TEST_F(SoundFetchTest, OfFramesWithoutASizeStaysAsItIs) {
    EXPECT_EQ(fetchOf(0, 4000), 4000U);
}

TEST_F(SoundFetchTest, OfAStreamThatIsNotCompressedStaysAsItIs) {
    streams = {soundFormat(2)};
    streams[0].samplesPerCodecFrame = 1152;
    ask(1, 0, 4096);
    EXPECT_EQ(request->mcsCount, 4096U);
    ask(1, 0, 4000);
    EXPECT_EQ(request->mcsCount, 4000U);
}

TEST_F(SoundFetchTest, IsThatOfTheStreamWhichHoldsTheChannel) {
    streams = {soundFormat(2), compressedFormat(2, 1152)};
    ask(1, 0, 100);
    EXPECT_EQ(request->mcsCount, 100U);
    ask(3, 0, 100);
    EXPECT_EQ(request->mcsCount, 1152U);
}

TEST_F(SoundFetchTest, EndsAtTheEndOfTheFile) {
    streams = {compressedFormat(2, 1152)};
    ask(1, 9000, 4096);
    EXPECT_EQ(request->numSamples, 1000U);
    EXPECT_EQ(request->mcsCount, 1000U);
    ask(1, 9000, 900);
    EXPECT_EQ(request->numSamples, 900U);
    EXPECT_EQ(request->mcsCount, 1000U) << "the next frame ends behind the file";
}

TEST_F(SoundFetchTest, IsCountedIn64BitsBeforeItIsHeldToTheFile) {
    streams = {compressedFormat(2, 1152)};
    sampleCount = std::uint64_t{1} << 40;
    ask(1, 0, 0xFFFFFFFF);
    EXPECT_EQ(request->mcsCount, 0xFFFFFFFFU) << "not below the samples that are wanted";
}

/// The whole road, on a reader of sound.
class SoundRoadTest : public PlayFileCacheAudioTest {
protected:
    SoundRoadTest() {
        script->sampleCount = sampleCount;
        reader->make = [this](ScriptedReader::OpenCall const& call) {
            return Ox::makePtr<ScriptedSound>(narrow(call.name), call.type, script, streams, call.format);
        };
    }
    SoundScriptPtr const script = std::make_shared<SoundScript>();
};

TEST_F(SoundRoadTest, LeadsFromTheCookieToTheSamplesOfItsChannel) {
    ASSERT_EQ(ask(4, 700, 50), oxSuccess);
    EXPECT_EQ(request->file->queueReadRequest(request), 1U);
    ASSERT_TRUE(issuer.waitForCalls(1));
    EXPECT_EQ(issuer.only().status, requestComplete);
    EXPECT_EQ(bytesOf(request->buffer), madeChannel(1, 1, 700, 50));
}

TEST_F(SoundRoadTest, GoesOnWhenTheCacheForgetsTheFile) {
    script->readGate.close();
    ASSERT_EQ(ask(1), oxSuccess);
    request->file->queueReadRequest(request);
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    PlayFileCache::Shared()->closeAll();
    EXPECT_EQ(script->destroyedCount, 0U);
    script->readGate.open();
    ASSERT_TRUE(issuer.waitForCalls(1));
    EXPECT_EQ(issuer.only().status, requestComplete);
}

}  // namespace
