#include "video/StreamingDecodeReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "playfile/Counters.h"
#include "tests/fakes/CallLog.h"
#include "tests/fakes/ForwardingOS.h"
#include "tests/fakes/ForwardingThreadService.h"
#include "tests/fakes/LogToCalls.h"
#include "tests/fakes/RecordedThreads.h"
#include "tests/fakes/ScriptedStream.h"
#include "tests/fakes/WatchedThreads.h"
#include "video/VideoReadRequest.h"

namespace {

using testing::ElementsAre;
using Surface = Ox::Image::Surface;
using Batch = ScriptedStream::Batch;

/// What `LogBoth` leaves in the record for one text.
CallLog::Lines loggedToBoth(std::string const& text) {
    return {"console " + text, "log " + text};
}

/// The log in force, which tells when a line was written.
class LogWithGate : public LogToCalls {
public:
    using LogToCalls::LogToCalls;
    void writeToConsole(LightweightString<char> const& text) override {
        LogToCalls::writeToConsole(text);
        written.pass();
    }
    void writeToLog(LightweightString<char> const& text) override {
        LogToCalls::writeToLog(text);
        written.pass();
    }
    Gate written{true};
};

/// A system that gives no more threads.
class NoThreads : public test::ForwardingThreadService {
public:
    [[nodiscard]] Ox::Ptr<iThread> makeThread(ThreadDescription const&) override { return {}; }
};

/// Reads frames of a stream as its queue's thread does: one after the other.
class StreamingDecodeReaderTest : public ::testing::Test {
protected:
    /// Reads a frame; the surface may fill in later.
    Surface read(unsigned frame) {
        Ox::Ptr<FileReadInstance> file = stream;
        Ox::Ptr<IndexInfoRep> noIndex;
        DecodeFormat format;
        format.setWidth(320);
        auto request = Ox::makePtr<VideoReadRequest>(file, noIndex, frame, resultAsDelivered, format,
                                                     Ox::Ptr<ReadRequestIssuer::Proxy>());
        buffer = nullptr;
        answer = stream->readVideo(buffer, request);
        Surface surface;
        if (buffer) {
            buffer->getSurface(0, surface);
        }
        return surface;
    }
    /// Reads a frame and waits for its picture.
    std::uint32_t picture(unsigned frame) {
        Surface const surface = read(frame);
        EXPECT_EQ(surface.wait(iThreadEvent::noTimeLimit), Surface::waitFinished);
        return numberIn(surface);
    }
    /// Finishes what a test has left unfinished, so that the next run may begin.
    ~StreamingDecodeReaderTest() override { second_.set(); }

    static bool isFinished(Surface const& surface) { return surface.wait(0) == Surface::waitFinished; }

    WatchedThreads& threads = WatchedThreads::instance();
    std::shared_ptr<CallLog> const calls = std::make_shared<CallLog>();
    LogToCalls logSink{calls};
    Ox::Ptr<ScriptedStream> stream = Ox::makePtr<ScriptedStream>();
    Ox::Ptr<FrameBufferRep> buffer;
    unsigned answer = 0;
    Surface second_;
};

TEST_F(StreamingDecodeReaderTest, AFileThatDoesNotStreamIsReadStraight) {
    stream = Ox::makePtr<ScriptedStream>(4U, false);
    stream->directAnswer = 3;
    read(7);
    EXPECT_EQ(answer, 3U);
    EXPECT_EQ(stream->directReads(), 1U);
}

TEST_F(StreamingDecodeReaderTest, AFileThatDoesNotStreamStartsNoThread) {
    stream = Ox::makePtr<ScriptedStream>(4U, false);
    read(7);
    stream->endStreamDecode();
    EXPECT_FALSE(stream->hasBegun());
    EXPECT_FALSE(threads.find("StreamingDecode"));
}

TEST_F(StreamingDecodeReaderTest, BeginsAtTheFirstRead) {
    EXPECT_FALSE(stream->hasBegun());
    read(0);
    EXPECT_TRUE(stream->hasBegun());
}

TEST_F(StreamingDecodeReaderTest, ItsThreadStandsBehindThoseThatRead) {
    read(0);
    auto const thread = threads.find("StreamingDecode");
    ASSERT_TRUE(thread);
    EXPECT_EQ(thread->priority, 4);
}

TEST_F(StreamingDecodeReaderTest, AnswersThatTheFrameIsThere) {
    read(5);
    EXPECT_EQ(answer, 2U);
}

TEST_F(StreamingDecodeReaderTest, TheBufferIsOfTheOneFrame) {
    read(5);
    EXPECT_EQ(buffer->getStartValidFrameIndex(), 5U);
    EXPECT_EQ(buffer->getNumFrames(), 1U);
}

TEST_F(StreamingDecodeReaderTest, EveryFrameOfARunShowsItsOwnPicture) {
    for (unsigned frame : {5U, 4U, 6U, 7U}) {
        EXPECT_EQ(picture(frame), frame);
    }
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{4, 4}));
}

