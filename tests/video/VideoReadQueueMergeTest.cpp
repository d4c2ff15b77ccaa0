/// Which requests are one read.
#include "tests/video/QueueFixture.h"

namespace {

using VideoReadQueueMergeTest = QueueFixture;

TEST_F(VideoReadQueueMergeTest, ReadsOnceForTwoLikeRequestsOfWhichOneWaits) {
    occupyWorker();
    RequestPtr const a = ask(5, {.issuer = &first});
    RequestPtr const b = ask(5, {.issuer = &second});
    EXPECT_EQ(a, b);
    EXPECT_EQ(finish(), Frames{5});
    EXPECT_EQ(first.only().status, requestComplete);
    EXPECT_EQ(second.only().status, requestComplete);
    EXPECT_EQ(numberOf(second.only().result), 5U);
}

TEST_F(VideoReadQueueMergeTest, ReadsOnceForARequestThatComesDuringTheRead) {
    script->readGate.close();
    RequestPtr const a = ask(5, {.issuer = &first});
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    RequestPtr const b = ask(5, {.issuer = &second});
    EXPECT_EQ(a, b);
    EXPECT_EQ(second.callCount(), 0U);
    EXPECT_EQ(finish(), Frames{5});
    EXPECT_EQ(second.only().status, requestComplete);
}

TEST_F(VideoReadQueueMergeTest, TheIssuerOfAFrameThatIsHeldMayLetGoOfIt) {
    RequestPtr held = read(5);
    RequestPtr again;
    RecordingIssuer lettingGo([&](RecordingIssuer::Call const&) { held = again = nullptr; });
    again = make(5, {.issuer = &lettingGo});
    queue.queueReadRequest(again);
    EXPECT_EQ(lettingGo.only().status, requestComplete);
}

TEST_F(VideoReadQueueMergeTest, LetsGoOfWhatIsFinishedAsWell) {
    script->readGate.close();
    RequestPtr dropped = ask(5);
    RequestPtr const held = ask(6, {.issuer = &first});
    script->readGate.open();
    ASSERT_TRUE(first.waitForCalls(1));
    ASSERT_TRUE(threads.waitUntilIdle(script->readBy));
    dropped = nullptr;
    ASSERT_EQ(queue.getActiveCount(), 2U);
    ask(6);
    EXPECT_EQ(queue.getActiveCount(), 1U);
}

TEST_F(VideoReadQueueMergeTest, ReadsTwiceForDifferentFrames) {
    occupyWorker();
    RequestPtr const a = ask(5);
    RequestPtr const b = ask(6);
    EXPECT_EQ(finish(), (Frames{5, 6}));
}

TEST_F(VideoReadQueueMergeTest, ReadsTwiceWhenTheSecondIsWider) {
    occupyWorker();
    RequestPtr const a = ask(5, {.width = 100});
    RequestPtr const b = ask(5, {.width = 101});
    EXPECT_EQ(finish(), (Frames{5, 5}));
}

TEST_F(VideoReadQueueMergeTest, ReadsOnceWhenTheSecondIsNarrower) {
    occupyWorker();
    RequestPtr const a = ask(5, {.width = 100});
    RequestPtr const b = ask(5, {.width = 99});
    EXPECT_EQ(a, b);
    EXPECT_EQ(finish(), Frames{5});
}

TEST_F(VideoReadQueueMergeTest, ReadsTwiceForAnotherResultType) {
    occupyWorker();
    RequestPtr const a = ask(5, {.resultType = resultAsDelivered});
    RequestPtr const b = ask(5, {.resultType = resultDecompressed});
    EXPECT_EQ(finish(), (Frames{5, 5}));
}

TEST_F(VideoReadQueueMergeTest, TellsTwoResultTypesApartThatBothMeanDecompressed) {
    occupyWorker();
    RequestPtr const a = ask(5, {.resultType = resultDecompressed});
    RequestPtr const b = ask(5, {.resultType = static_cast<eResultType>(2)});
    EXPECT_EQ(finish(), (Frames{5, 5}));
}

TEST_F(VideoReadQueueMergeTest, IgnoresHeightAndDataFormat) {
    occupyWorker();
    RequestPtr const a = ask(5, {.height = 10, .format = Ox::Image::gray8});
    RequestPtr const b = ask(5, {.height = 1000, .format = Ox::Image::rgb24});
    EXPECT_EQ(a, b);
    EXPECT_EQ(finish(), Frames{5});
}

TEST_F(VideoReadQueueMergeTest, GivesTheNewIssuerOfAReadFrameItsCallBeforeItReturnsOnTheCallersThread) {
    RequestPtr const held = read(5);
    RequestPtr const again = ask(5, {.issuer = &second});
    EXPECT_EQ(second.only().status, requestComplete);
    EXPECT_EQ(second.only().thread, std::this_thread::get_id());
    EXPECT_EQ(numberOf(second.only().result), 5U);
    EXPECT_EQ(again, held);
    EXPECT_EQ(finish(), Frames{5});
}

TEST_F(VideoReadQueueMergeTest, StillFindsAReadFrameThatNobodyHolds) {
    read(5);
    RequestPtr const again = ask(5, {.issuer = &second});
    EXPECT_EQ(second.callCount(), 1U);
    EXPECT_EQ(finish(), Frames{5});
}

TEST_F(VideoReadQueueMergeTest, ReadsAgainWhenAnotherRequestCameInBetween) {
    read(5);
    RequestPtr const other = read(6);
    RequestPtr const again = ask(5);
    EXPECT_EQ(finish(), (Frames{5, 6, 5}));
}

TEST_F(VideoReadQueueMergeTest, ReadsAgainWhenLimitUsageCameInBetween) {
    read(5);
    queue.limitUsage();
    RequestPtr const again = ask(5);
    EXPECT_EQ(finish(), (Frames{5, 5}));
}

TEST_F(VideoReadQueueMergeTest, ReadsAgainWhenPurgeCameInBetweenThoughTheFrameIsHeld) {
    RequestPtr const held = read(5);
    queue.purge();
    RequestPtr const again = ask(5);
    EXPECT_NE(again, held);
    EXPECT_EQ(finish(), (Frames{5, 5}));
}

TEST_F(VideoReadQueueMergeTest, AFailedRequestThatIsStillHeldAbsorbsNewIssuersAndDoesNotCallThem) {
    script->answer = [](std::uint32_t) { return 3U; };
    RequestPtr const held = read(5, {.issuer = &first});
    RequestPtr again = ask(5, {.issuer = &second});
    EXPECT_EQ(again, held);
    EXPECT_EQ(again->getRequestStatus(), requestFailed);
    EXPECT_EQ(again->issuers.size(), 1U);
    EXPECT_EQ(finish(), Frames{5});
    EXPECT_EQ(second.callCount(), 0U);
}

TEST_F(VideoReadQueueMergeTest, DropsTheNewerRequest) {
    occupyWorker();
    RequestPtr const a = ask(5, {.issuer = &first});
    std::uint32_t const held = file.useCount();
    RequestPtr const b = ask(5, {.issuer = &second});
    EXPECT_EQ(file.useCount(), held);
}

TEST_F(VideoReadQueueMergeTest, LeavesANewerRequestThatSomebodyElseHoldsWithItsIssuers) {
    occupyWorker();
    RequestPtr const a = ask(5, {.issuer = &first});
    RequestPtr b = make(5, {.issuer = &second});
    RequestPtr const kept = b;
    queue.queueReadRequest(b);
    EXPECT_EQ(b, a);
    EXPECT_EQ(kept->issuers.size(), 1U);
    finish();
    EXPECT_EQ(kept->getRequestStatus(), requestBuilt);
}

TEST_F(VideoReadQueueMergeTest, ReadsARequestThatIsQueuedTwiceOnlyOnce) {
    occupyWorker();
    RequestPtr request = ask(5, {.issuer = &first});
    queue.queueReadRequest(request);
    EXPECT_EQ(finish(), Frames{5});
    EXPECT_EQ(first.callCount(), 1U);
}

TEST_F(VideoReadQueueMergeTest, CompletesARequestThatIsReusedForItself) {
    RequestPtr request = read(5);
    request->issuers.addIssuersFrom(IssuersT(second.getProxy()));
    queue.reuseRequest(request, request);
    EXPECT_EQ(second.only().status, requestComplete);
}

TEST_F(VideoReadQueueMergeTest, PrefersARequestThatWaitsToOneUnderWay) {
    script->readGate.close();
    RequestPtr const underWay = ask(5, {.width = 100});
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    RequestPtr const waiting = ask(5, {.width = 200});
    EXPECT_EQ(ask(5, {.width = 50}), waiting);
}

TEST_F(VideoReadQueueMergeTest, PrefersARequestThatWaitsToOneThatIsDone) {
    RequestPtr const done = read(5, {.width = 100});
    occupyWorker();
    RequestPtr const waiting = ask(5, {.width = 200});
    EXPECT_EQ(ask(5, {.width = 50, .issuer = &second}), waiting);
    EXPECT_EQ(second.callCount(), 0U);
}

TEST_F(VideoReadQueueMergeTest, PrefersTheOlderOfTwoThatWait) {
    occupyWorker();
    RequestPtr const older = ask(5, {.width = 100});
    RequestPtr const newer = ask(5, {.width = 200});
    EXPECT_EQ(ask(5, {.width = 50}), older);
}

TEST_F(VideoReadQueueMergeTest, PrefersTheOlderOfTwoThatAreDone) {
    RequestPtr const older = read(5, {.width = 100});
    RequestPtr const newer = read(5, {.width = 200});
    EXPECT_EQ(ask(5, {.width = 50}), older);
}

TEST_F(VideoReadQueueMergeTest, TakesTheFirstThatIsWideEnoughNotTheFirstOfTheFrame) {
    occupyWorker();
    RequestPtr const narrow = ask(5, {.width = 100});
    RequestPtr const wide = ask(5, {.width = 200});
    EXPECT_EQ(ask(5, {.width = 150}), wide);
}

TEST_F(VideoReadQueueMergeTest, FindsNothingInAnEmptyQueue) {
    RequestPtr request = make(5);
    EXPECT_FALSE(queue.findMatchingRequest(request));
}

TEST_F(VideoReadQueueMergeTest, DoesNotCompareFiles) {
    occupyWorker();
    RequestPtr const a = ask(5);
    RequestPtr const b = ask(5, {.file = makeVideoFile(std::make_shared<FileScript>())});
    EXPECT_EQ(a, b);
}

TEST_F(VideoReadQueueMergeTest, ReadsSeparatelyWhatComesBetweenTheListsOfWaitingAndUnderWay) {
    queue.despatchGate.close();
    RequestPtr const onNoList = ask(5);
    ASSERT_TRUE(queue.despatchGate.waitForArrivals(1));
    RequestPtr const like = ask(5);
    EXPECT_NE(like, onNoList);
    EXPECT_EQ(finish(), (Frames{5, 5}));
}

}  // namespace
