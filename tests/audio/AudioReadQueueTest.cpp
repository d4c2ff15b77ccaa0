/// The life of a request in its queue.
#include "tests/audio/AudioQueueFixture.h"

#include <algorithm>
#include <cstdlib>

#include "playfile/Counters.h"
#include "tests/fakes/ForwardingOS.h"
#include "tests/fakes/ForwardingThreadService.h"
#include "toolkit/services/TimedTask.h"

namespace {

using AudioReadQueueTest = AudioQueueFixture;

TEST_F(AudioReadQueueTest, ServesTheLowestSampleFirst) {
    occupyWorker();
    std::vector<AudioRequestPtr> held;
    for (std::uint64_t const start : {5000U, 1000U, 3000U}) {
        held.push_back(ask({.start = start}));
    }
    EXPECT_EQ(finish(), (Starts{1000, 3000, 5000}));
}

TEST_F(AudioReadQueueTest, ComparesSamplesIn64Bits) {
    occupyWorker();
    std::uint64_t const far = std::uint64_t{1} << 32;
    AudioRequestPtr const late = ask({.start = far});
    AudioRequestPtr const early = ask({.start = 1});
    EXPECT_EQ(finish(), (Starts{1, far}));
}

TEST_F(AudioReadQueueTest, LetsARequestThatComesLaterGoBeforeThoseThatWait) {
    script->readGate.close();
    AudioRequestPtr const underWay = ask({.start = 2000});
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    AudioRequestPtr const waiting = ask({.start = 3000});
    AudioRequestPtr const earlier = ask({.start = 1000});
    EXPECT_EQ(finish(), (Starts{2000, 1000, 3000}));
}

/// Requests that begin at one sample, told apart by the order in which their issuers are called.
class EqualStartTest : public AudioQueueFixture {
protected:
    EqualStartTest() {
        file = Ox::makePtr<ScriptedSound>("sound", OpenType::audio, script,
                                          std::vector{soundFormat(2), soundFormat(2)});
        occupyWorker();
    }
    void add(WantedSound wanted) {
        issuers_.push_back(std::make_unique<RecordingIssuer>());
        wanted.issuer = issuers_.back().get();
        wanted.start = 1000;
        held_.push_back(ask(wanted));
    }
    /// The requests in the order in which they were served, by the order in which they were added.
    std::vector<std::size_t> servedOrder() {
        finish();
        std::vector<std::size_t> order(issuers_.size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            order[i] = i;
        }
        std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
            return issuers_[a]->only().order < issuers_[b]->only().order;
        });
        return order;
    }

private:
    std::vector<std::unique_ptr<RecordingIssuer>> issuers_;
    std::vector<AudioRequestPtr> held_;
};

TEST_F(EqualStartTest, GoByTheirChannelsOverTheStreams) {
    add({.stream = 1, .channel = 1});
    add({.stream = 0, .channel = 1});
    add({.stream = 1, .channel = 0});
    add({.stream = 0, .channel = 0});
    EXPECT_EQ(servedOrder(), (std::vector<std::size_t>{3, 1, 2, 0}));
}

/// A stream of one channel in third place has a lower key than one of six in second.
TEST_F(EqualStartTest, MayGoToALaterStreamFirst) {
    file = Ox::makePtr<ScriptedSound>("sound", OpenType::audio, script,
                                      std::vector{soundFormat(2), soundFormat(6), soundFormat(1)});
    add({.stream = 1, .channel = 0});
    add({.stream = 2, .channel = 0});
    EXPECT_EQ(servedOrder(), (std::vector<std::size_t>{1, 0}));
}

TEST_F(EqualStartTest, GoInOrderOfArrivalWithinAChannelAndAreAllServed) {
    add({.channel = 1, .count = 10});
    add({.channel = 0, .count = 20});
    add({.channel = 1, .count = 30});
    add({.channel = 1, .count = 10});
    add({.channel = 0, .count = 20});
    EXPECT_EQ(servedOrder(), (std::vector<std::size_t>{1, 4, 0, 2, 3}));
}

TEST_F(EqualStartTest, CostOneReadForAllChannels) {
    add({.channel = 0});
    add({.channel = 1});
    finish();
    EXPECT_EQ(script->reads(), (std::vector<SoundRead>{{0, 1000, 100}}));
}

