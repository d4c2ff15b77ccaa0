/// The life of a request in its queue.
#include <cstdlib>
#include <future>
#include <memory>
#include <string>

#include "playfile/Counters.h"
#include "playfile/Settings.h"
#include "tests/video/QueueFixture.h"

namespace {

using VideoReadQueueTest = QueueFixture;

TEST_F(VideoReadQueueTest, ReadsInOrderOfArrivalOnOneThread) {
    occupyWorker();
    std::vector<RequestPtr> held;
    for (std::uint32_t const frame : {9, 3, 7, 1}) {
        held.push_back(ask(frame));
    }
    EXPECT_EQ(finish(), (Frames{9, 3, 7, 1}));
    EXPECT_EQ(script->readBy.load(), occupantScript->readBy.load());
    EXPECT_NE(script->readBy.load(), std::this_thread::get_id());
}

TEST_F(VideoReadQueueTest, ReadsDifferentQueuesAtTheSameTime) {
    OpenedQueue other(calls);
    script->readGate.close();
    RequestPtr const a = ask(1);
    RequestPtr b = make(2);
    other.queueReadRequest(b);
    EXPECT_TRUE(script->readGate.waitForArrivals(2));
    script->readGate.open();
}

TEST_F(VideoReadQueueTest, ShowsARequestAsTakenUpAndKeptDuringItsRead) {
    RequestStatus statusInside = requestFailed;
    std::size_t keptInside = 0;
    script->duringRead = [&](RequestPtr& request) {
        statusInside = request->getRequestStatus();
        keptInside = queue.getActiveCount();
    };
    RequestPtr const request = ask(5);
    finish();
    EXPECT_EQ(statusInside, requestTakenUp);
    EXPECT_EQ(keptInside, 1U);
}

TEST_F(VideoReadQueueTest, ShowsAWaitingRequestAsBuilt) {
    occupyWorker();
    RequestPtr const request = ask(5);
    EXPECT_EQ(request->getRequestStatus(), requestBuilt);
    EXPECT_EQ(queue.getPendingCount(), 1U);
}

TEST_F(VideoReadQueueTest, HoldsNoLockWhileAFrameIsRead) {
    script->readGate.close();
    RequestPtr const request = ask(5);
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    queue.limitUsage();
    EXPECT_EQ(queue.getActiveCount(), 1U);
}

TEST_F(VideoReadQueueTest, NeitherReadsNorTellsWhenTheCallerDropsItsPointerWhileTheRequestWaits) {
    occupyWorker();
    ask(5, {.issuer = &first});
    EXPECT_EQ(finish(), Frames{});
    EXPECT_EQ(first.callCount(), 0U);
}

/// A file of which the test holds nothing.
class ForgottenFile : public QueueFixture {
protected:
    /// A finished read of it.
    RequestPtr readOne(std::uint32_t frame) {
        RecordingIssuer own;
        RequestPtr request = ask(frame, {.issuer = &own, .file = forgotten_});
        EXPECT_TRUE(own.waitForCalls(1));
        EXPECT_TRUE(threads.waitUntilIdle(forgottenScript_->readBy));
        return request;
    }