TEST_F(StreamingDecodeReaderTest, AReadDoesNotWaitForItsFrame) {
    stream->batchGate.close();
    Surface const surface = read(5);
    EXPECT_FALSE(isFinished(surface));
    EXPECT_FALSE(surface.valid());
    stream->batchGate.open();
    EXPECT_EQ(surface.wait(iThreadEvent::noTimeLimit), Surface::waitFinished);
    EXPECT_EQ(numberIn(surface), 5U);
}

TEST_F(StreamingDecodeReaderTest, AReadInsideTheRunReturnsWhileItIsDecoded) {
    stream->frameGate.close();
    Surface const first = read(4);
    EXPECT_TRUE(stream->frameGate.waitForArrivals(1));
    Surface const last = read(7);
    EXPECT_FALSE(isFinished(last));
    stream->frameGate.open();
    EXPECT_EQ(last.wait(iThreadEvent::noTimeLimit), Surface::waitFinished);
    EXPECT_EQ(numberIn(last), 7U);
}

TEST_F(StreamingDecodeReaderTest, AFrameIsFinishedAsSoonAsItIsDecoded) {
    stream->frameGate.close();
    Surface const first = read(4);
    Surface const second = read(5);
    stream->frameGate.openOnce();
    EXPECT_EQ(first.wait(iThreadEvent::noTimeLimit), Surface::waitFinished);
    EXPECT_FALSE(isFinished(second));
    stream->frameGate.open();
}

TEST_F(StreamingDecodeReaderTest, WhatIsHandedOutSharesThePixels) {
    Surface const one = read(5);
    Surface const other = read(5);
    EXPECT_TRUE(one.isSameAs(other));
}

TEST_F(StreamingDecodeReaderTest, TheBatchIsStampedWithTheRequest) {
    read(5);
    EXPECT_EQ(stream->current()->decodeFormat.getWidth(), 320U);
}

TEST_F(StreamingDecodeReaderTest, ANewRunMakesTheOldOneThePreviousOne) {
    picture(0);
    picture(4);
    EXPECT_EQ(stream->current()->getStartValidFrameIndex(), 4U);
    EXPECT_EQ(stream->previous()->getStartValidFrameIndex(), 0U);
}

TEST_F(StreamingDecodeReaderTest, AFrameOfThePreviousRunIsServedFromThere) {
    picture(0);
    picture(4);
    EXPECT_EQ(picture(2), 2U);
    EXPECT_EQ(stream->current()->getStartValidFrameIndex(), 4U);
    EXPECT_EQ(stream->previous()->getStartValidFrameIndex(), 0U);
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{0, 4}, Batch{4, 4}));
}

TEST_F(StreamingDecodeReaderTest, ARunTwoBackIsDecodedAgain) {
    picture(0);
    picture(4);
    picture(8);
    EXPECT_EQ(picture(1), 1U);
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{0, 4}, Batch{4, 4}, Batch{8, 4}, Batch{0, 4}));
}

TEST_F(StreamingDecodeReaderTest, TheRunThatGoesAwayBlocksNobody) {
    stream->isForgotten = [](unsigned frame) { return frame == 1; };
    Surface const forgotten = read(1);
    picture(4);
    stream->waitUntilIdle();
    EXPECT_FALSE(isFinished(forgotten));
    read(8);
    EXPECT_TRUE(isFinished(forgotten));
}

TEST_F(StreamingDecodeReaderTest, ANewRunWaitsForTheBusyDecoder) {
    stream->batchGate.close();
    read(0);
    EXPECT_TRUE(stream->batchGate.waitForArrivals(1));
    std::jthread reading([this] { read(4); });
    stream->batchGate.open();
    reading.join();
    EXPECT_EQ(picture(4), 4U);
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{0, 4}, Batch{4, 4}));
}

TEST_F(StreamingDecodeReaderTest, AFrameOfTheRunIsServedWhileTheDecoderIsBusy) {
    stream->batchGate.close();
    read(0);
    EXPECT_TRUE(stream->batchGate.waitForArrivals(1));
    Surface const third = read(3);
    stream->batchGate.open();
    EXPECT_EQ(third.wait(iThreadEvent::noTimeLimit), Surface::waitFinished);
    EXPECT_EQ(numberIn(third), 3U);
}