TEST_F(AudioReadQueueTest, ReadsOnAThreadOfItsOwn) {
    AudioRequestPtr const request = ask({.issuer = &issuer});
    ASSERT_TRUE(issuer.waitForCalls(1));
    EXPECT_EQ(issuer.only().thread, script->readBy.load());
    EXPECT_NE(issuer.only().thread, std::this_thread::get_id());
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
}

TEST_F(AudioReadQueueTest, ReadsDifferentQueuesAtTheSameTime) {
    occupyWorker();
    Ox::AudioReadQueue other;
    AudioRequestPtr request = makeSoundRequest(file, {.issuer = &issuer});
    other.queueReadRequest(request);
    EXPECT_TRUE(issuer.waitForCalls(1));
}

TEST_F(AudioReadQueueTest, ShowsAWaitingRequestAsBuiltAndOneUnderWayToo) {
    script->readGate.close();
    AudioRequestPtr const underWay = ask({.start = 1});
    AudioRequestPtr const waiting = ask({.start = 2});
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    EXPECT_EQ(queue->getPendingCount(), 1U);
    EXPECT_EQ(underWay->getRequestStatus(), requestBuilt);
    EXPECT_EQ(waiting->getRequestStatus(), requestBuilt);
}

TEST_F(AudioReadQueueTest, HoldsNoLockWhileItReads) {
    script->readGate.close();
    AudioRequestPtr const underWay = ask({});
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    AudioRequestPtr const second = ask({.start = 100});
    EXPECT_EQ(queue->getPendingCount(), 1U);
}

TEST_F(AudioReadQueueTest, NeitherReadsNorTellsWhenTheCallerDropsItsPointerWhileTheRequestWaits) {
    std::uint64_t const before = playFileCounters().audioRequestsDropped;
    occupyWorker();
    ask({.issuer = &issuer});
    EXPECT_EQ(finish(), Starts{});
    EXPECT_EQ(issuer.callCount(), 0U);
    EXPECT_EQ(playFileCounters().audioRequestsDropped, before + 1);
}

/// The queue's second reference counts for the first round, and nothing is left for the second one.
TEST_F(AudioReadQueueTest, ReadsOnceWhatWaitsTwiceAndIsHeldByNobodyElse) {
    occupyWorker();
    AudioRequestPtr request = ask({.start = 7});
    queue->queueReadRequest(request);
    request = nullptr;
    EXPECT_EQ(finish(), Starts{7});
}

TEST_F(AudioReadQueueTest, ServesWhatIsHeldAmongWhatWasDropped) {
    occupyWorker();
    ask({.start = 1});
    AudioRequestPtr const held = ask({.start = 2});
    ask({.start = 3});
    EXPECT_EQ(finish(), Starts{2});
}

TEST_F(AudioReadQueueTest, FinishesAReadWhoseCallerDropsItsPointerMeanwhile) {
    script->readGate.close();
    AudioRequestPtr request = ask({.issuer = &issuer});
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    request = nullptr;
    finish();
    EXPECT_EQ(issuer.only().status, requestComplete);
}

TEST_F(AudioReadQueueTest, LetsGoOfARequestThatItHasServed) {
    AudioRequestPtr const request = ask({.issuer = &issuer});
    ASSERT_TRUE(issuer.waitForCalls(1));
    ASSERT_TRUE(threads.waitUntilIdle(script->readBy));
    EXPECT_EQ(request.useCount(), 2U) << "this pointer, and what the issuer was told of";
}

TEST_F(AudioReadQueueTest, LeavesARequestAloneWhoseFileReadsNoSound) {
    class Silent : public FileReadInstance {
    public:
        Silent() : FileReadInstance(L"silent", DecodeFormat(), OpenType::audio) {}
        [[nodiscard]] LightweightString<char> getDescription() const override { return "silent"; }
    };
    AudioRequestPtr const request = ask({.issuer = &issuer}, Ox::makePtr<Silent>());
    finish();
    EXPECT_EQ(request->getRequestStatus(), requestBuilt);
    EXPECT_EQ(issuer.callCount(), 0U);
}

