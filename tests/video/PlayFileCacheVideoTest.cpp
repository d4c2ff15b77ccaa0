/// The road of a frame from the caller's call to the reader.
#include <cstdint>
#include <limits>

#include "tests/fakes/CacheFixture.h"
#include "tests/fakes/RecordingIssuer.h"
#include "video/QueuePools.h"
#include "video/VideoReadRequest.h"

namespace {

/// A frame rate map of which only its presence counts.
class AnyMap : public virtual iObject {};

class PlayFileCacheVideoTest : public CacheFixture {
protected:
    PlayFileCacheVideoTest() {
        reader->describe = [this](PlayFileMetadataRep& metadata) {
            metadata.videoSampleCount = sampleCount;
            if (hasMap) {
                metadata.frameRateMap = Ox::makePtr<AnyMap>();
            }
            if (hasPoster) {
                Ox::Image::Surface surface;
                poster->getSurface(0, surface);
                metadata.posterSurface = surface;
            }
        };
    }
    ~PlayFileCacheVideoTest() override { request = nullptr; }

    OxResult ask(int frame, eResultType resultType, RecordingIssuer& told) {
        DecodeFormat format;
        format.setWidth(320);
        return PlayFileCache::Shared()->videoReadRequest(request, cookie, frame, false, resultType, format,
                                                         told.getProxy());
    }
    OxResult ask(int frame, eResultType resultType = resultAsDelivered) {
        return ask(frame, resultType, issuer);
    }
    /// Asks for a frame and gives the number in the file that was read; the maximum if none was.
    std::uint32_t frameReadFor(int frame) {
        if (ask(frame) != oxSuccess || !issuer.waitForCalls(1)) {
            return std::numeric_limits<std::uint32_t>::max();
        }
        return request->frame;
    }