TEST_F(StreamingDecodeReaderTest, ANewRunBeginsWhenTheOldOneHasItsLastFrame) {
    stream->frameGate.close();
    read(0);
    for (int i = 0; i < 4; ++i) {
        stream->frameGate.openOnce();
    }
    stream->frameGate.open();
    read(4);
    EXPECT_TRUE(stream->previous()->getNumFrames() == 4);
    Surface last;
    stream->previous()->getSurface(3, last);
    EXPECT_TRUE(isFinished(last));
}

TEST_F(StreamingDecodeReaderTest, ARunThatIsDecodedIsNotDecodedAgainOnlyLogged) {
    picture(7);
    stream->waitUntilIdle();
    LogWithGate log(calls);
    stream->wake();
    EXPECT_TRUE(log.written.waitForArrivals(2));
    EXPECT_EQ(calls->with("Double"), loggedToBoth("Double decode of 4\n"));
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{4, 4}));
}

TEST_F(StreamingDecodeReaderTest, CountsTheBatchesAndWhatWasHandedOutOfOneThatIsHeld) {
    PlayFileCounters const& counters = playFileCounters();
    std::uint64_t const batches = counters.streamBatches;
    std::uint64_t const held = counters.streamFramesHeld;
    for (unsigned const frame : {4, 5, 8, 6, 7}) {
        picture(frame);
    }
    EXPECT_EQ(counters.streamBatches, batches + 2);
    EXPECT_EQ(counters.streamFramesHeld, held + 3);
}

TEST_F(StreamingDecodeReaderTest, CountsADoubleDecode) {
    std::uint64_t const before = playFileCounters().streamDoubleDecodes;
    picture(4);
    stream->waitUntilIdle();
    LogWithGate log(calls);
    stream->wake();
    EXPECT_TRUE(log.written.waitForArrivals(2));
    EXPECT_EQ(playFileCounters().streamDoubleDecodes, before + 1);
}

TEST_F(StreamingDecodeReaderTest, ADoubleDecodeFinishesTheFirstFrameOnly) {
    stream->isSetLate = true;
    Surface const first = read(4);
    Surface const second = read(5);
    EXPECT_TRUE(stream->batchGate.waitForArrivals(1));
    stream->waitUntilIdle();
    LogWithGate log(calls);
    stream->wake();
    EXPECT_EQ(first.wait(iThreadEvent::noTimeLimit), Surface::waitFinished);
    EXPECT_TRUE(log.written.waitForArrivals(2));
    EXPECT_FALSE(isFinished(second));
    second_ = second;
}

TEST_F(StreamingDecodeReaderTest, ARunThatWasLeftUnfinishedIsLookedAtAgainAndWaitedFor) {
    stream->isForgotten = [](unsigned frame) { return frame == 3; };
    picture(0);
    stream->waitUntilIdle();
    Surface last = read(3);
    LogWithGate log(calls);
    std::jthread reading([this] { read(4); });
    EXPECT_TRUE(log.written.waitForArrivals(2));
    EXPECT_EQ(calls->with("Double"), loggedToBoth("Double decode of 0\n"));
    EXPECT_EQ(stream->current()->getStartValidFrameIndex(), 0U);
    last.set();
}

TEST_F(StreamingDecodeReaderTest, ARunWithoutPicturesIsFinishedAllTheSame) {
    stream->fails = [](unsigned) { return true; };
    Surface const surface = read(5);
    EXPECT_EQ(surface.wait(iThreadEvent::noTimeLimit), Surface::waitFinished);
    EXPECT_FALSE(surface.valid());
    EXPECT_EQ(answer, 2U);
}

TEST_F(StreamingDecodeReaderTest, ARangeOfNothingMeansTheOneFrame) {
    stream->range = [](unsigned frame, unsigned& start, unsigned& end) { start = end = frame; };
    EXPECT_EQ(picture(9), 9U);
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{9, 1}));
}

TEST_F(StreamingDecodeReaderTest, ARangeOfOneIsTheSame) {
    stream->range = [](unsigned frame, unsigned& start, unsigned& end) {
        start = frame;
        end = frame + 1;
    };
    EXPECT_EQ(picture(9), 9U);
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{9, 1}));
}