TEST_F(AudioReadQueueTest, MakesOneWorkerAsItShouldBe) {
    std::size_t const before = threads.threads().size();
    Ox::AudioReadQueue const other;
    auto const made = threads.threads();
    ASSERT_EQ(made.size(), before + 1);
    EXPECT_EQ(made.back()->description.name.str(), "AudioReadQueue");
    EXPECT_EQ(made.back()->description.stackSize, 0U);
    EXPECT_EQ(made.back()->description.exceptionHandler, &threadExceptionHandler);
    EXPECT_FALSE(made.back()->description.isSystemThread);
    EXPECT_EQ(made.back()->priority, 3);
}

/// The one event is automatic, so that a worker that was woken sleeps again; the other stays set.
TEST_F(AudioReadQueueTest, IsWokenByAnAutomaticEventAndStoppedByAManualOne) {
    unsigned const manualBefore = threads.manualEventMade.arrivals();
    Ox::AudioReadQueue const other;
    EXPECT_EQ(threads.manualEventMade.arrivals(), manualBefore + 1);
}

TEST_F(AudioReadQueueTest, SleepsWithoutALimit) {
    AudioRequestPtr const request = ask({.issuer = &issuer});
    ASSERT_TRUE(issuer.waitForCalls(1));
    ASSERT_TRUE(threads.waitUntilIdle(script->readBy));
    EXPECT_EQ(threads.latestWaitMs, 0xFFFFFFFFU);
}

TEST_F(AudioReadQueueTest, ServesWhatWaitsBeforeItEnds) {
    occupyWorker();
    std::vector<AudioRequestPtr> held;
    for (std::uint64_t const start : {3U, 1U, 2U}) {
        held.push_back(ask({.start = start}));
    }
    ask({.start = 4});
    std::thread ending([&] { queue = nullptr; });
    occupantScript->readGate.open();
    ending.join();
    EXPECT_EQ(script->startsRead(), (Starts{1, 2, 3}));
}

TEST_F(AudioReadQueueTest, EndsAtOnceWithNothingToDo) {
    std::shared_ptr<MadeThread> const worker = threads.find("AudioReadQueue");
    queue = nullptr;
    EXPECT_EQ(worker->ended.arrivals(), 1U);
}

TEST_F(AudioReadQueueTest, TimesEveryRoundAsSectionReadOfTheTaskAudio) {
    auto const rounds = [] {
        auto const sections = TimedTaskManager::getTimedTask("Audio")->getSections();
        auto const found = std::find_if(sections.begin(), sections.end(),
                                        [](auto const& section) { return section.name.view() == "read"; });
        return found == sections.end() ? 0 : found->count;
    };
    AudioRequestPtr const first = ask({.issuer = &issuer});
    ASSERT_TRUE(issuer.waitForCalls(1));
    ASSERT_TRUE(threads.waitUntilIdle(script->readBy));
    std::uint64_t const before = rounds();
    EXPECT_GE(before, 1U);
    occupyWorker();
    ask({});
    AudioRequestPtr const held = ask({.start = 9});
    finish();
    EXPECT_EQ(rounds(), before + 3) << "the occupant, the dropped one and the held one";
}

TEST_F(AudioReadQueueTest, SharesItsTimingTaskWithTheOtherQueues) {
    Ox::AudioReadQueue other;
    AudioRequestPtr const first = ask({.issuer = &issuer});
    AudioRequestPtr second = makeSoundRequest(file, {.start = 500, .issuer = &issuer});
    other.queueReadRequest(second);
    ASSERT_TRUE(issuer.waitForCalls(2));
    auto const all = TimedTaskManager::getAll();
    EXPECT_EQ(std::count_if(all.begin(), all.end(),
                            [](auto const& task) { return task->getName().view() == "Audio"; }),
              1);
}

TEST_F(AudioReadQueueTest, CountsWhatItAccepts) {
    std::uint64_t const before = playFileCounters().audioRequestsQueued;
    AudioRequestPtr const a = ask({});
    AudioRequestPtr const b = ask({});
    EXPECT_EQ(playFileCounters().audioRequestsQueued, before + 2);
}