    std::uint32_t sampleCount = 100;
    bool hasMap = false;
    bool hasPoster = false;
    Ox::Ptr<FrameBufferRep> poster = makeNumberedBuffer(4711);
    Ox::Ptr<ScriptedReader> reader = addReader("A");
    Cookie cookie = addClip("/m/a.mov");
    RecordingIssuer issuer;
    Ox::Ptr<VideoReadRequest> request;
};

TEST_F(PlayFileCacheVideoTest, ReadsTheFrameAndTellsTheIssuer) {
    EXPECT_EQ(ask(7), oxSuccess);
    ASSERT_TRUE(issuer.waitForCalls(1));
    EXPECT_EQ(issuer.only().status, requestComplete);
    EXPECT_EQ(numberOf(issuer.only().result), 7U);
    EXPECT_EQ(issuer.only().thread, reader->script->readBy.load());
}

TEST_F(PlayFileCacheVideoTest, BuildsTheRequestFromWhatTheCallerWants) {
    ask(7, static_cast<eResultType>(0));
    EXPECT_EQ(request->frame, 7U);
    EXPECT_EQ(request->getWidth(), 320U);
    EXPECT_EQ(request->resultType, resultAsDelivered);
    EXPECT_EQ(narrow(request->file->filename), "/m/a.mov");
    EXPECT_FALSE(request->indexInfo);
}

TEST_F(PlayFileCacheVideoTest, Answers2000ForAClipWithoutAFileAndLeavesTheRequest) {
    ask(7);
    Ox::Ptr<VideoReadRequest> const before = request;
    ASSERT_TRUE(issuer.waitForCalls(1));
    calls->clear();
    cookie = makeCookie(99);
    EXPECT_EQ(ask(8), 2000U);
    EXPECT_EQ(request, before);
    EXPECT_EQ(issuer.callCount(), 1U);
    EXPECT_EQ(calls->all(), CallLog::Lines{});
}

TEST_F(PlayFileCacheVideoTest, Answers2000ForAFileThatDoesNotOpenAndLogsNoMoreThanTheOpen) {
    reader->canOpenFiles = false;
    EXPECT_EQ(ask(7), 2000U);
    EXPECT_FALSE(request);
    EXPECT_EQ(issuer.callCount(), 0U);
    EXPECT_EQ(calls->count("log "), 2U);
}

TEST_F(PlayFileCacheVideoTest, Answers2000FromTheSampleCountOn) {
    sampleCount = 2;
    EXPECT_EQ(ask(1), oxSuccess);
    EXPECT_EQ(ask(2), 2000U);
    EXPECT_EQ(ask(std::numeric_limits<int>::max()), 2000U);
}

TEST_F(PlayFileCacheVideoTest, LeavesRequestIssuerAndLogAloneOutOfRangeAndTheFileOpen) {
    sampleCount = 2;
    calls->clear();
    EXPECT_EQ(ask(2), 2000U);
    EXPECT_FALSE(request);
    EXPECT_EQ(issuer.callCount(), 0U);
    EXPECT_EQ(calls->count("log "), 1U) << "only the line of the open";
    EXPECT_EQ(PlayFileCache::Shared()->getOpenCount(), 1U);
}

TEST_F(PlayFileCacheVideoTest, Answers2000BeforeTheFirstFrame) {
    EXPECT_EQ(ask(-1), 2000U);
    EXPECT_EQ(ask(std::numeric_limits<int>::min()), 2000U);
    EXPECT_FALSE(request);
}

TEST_F(PlayFileCacheVideoTest, ServesEveryFrameThatIsNotNegativeOfAFileOfOneFrame) {
    sampleCount = 1;
    reader->script->origin = 1000;
    EXPECT_EQ(ask(-1), 2000U);
    EXPECT_EQ(frameReadFor(10), 1010U);
    EXPECT_EQ(ask(0), oxSuccess);
    EXPECT_EQ(ask(std::numeric_limits<int>::max()), oxSuccess);
}

TEST_F(PlayFileCacheVideoTest, ServesNoFrameOfAFileWithoutFrames) {
    sampleCount = 0;
    EXPECT_EQ(ask(0), 2000U);
    EXPECT_EQ(ask(5), 2000U);
}

TEST_F(PlayFileCacheVideoTest, LetsAnyPositionThroughOfAFileWithAMap) {
    hasMap = true;
    EXPECT_EQ(ask(100), oxSuccess);
    EXPECT_EQ(request->frame, 100U);
    EXPECT_EQ(ask(-1), oxSuccess);
    EXPECT_EQ(request->frame, 0xFFFFFFFFU);
}

TEST_F(PlayFileCacheVideoTest, AddsTheFilesOrigin) {
    reader->script->origin = 86400;
    EXPECT_EQ(frameReadFor(7), 86407U);
    EXPECT_EQ(reader->script->framesRead(), std::vector<std::uint32_t>{86407});
}

TEST_F(PlayFileCacheVideoTest, AddsTheOriginAfterTheRangeIsChecked) {
    reader->script->origin = -50;
    EXPECT_EQ(ask(100), 2000U);
    EXPECT_EQ(frameReadFor(99), 49U);
}

TEST_F(PlayFileCacheVideoTest, AsksTheReadersIndexForTheFramesNumberInTheFile) {
    reader->script->origin = 10;
    reader->script->indexInfo = [](std::uint32_t) {
        auto info = Ox::makePtr<IndexInfoRep>();
        info->unitEnd = 20;
        return info;
    };
    ask(7);
    EXPECT_EQ(calls->with(".index "), CallLog::Lines{"/m/a.mov.index 17 empty"});
    ASSERT_TRUE(request->indexInfo);
    EXPECT_EQ(request->indexInfo->unitEnd, 20U);
}

TEST_F(PlayFileCacheVideoTest, AddsHalfTheStartOffsetTruncatedTowardZero) {
    struct Case {
        std::int32_t offset;
        std::uint32_t read;
    };
    for (auto const& [offset, read] :
         {Case{5, 52}, {-5, 48}, {4, 52}, {-4, 48}, {1, 50}, {-1, 50}, {0, 50}}) {
        catalogue.setStartOffset(cookie, offset);
        EXPECT_EQ(ask(50), oxSuccess);
        EXPECT_EQ(request->frame, read) << "offset " << offset;
    }
}

TEST_F(PlayFileCacheVideoTest, ChecksTheRangeOfThePositionAndNotOfTheFrame) {
    catalogue.setStartOffset(cookie, 200);
    EXPECT_EQ(ask(0), 2000U);
    EXPECT_EQ(ask(-1), oxSuccess);
    EXPECT_EQ(request->frame, 99U);
}

TEST_F(PlayFileCacheVideoTest, PassesTheFrameOnAsTheStreamIndexOfTheOpen) {
    std::vector<std::uint32_t> channelsAsked;
    reader->describe = [](PlayFileMetadataRep& metadata) {
        metadata.audioStreams.resize(3);
        metadata.audioStreams[2].channels = 6;
    };
    reader->onReadableTypes = [&](PlayFileMetadataRep const&, Aud::Metadata const& stream) {
        channelsAsked.push_back(stream.channels);
        return 3U;
    };
    ask(2);
    EXPECT_EQ(channelsAsked, (std::vector<std::uint32_t>{6, 6}));
}

TEST_F(PlayFileCacheVideoTest, PassesANegativeFrameOnAsAStreamPastTheEnd) {
    std::vector<std::uint32_t> channelsAsked;
    reader->describe = [](PlayFileMetadataRep& metadata) {
        metadata.audioStreams.resize(1);
        metadata.audioStreams[0].channels = 6;
    };
    reader->onReadableTypes = [&](PlayFileMetadataRep const&, Aud::Metadata const& stream) {
        channelsAsked.push_back(stream.channels);
        return 3U;
    };
    ask(-1);
    EXPECT_EQ(channelsAsked, (std::vector<std::uint32_t>{0, 0}));
}

TEST_F(PlayFileCacheVideoTest, WorksOnTheSharedCacheWhicheverObjectItIsCalledOn) {
    PlayFileCache own(2, 4);
    EXPECT_EQ(
        own.videoReadRequest(request, cookie, 7, false, resultAsDelivered, DecodeFormat(), issuer.getProxy()),
        oxSuccess);
    EXPECT_EQ(own.getOpenCount(), 0U);
    EXPECT_EQ(PlayFileCache::Shared()->getOpenCount(), 1U);
}

TEST_F(PlayFileCacheVideoTest, AnswersWhatTheFilesQueueAnswered) {
    reader->script->queueAnswer = 77;
    EXPECT_EQ(ask(7), 77U);
    EXPECT_TRUE(request);
}

TEST_F(PlayFileCacheVideoTest, GivesBackTheOlderRequestForAFrameThatIsHeldAndTellsBeforeItReturns) {
    ask(7);
    ASSERT_TRUE(issuer.waitForCalls(1));
    ASSERT_TRUE(threads.waitUntilIdle(reader->script->readBy));
    Ox::Ptr<VideoReadRequest> const held = request;
    EXPECT_EQ(ask(7), oxSuccess);
    EXPECT_EQ(request, held);
    EXPECT_EQ(issuer.calls().back().thread, std::this_thread::get_id());
    EXPECT_EQ(reader->script->framesRead().size(), 1U);
}

TEST_F(PlayFileCacheVideoTest, AnswersSuccessWhenItMergesIntoARequestThatHasFailed) {
    reader->script->answer = [](std::uint32_t) { return 3U; };
    ask(7);
    ASSERT_TRUE(issuer.waitForCalls(1));
    ASSERT_TRUE(threads.waitUntilIdle(reader->script->readBy));
    EXPECT_EQ(ask(7), oxSuccess);
    EXPECT_EQ(request->getRequestStatus(), requestFailed);
    EXPECT_EQ(issuer.callCount(), 1U);
}

TEST_F(PlayFileCacheVideoTest, WorksWithoutAnIssuer) {
    EXPECT_EQ(PlayFileCache::Shared()->videoReadRequest(request, cookie, 7, true, resultAsDelivered,
                                                        DecodeFormat(), nullptr),
              oxSuccess);
    EXPECT_TRUE(request->issuers.empty());
}

TEST_F(PlayFileCacheVideoTest, HoldsTheFileThroughTheRequestWhenTheCacheForgetsIt) {
    reader->script->readGate.close();
    ask(7);
    ASSERT_TRUE(reader->script->readGate.waitForArrivals(1));
    PlayFileCache::Shared()->closeAll();
    EXPECT_EQ(reader->aliveCount(), 1U);
    reader->script->readGate.open();
    ASSERT_TRUE(issuer.waitForCalls(1));
    EXPECT_EQ(numberOf(issuer.only().result), 7U);
}

/// A file that shows its poster as frame 0.
class PosterTest : public PlayFileCacheVideoTest {
protected:
    PosterTest() { hasPoster = true; }
};

TEST_F(PosterTest, IsToldBeforeTheCallReturnsWithoutTheReaderAndWithoutAQueue) {
    std::uint64_t const created = videoQueuePool().getCreated();
    EXPECT_EQ(ask(0), oxSuccess);
    EXPECT_EQ(issuer.only().thread, std::this_thread::get_id());
    EXPECT_EQ(issuer.only().status, requestComplete);
    EXPECT_EQ(numberOf(issuer.only().result), 4711U);
    EXPECT_EQ(reader->script->framesRead().size(), 0U);
    EXPECT_EQ(videoQueuePool().getCreated(), created);
}

TEST_F(PosterTest, ComesInACompleteRequestForFrameZero) {
    reader->script->origin = 1000;
    ask(0, resultDecompressed);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->frame, 0U);
    EXPECT_EQ(request->resultType, resultDecompressed);
    EXPECT_FALSE(request->indexInfo);
    EXPECT_EQ(calls->count(".index "), 0U);
}