    FileScriptPtr const forgottenScript_ = std::make_shared<FileScript>(calls);
    Ox::Ptr<FileReadInstance> forgotten_ = makeVideoFile(forgottenScript_);
};

TEST_F(ForgottenFile, GoesWithItsFinishedRequestsWhenTheWorkerRests) {
    readOne(5);
    readOne(6);
    forgotten_ = nullptr;
    EXPECT_TRUE(forgottenScript_->destroyGate.waitForArrivals(1));
    EXPECT_EQ(queue.getActiveCount(), 0U);
}

TEST_F(ForgottenFile, StaysWhileSomebodyHoldsARequestOfIt) {
    RequestPtr const held = readOne(5);
    readOne(6);
    forgotten_ = nullptr;
    ASSERT_TRUE(threads.waitUntilIdle(forgottenScript_->readBy));
    EXPECT_EQ(forgottenScript_->destroyedCount, 0U);
    EXPECT_EQ(queue.getActiveCount(), 2U);
}

TEST_F(ForgottenFile, KeepsItsUnusedRequestsWhileSomebodyHoldsTheFile) {
    readOne(5);
    ASSERT_TRUE(threads.waitUntilIdle(forgottenScript_->readBy));
    EXPECT_EQ(queue.getActiveCount(), 1U);
}

TEST_F(VideoReadQueueTest, KeepsNoDroppedRequest) {
    occupyWorker();
    ask(5, {.issuer = &first});
    ask(6, {.issuer = &first});
    finish();
    EXPECT_EQ(queue.getActiveCount(), 1U) << "only the one that occupied the worker";
}

TEST_F(VideoReadQueueTest, LeavesTheStatusOfARequestThatOnlyItsWorkerHolds) {
    RequestPtr request = make(5, {.issuer = &first});
    queue.despatch(request);
    EXPECT_EQ(request->getRequestStatus(), requestBuilt);
    EXPECT_EQ(queue.getActiveCount(), 0U);
    EXPECT_EQ(script->framesRead(), Frames{});
}

TEST_F(VideoReadQueueTest, ReadsADroppedRequestInWhichAnotherWasMerged) {
    occupyWorker();
    RequestPtr dropped = ask(5, {.issuer = &first});
    RequestPtr const other = ask(5, {.issuer = &second});
    dropped = nullptr;
    EXPECT_EQ(finish(), Frames{5});
    EXPECT_EQ(first.callCount(), 1U);
    EXPECT_EQ(second.callCount(), 1U);
}

TEST_F(VideoReadQueueTest, ServesARequestThatWasAddedWithoutASignal) {
    RequestPtr request = make(5, {.issuer = &first});
    queue.enqueueSilently(request);
    EXPECT_TRUE(first.waitForCalls(1));
}

TEST_F(VideoReadQueueTest, TellsTheIssuersWhenItIsPurgedDuringARead) {
    script->readGate.close();
    RequestPtr const request = ask(5, {.issuer = &first});
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    queue.purge();
    EXPECT_EQ(queue.getActiveCount(), 0U);
    EXPECT_EQ(finish(), Frames{5});
    EXPECT_EQ(first.only().status, requestComplete);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(queue.getActiveCount(), 0U);
}

TEST_F(VideoReadQueueTest, FinishesAPurgedReadThatNobodyHolds) {
    script->readGate.close();
    RequestPtr request = ask(5, {.issuer = &first});
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    request = nullptr;
    queue.purge();
    finish();
    EXPECT_EQ(first.only().status, requestComplete);
}

TEST_F(VideoReadQueueTest, PurgesWhatIsHeldButNotWhatWaits) {
    RequestPtr const done = read(5);
    occupyWorker();
    RequestPtr const waiting = ask(6);
    queue.purge();
    EXPECT_EQ(queue.getActiveCount(), 0U);
    EXPECT_EQ(queue.getPendingCount(), 1U);
    EXPECT_EQ(finish(), (Frames{5, 6}));
}

TEST_F(VideoReadQueueTest, LimitUsageLetsGoOfFinishedRequestsThatNobodyHolds) {
    read(5);
    EXPECT_EQ(queue.getActiveCount(), 1U);
    queue.limitUsage();
    EXPECT_EQ(queue.getActiveCount(), 0U);
}

TEST_F(VideoReadQueueTest, LimitUsageLetsGoOfFailedRequestsThatNobodyHolds) {
    script->answer = [](std::uint32_t) { return 3U; };
    read(5);
    queue.limitUsage();
    EXPECT_EQ(queue.getActiveCount(), 0U);
}

TEST_F(VideoReadQueueTest, LimitUsageKeepsWhatIsHeldAndGoesOnPastIt) {
    RequestPtr const held = read(5);
    read(6);
    queue.limitUsage();
    EXPECT_EQ(queue.getActiveCount(), 1U);
    EXPECT_EQ(ask(5), held);
}

TEST_F(VideoReadQueueTest, LimitUsageKeepsTheOrderOfWhatItKeeps) {
    RequestPtr const a = read(5, {.width = 100});
    read(6);
    RequestPtr const b = read(5, {.width = 200});
    queue.limitUsage();
    EXPECT_EQ(ask(5, {.width = 10}), a);
}

TEST_F(VideoReadQueueTest, LimitUsageKeepsARequestUnderWay) {
    script->readGate.close();
    RequestPtr request = ask(5, {.issuer = &first});
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    request = nullptr;
    queue.limitUsage();
    EXPECT_EQ(queue.getActiveCount(), 1U);
}

TEST_F(VideoReadQueueTest, LimitUsageNeverRemovesARequestThatItsReaderTookOverAndDoesNotComplete) {
    script->answer = [](std::uint32_t) { return 1U; };
    script->duringRead = [&](RequestPtr& request) {
        Ox::Ptr<iObject> none;
        request->doCallbacks(none, requestBuilt);
    };
    RequestPtr request = read(5);
    EXPECT_EQ(request->getRequestStatus(), requestTakenUp);
    request = nullptr;
    queue.limitUsage();
    EXPECT_EQ(queue.getActiveCount(), 1U);
}

TEST_F(VideoReadQueueTest, LetsGoOfFinishedRequestsWheneverAnotherComes) {
    read(5);
    RequestPtr const next = read(6);
    EXPECT_EQ(queue.getActiveCount(), 1U);
}

TEST_F(VideoReadQueueTest, LimitUsageReleasesOutsideTheLock) {
    auto const slowScript = std::make_shared<FileScript>();
    RecordingIssuer told;
    RequestPtr request = ask(5, {.issuer = &told, .file = makeVideoFile(slowScript)});
    ASSERT_TRUE(told.waitForCalls(1));
    ASSERT_TRUE(threads.waitUntilIdle(slowScript->readBy));
    slowScript->destroyGate.close();
    request = nullptr;
    auto const limiting = std::async(std::launch::async, [&] { queue.limitUsage(); });
    ASSERT_TRUE(slowScript->destroyGate.waitForArrivals(1));
    EXPECT_EQ(queue.getActiveCount(), 0U);
    slowScript->destroyGate.open();
}

TEST_F(VideoReadQueueTest, AnswersOneWhetherItMergesOrQueues) {
    occupyWorker();
    RequestPtr a = make(5);
    RequestPtr b = make(5);
    EXPECT_EQ(queue.queueReadRequest(a), 1U);
    EXPECT_EQ(queue.queueReadRequest(b), 1U);
}

TEST_F(VideoReadQueueTest, MakesOneWorkerAsItShouldBe) {
    std::size_t const before = threads.threads().size();
    OpenedQueue const other(calls);
    auto const made = threads.threads();
    ASSERT_EQ(made.size(), before + 1);
    EXPECT_EQ(made.back()->description.stackSize, 524288U);
    EXPECT_EQ(made.back()->description.name.str(), "DQ<VideoReadRequest>");
    EXPECT_EQ(made.back()->description.exceptionHandler, &threadExceptionHandler);
    EXPECT_FALSE(made.back()->description.isSystemThread);
    EXPECT_EQ(made.back()->priority, 3);
    EXPECT_EQ(made.back()->affinity, -1);
}

TEST_F(VideoReadQueueTest, ServesWhatWaitsBeforeItStops) {
    occupyWorker();
    RequestPtr const request = ask(5, {.issuer = &first});
    occupantScript->readGate.open();
    queue.shutdown(Shutdown::normalExit);
    EXPECT_EQ(first.only().status, requestComplete);
}

TEST_F(VideoReadQueueTest, IsHarmlessToPurgeAndLimitAfterShutdown) {
    RequestPtr const held = read(5);
    read(6);
    queue.shutdown(Shutdown::normalExit);
    queue.limitUsage();
    EXPECT_EQ(queue.getActiveCount(), 1U);
    queue.purge();
    EXPECT_EQ(queue.getActiveCount(), 0U);
    EXPECT_EQ(queue.getPendingCount(), 0U);
}

TEST_F(VideoReadQueueTest, CountsWhatBecomesOfItsRequests) {
    PlayFileCounters const& counters = playFileCounters();
    std::uint64_t const queued = counters.requestsQueued;
    std::uint64_t const merged = counters.requestsMerged;
    std::uint64_t const dropped = counters.requestsDropped;
    occupyWorker();
    RequestPtr const held = ask(5);
    RequestPtr const joined = ask(5);
    ask(6);
    finish();
    EXPECT_EQ(counters.requestsQueued, queued + 3);
    EXPECT_EQ(counters.requestsMerged, merged + 1);
    EXPECT_EQ(counters.requestsDropped, dropped + 1);
}

TEST_F(VideoReadQueueTest, CountsTheFramesThatAreReadAndThoseThatFail) {
    PlayFileCounters const& counters = playFileCounters();
    std::uint64_t const readBefore = counters.framesRead;
    std::uint64_t const failed = counters.framesFailed;
    script->answer = [](std::uint32_t frame) { return frame == 5 ? 3U : 2U; };
    read(5);
    read(6);
    EXPECT_EQ(counters.framesRead, readBefore + 1);
    EXPECT_EQ(counters.framesFailed, failed + 1);
}

TEST_F(VideoReadQueueTest, CountsARequestThatComesAfterShutdownAsFailed) {
    queue.shutdown(Shutdown::normalExit);
    std::uint64_t const failed = playFileCounters().framesFailed;
    ask(5);
    EXPECT_EQ(playFileCounters().framesFailed, failed + 1);
}

TEST_F(VideoReadQueueTest, FailsARequestThatComesAfterShutdown) {
    queue.shutdown(Shutdown::normalExit);
    RequestPtr const request = ask(5, {.issuer = &first});
    EXPECT_EQ(request->getRequestStatus(), requestFailed);
    EXPECT_EQ(first.only().status, requestFailed);
}

TEST_F(VideoReadQueueTest, TheIssuerOfARequestThatComesAfterShutdownMayLetGoOfIt) {
    queue.shutdown(Shutdown::normalExit);
    RequestPtr request;
    RecordingIssuer lettingGo([&](RecordingIssuer::Call const&) { request = nullptr; });
    request = make(5, {.issuer = &lettingGo});
    queue.queueReadRequest(request);
    EXPECT_EQ(lettingGo.only().status, requestFailed);
}

TEST_F(VideoReadQueueTest, ReleasesEverythingWhenItIsDestroyed) {
    auto other = std::make_unique<OpenedQueue>(calls);
    Ox::Ptr<FileReadInstance> const otherFile = makeVideoFile(script);
    RequestPtr request = make(5, {.issuer = &first, .file = otherFile});
    other->queueReadRequest(request);
    ASSERT_TRUE(first.waitForCalls(1));
    request = nullptr;
    other.reset();
    EXPECT_EQ(otherFile.useCount(), 1U);
}

/// What is run at the process's end, run in a process of its own.
class VideoReadQueueDeathTest : public QueueFixture {
protected:
    VideoReadQueueDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    void note(char const* text, std::uint32_t order) {
        using Noting = Ox::FunctionCallback<void, Shutdown::eExitType>;
        Shutdown::addCallback(Ox::makePtr<Noting>([=, this](Shutdown::eExitType) { calls->add(text); }),
                              order);
    }
};

TEST_F(VideoReadQueueDeathTest, StopsAmongTheCallbacksOfOrder401) {
    CallLog::Lines const expected{"400", "queue.shutdown", "401 later", "402"};
    EXPECT_EXIT(
        {
            note("402", 402);
            note("400", 400);
            note("401 later", 401);
            Shutdown::run(Shutdown::normalExit);
            std::_Exit(calls->all() == expected ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

/// The poll delay is read once in a process, so each of these runs in a process of its own.
class ReadPollDelayTest : public ::testing::Test {
protected:
    ReadPollDelayTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// The wait of an idle worker when the setting is `value`; the process ends with it as its code.
    [[noreturn]] static void exitWithWait(int value, std::uint32_t expected) {
        setConfigInt("ReadPollDelay", value);
        exitWithWaitAsSet(expected);
    }
    [[noreturn]] static void exitWithWaitAsSet(std::uint32_t expected) {
        auto& threads = WatchedThreads::instance();
        auto const script = std::make_shared<FileScript>();
        Ox::Ptr<FileReadInstance> file = makeVideoFile(script);
        Ox::Ptr<IndexInfoRep> none;
        RecordingIssuer issuer;
        Ox::VideoReadQueue queue;
        auto request = Ox::makePtr<VideoReadRequest>(file, none, 5U, resultAsDelivered, DecodeFormat(),
                                                     issuer.getProxy());
        queue.queueReadRequest(request);
        bool const isServed = issuer.waitForCalls(1);
        std::_Exit(isServed && threads.latestWaitMs == expected ? 0 : 1);
    }
};

using ReadPollDelayDeathTest = ReadPollDelayTest;

TEST_F(ReadPollDelayDeathTest, IsFiftyMilliseconds) {
    EXPECT_EXIT(exitWithWaitAsSet(50), ::testing::ExitedWithCode(0), "");
}

TEST_F(ReadPollDelayDeathTest, IsTheSetting) {
    EXPECT_EXIT(exitWithWait(7, 7), ::testing::ExitedWithCode(0), "");
}

TEST_F(ReadPollDelayDeathTest, IsAVeryLongWaitWhenNegative) {
    EXPECT_EXIT(exitWithWait(-2, 0xFFFFFFFE), ::testing::ExitedWithCode(0), "");
}

TEST_F(ReadPollDelayDeathTest, IsReadOnceAndKept) {
    EXPECT_EXIT(
        {
            setConfigInt("ReadPollDelay", 7);
            int const atFirst = getReadPollDelay();
            setConfigInt("ReadPollDelay", 9);
            std::_Exit(atFirst == 7 && getReadPollDelay() == 7 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