TEST_F(AudioReadQueueTest, CountsWhatIsReadAndWhatFails) {
    PlayFileCounters const& counters = playFileCounters();
    std::uint64_t const read = counters.audioRequestsRead;
    std::uint64_t const failed = counters.audioReadsFailed;
    script->answer = [](SoundRead const& asked) {
        return SoundAnswer{.result = asked.sample == 500 ? oxFailure : oxSuccess, .samplesRead = asked.count};
    };
    AudioRequestPtr const good = ask({});
    AudioRequestPtr const bad = ask({.start = 500});
    finish();
    EXPECT_EQ(counters.audioRequestsRead, read + 1);
    EXPECT_EQ(counters.audioReadsFailed, failed + 1);
}

TEST_F(AudioReadQueueTest, CountsARequestThatComesAfterShutdownAsFailed) {
    queue->shutdown(Shutdown::normalExit);
    std::uint64_t const failed = playFileCounters().audioReadsFailed;
    ask({});
    EXPECT_EQ(playFileCounters().audioReadsFailed, failed + 1);
}

TEST_F(AudioReadQueueTest, ServesWhatWaitsAtShutdown) {
    occupyWorker();
    AudioRequestPtr const request = ask({.issuer = &issuer});
    occupantScript->readGate.open();
    queue->shutdown(Shutdown::normalExit);
    EXPECT_EQ(issuer.only().status, requestComplete);
}

TEST_F(AudioReadQueueTest, FailsARequestThatComesAfterShutdown) {
    queue->shutdown(Shutdown::normalExit);
    AudioRequestPtr const request = ask({.issuer = &issuer});
    EXPECT_EQ(request->getRequestStatus(), requestFailed);
    EXPECT_EQ(issuer.only().status, requestFailed);
    EXPECT_EQ(issuer.only().result, request);
    EXPECT_EQ(queue->getPendingCount(), 0U);
    EXPECT_EQ(script->reads().size(), 0U);
}

TEST_F(AudioReadQueueTest, MayBeShutDownTwice) {
    queue->shutdown(Shutdown::normalExit);
    queue->shutdown(Shutdown::normalExit);
    EXPECT_EQ(threads.find("AudioReadQueue")->ended.arrivals(), 1U);
}

TEST_F(AudioReadQueueTest, DoesNotWaitForItselfWhenItIsShutDownFromInsideARead) {
    script->duringRead = [&](AudioRequestPtr&) { queue->shutdown(Shutdown::normalExit); };
    AudioRequestPtr const request = ask({.issuer = &issuer});
    EXPECT_TRUE(issuer.waitForCalls(1));
}

/// A queue for which the system has no thread.
TEST(AudioReadQueueWithoutAThread, FailsItsRequestsAndSaysSo) {
    class NoThreads : public test::ForwardingThreadService {
        Ox::Ptr<iThread> makeThread(ThreadDescription const&) override { return {}; }
    } noThreads;
    test::ForwardingOS system;
    system.threads = &noThreads;
    test::LogRecorder const log;
    Ox::AudioReadQueue queue;
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{"Failed to make thread (AudioReadQueue)\n"});
    RecordingIssuer issuer;
    Ox::Ptr<FileReadInstance> const file = Ox::makePtr<ScriptedSound>(
        "sound", OpenType::audio, std::make_shared<SoundScript>(), std::vector{soundFormat(2)});
    AudioRequestPtr request = makeSoundRequest(file, {.issuer = &issuer});
    EXPECT_EQ(queue.queueReadRequest(request), 1U);
    EXPECT_EQ(issuer.only().status, requestFailed);
}

/// What is run at the process's end, run in a process of its own.
class AudioReadQueueDeathTest : public AudioQueueFixture {
protected:
    AudioReadQueueDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(AudioReadQueueDeathTest, IsShutDownWithTheQueues) {
    EXPECT_EXIT(
        {
            AudioRequestPtr const request = ask({.issuer = &issuer});
            bool const isRead = issuer.waitForCalls(1);
            Shutdown::run(Shutdown::normalExit);
            bool const isJoined = threads.find("AudioReadQueue")->ended.arrivals() == 1;
            std::_Exit(isRead && isJoined ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(AudioReadQueueDeathTest, IsForgottenByShutdownWhenItEnds) {
    EXPECT_EXIT(
        {
            queue = nullptr;
            Shutdown::run(Shutdown::normalExit);
            std::_Exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
