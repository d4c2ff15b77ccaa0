/// What the trace tells of requests for frames.
#include "tests/fakes/CacheFixture.h"
#include "tests/fakes/ScriptedStream.h"
#include "tests/support/TraceFile.h"
#include "tests/video/QueueFixture.h"
#include "video/FilePreOpen.h"

namespace {

class VideoRequestTrace : protected TraceFile, public QueueFixture {
protected:
    /// The names of a request's events, in order, but for the thread's slices.
    std::vector<std::string> lifeOf(std::uint64_t number) {
        std::vector<std::string> names;
        for (Json const& event : allEvents()) {
            if (event.contains("id") && event["id"] == std::to_string(number)) {
                names.push_back(event["ph"].get<std::string>() + " " + event["name"].get<std::string>());
            }
        }
        return names;
    }
    using Names = std::vector<std::string>;
};

TEST_F(VideoRequestTrace, FollowsARequestFromItsMakingToItsEnd) {
    RequestPtr const request = read(7);
    EXPECT_EQ(lifeOf(request->number), (Names{"b video request", "n queued", "e video request"}));
}

TEST_F(VideoRequestTrace, TellsTheReadWithItsFrameAndFile) {
    RequestPtr const request = read(7);
    Json const event = only("read");
    EXPECT_EQ(event["ph"], "X");
    EXPECT_EQ(event["args"]["request"], request->number);
    EXPECT_EQ(event["args"]["frame"], 7);
    EXPECT_EQ(event["args"]["file"], toUTF8(file->filename).str());
}

TEST_F(VideoRequestTrace, TellsTheCallOfEachIssuer) {
    occupyWorker();
    RequestPtr const request = ask(7, {.issuer = &first});
    RequestPtr const joined = ask(7, {.issuer = &second});
    finish();
    Events const told = named("callback");
    ASSERT_EQ(told.size(), 2U);
    for (Json const& call : told) {
        EXPECT_EQ(call["args"], (Json{{"request", request->number}, {"status", requestComplete}}));
    }
}

TEST_F(VideoRequestTrace, SaysIntoWhichRequestOneWasMerged) {
    occupyWorker();
    RequestPtr const older = ask(7);
    RequestPtr newer = make(7);
    std::uint64_t const number = newer->number;
    queue.queueReadRequest(newer);
    finish();
    EXPECT_EQ(lifeOf(number), (Names{"b video request", "n merged", "e video request"}));
    EXPECT_EQ(only("merged")["args"]["into"], older->number);
}

TEST_F(VideoRequestTrace, ARequestThatIsServedAgainEndsOnce) {
    RequestPtr const request = read(7);
    RequestPtr const again = ask(7, {.issuer = &second});
    EXPECT_EQ(lifeOf(request->number), (Names{"b video request", "n queued", "e video request"}));
}

TEST_F(VideoRequestTrace, SaysThatARequestWasDropped) {
    occupyWorker();
    std::uint64_t number = 0;
    {
        RequestPtr const request = ask(7);
        number = request->number;
    }
    finish();
    EXPECT_EQ(lifeOf(number), (Names{"b video request", "n queued", "n dropped", "e video request"}));
}

TEST_F(VideoRequestTrace, TellsTheStatusOfAFailedRequest) {
    script->answer = [](std::uint32_t) { return 3U; };
    RequestPtr const request = read(7);
    Events const steps = named("video request");
    EXPECT_EQ(steps.back()["args"]["status"], requestFailed);
}

TEST_F(VideoRequestTrace, SaysThatABatchWasBegunAndDecoded) {
    auto const stream = Ox::makePtr<ScriptedStream>(4);
    RequestPtr request = make(6, {.file = stream});
    Ox::Ptr<FrameBufferRep> buffer;
    stream->readVideo(buffer, request);
    Ox::Image::Surface surface;
    buffer->getSurface(0, surface);
    EXPECT_EQ(surface.wait(iThreadEvent::noTimeLimit), Ox::Image::Surface::waitFinished);
    stream->waitUntilIdle();
    Events const decodes = named("decode");
    EXPECT_EQ(only("batch")["args"], (Json{{"request", request->number}, {"firstFrame", 4}}));
    ASSERT_EQ(decodes.size(), 1U);
    EXPECT_EQ(decodes[0]["args"]["frame"], 4);
    EXPECT_EQ(decodes[0]["args"]["count"], 4);
}

class VideoCallTrace : protected TraceFile, public CacheFixture {
protected:
    Ox::Ptr<ScriptedReader> reader = addReader("A");
};

TEST_F(VideoCallTrace, TellsACallOfTheCacheWithTheRequestThatItMade) {
    RecordingIssuer issuer;
    Ox::Ptr<VideoReadRequest> request;
    OxResult const result = PlayFileCache::Shared()->videoReadRequest(
        request, addClip("/m/a.mov"), 5, false, resultAsDelivered, DecodeFormat(), issuer.getProxy());
    ASSERT_EQ(result, oxSuccess);
    ASSERT_TRUE(issuer.waitForCalls(1));
    Json const event = only("videoReadRequest");
    EXPECT_EQ(event["args"], (Json{{"request", request->number}, {"frame", 5}, {"file", "/m/a.mov"}}));
}

TEST_F(VideoCallTrace, TellsAPreOpenFromItsQueuingToItsEnd) {
    Cookie const cookie = addClip("/m/a.mov");
    auto const request = Ox::PreOpenRequest::create(cookie, DecodeFormat(), 0);
    Shutdown::run(Shutdown::normalExit);
    EXPECT_EQ(only("pre-open queued")["args"]["file"], cookie.asString().str());
    EXPECT_EQ(only("pre-open")["args"], (Json{{"isOpen", 1}, {"file", "/m/a.mov"}}));
}

}  // namespace