TEST_F(PosterTest, ComesInAStampedBufferWithNothingLeftToDecompress) {
    ask(0, resultDecompressed);
    Ox::Ptr<FrameBufferRep> const buffer = request->getResultBuffer();
    EXPECT_EQ(buffer->decompressStatus, FrameBufferRep::done);
    EXPECT_EQ(buffer->decodeFormat.getWidth(), 320U);
    EXPECT_EQ(buffer->getStartValidFrameIndex(), 0U);
}

TEST_F(PosterTest, ItsIssuerMayLetGoOfTheRequest) {
    RecordingIssuer lettingGo([this](RecordingIssuer::Call const&) { request = nullptr; });
    EXPECT_EQ(ask(0, resultAsDelivered, lettingGo), oxSuccess);
    EXPECT_FALSE(request);
}

TEST_F(PosterTest, IsServedForWhicheverFrameTheStartOffsetMakesPositionZero) {
    catalogue.setStartOffset(cookie, -60);
    ask(30);
    EXPECT_EQ(issuer.callCount(), 1U);
    EXPECT_EQ(reader->script->framesRead().size(), 0U);
}

TEST_F(PosterTest, IsNotServedForFrameZeroAtAnotherPosition) {
    catalogue.setStartOffset(cookie, 60);
    EXPECT_EQ(frameReadFor(0), 30U);
    EXPECT_EQ(reader->script->framesRead().size(), 1U);
}

TEST_F(PosterTest, IsServedBeforeTheRangeIsChecked) {
    sampleCount = 0;
    EXPECT_EQ(ask(0), oxSuccess);
    EXPECT_EQ(issuer.callCount(), 1U);
}

TEST_F(PosterTest, LeavesAllOtherFramesToTheReader) {
    EXPECT_EQ(frameReadFor(1), 1U);
    EXPECT_EQ(numberOf(issuer.only().result), 1U);
}

TEST_F(PosterTest, WhenInvalidLeavesFrameZeroToTheReader) {
    hasPoster = false;
    EXPECT_EQ(frameReadFor(0), 0U);
    EXPECT_EQ(reader->script->framesRead().size(), 1U);
}

}  // namespace