TEST_F(StreamingDecodeReaderTest, TheRangeComesAsTheFrame) {
    unsigned start = 0;
    unsigned end = 0;
    stream->range = [&](unsigned, unsigned& s, unsigned& e) {
        start = s;
        end = e;
    };
    read(9);
    EXPECT_EQ(start, 9U);
    EXPECT_EQ(end, 9U);
}

TEST_F(StreamingDecodeReaderTest, ANegativeStartIsOnlyReported) {
    stream->range = [](unsigned, unsigned& start, unsigned& end) {
        start = static_cast<unsigned>(-2);
        end = 2;
    };
    EXPECT_EQ(picture(1), 1U);
    EXPECT_EQ(calls->with("HEVC"), loggedToBoth("HEVC decodeStartIdx is negative 1 from start -2 to 2\n"));
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{static_cast<std::uint32_t>(-2), 4}));
}

TEST_F(StreamingDecodeReaderTest, AStartAboveTheFrameServesNothingAndBreaksNothing) {
    stream->range = [](unsigned frame, unsigned& start, unsigned& end) {
        start = frame + 1;
        end = frame + 3;
    };
    Surface const surface = read(5);
    EXPECT_TRUE(isFinished(surface));
    EXPECT_FALSE(surface.valid());
}

TEST_F(StreamingDecodeReaderTest, ARunIsHeldToWhatAnIndexCanSayAndTheFrameBehindItIsWrapped) {
    stream->range = [](unsigned, unsigned& start, unsigned& end) {
        start = 10;
        end = 70000;
    };
    EXPECT_EQ(picture(10 + 65536 + 4), 14U);
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{10, 65536}));
}

TEST_F(StreamingDecodeReaderTest, EndsInMidRunWhenThatIsDecoded) {
    stream->frameGate.close();
    Surface const last = read(3);
    EXPECT_TRUE(stream->frameGate.waitForArrivals(1));
    std::jthread ending([this] { stream->endStreamDecode(); });
    stream->frameGate.open();
    ending.join();
    EXPECT_EQ(numberIn(last), 3U);
    EXPECT_THAT(stream->decoded(), ElementsAre(Batch{0, 4}));
}

TEST_F(StreamingDecodeReaderTest, WhatIsHeldIsServedAfterTheEnd) {
    picture(5);
    stream->endStreamDecode();
    EXPECT_EQ(picture(6), 6U);
}

TEST_F(StreamingDecodeReaderTest, WhatIsNotHeldIsReadStraightAfterTheEnd) {
    picture(5);
    stream->endStreamDecode();
    read(9);
    EXPECT_EQ(stream->directReads(), 1U);
}

TEST_F(StreamingDecodeReaderTest, WithoutAThreadItIsReadStraight) {
    NoThreads none;
    test::ForwardingOS os;
    os.threads = &none;
    read(5);
    EXPECT_EQ(stream->directReads(), 1U);
    EXPECT_EQ(calls->with("Failed"), loggedToBoth("Failed to make thread (StreamingDecode)\n"));
    stream->endStreamDecode();
}

TEST_F(StreamingDecodeReaderTest, ThePositionIsTheSubclassesOwn) {
    EXPECT_EQ(stream->position(), -999);
    read(4);
    EXPECT_EQ(stream->position(), -999);
}

/// A stream with a record of its events, which count from 1 in the order of making: two of its own, then one
/// for each frame of a run.
class StreamEvents : public StreamingDecodeReaderTest {
protected:
    ~StreamEvents() override {
        buffer = nullptr;
        stream = nullptr;
    }

    test::RecordedThreads recorded;
};

TEST_F(StreamEvents, AreMadeBeforeTheThread) {
    stream->beginStreamDecode();
    EXPECT_THAT(recorded.callsThatBegin("make"),
                ElementsAre("make event 1 auto clear 0", "make event 2 manual set 0",
                            "make lock StreamingDecode", "make thread StreamingDecode"));
}

TEST_F(StreamEvents, WakeItByTheFirstAndTellByTheSecondThatItIsIdle) {
    stream->beginStreamDecode();
    stream->wake();
    recorded.awaitCalls("set", 2);
    EXPECT_THAT(recorded.callsThatBegin("set"), ElementsAre("set 1", "set 2"));
}

TEST_F(StreamEvents, OfTheRunThatGoesAwayAreAllSetInOrderBeforeTheNextIsBegun) {
    picture(0);
    picture(4);
    stream->waitUntilIdle();
    stream->batchGate.close();
    recorded.forget();
    read(8);
    EXPECT_THAT(recorded.callsThatBegin("set"), ElementsAre("set 3", "set 4", "set 5", "set 6", "set 1"));
    stream->batchGate.open();
}

}  // namespace
