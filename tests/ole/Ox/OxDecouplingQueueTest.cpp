#include "ole/Ox/OxDecouplingQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <latch>
#include <memory>
#include <optional>

#include "tests/fakes/Gate.h"
#include "tests/fakes/RecordedThreads.h"
#include "tests/ole/Ox/JobOwner.h"
#include "video/VideoReadRequest.h"

namespace {

using test::Job;
using test::JobOwner;
using test::QueueSetup;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t noLimit = 0xFFFFFFFF;

/// Keeps the log's lines.
class KeptLog : public iLogSink {
public:
    KeptLog() : before_(installLogSink(this)) {}
    ~KeptLog() override { installLogSink(before_); }
    void writeToConsole(LightweightString<char> const& text) override { add(console_, text); }
    void writeToLog(LightweightString<char> const& text) override { add(log_, text); }
    [[nodiscard]] std::vector<std::string> console() { return get(console_); }
    [[nodiscard]] std::vector<std::string> log() { return get(log_); }

private:
    void add(std::vector<std::string>& lines, LightweightString<char> const& text) {
        std::scoped_lock const lock(mutex_);
        lines.push_back(text.str());
    }
    std::vector<std::string> get(std::vector<std::string>& lines) {
        std::scoped_lock const lock(mutex_);
        return lines;
    }
    iLogSink* const before_;
    std::mutex mutex_;
    std::vector<std::string> console_;
    std::vector<std::string> log_;
};

class OxDecouplingQueue : public testing::Test {
protected:
    JobOwner& make(QueueSetup const& setup = {}) {
        owner_.emplace(setup);
        return *owner_;
    }
    /// Holds the one worker inside its first job until the gate opens.
    JobOwner& makeBusy() {
        JobOwner& owner = make();
        owner.onDespatch = [this](JobOwner::JobPtr& job) {
            if (job->number == 0) {
                gate.pass();
            }
        };
        owner.add(0);
        EXPECT_TRUE(gate.waitForArrivals(1));
        return owner;
    }
    void destroyOwner() { owner_.reset(); }

    Gate gate{false};
    KeptLog log;
    test::RecordedThreads threads;

private:
    std::optional<JobOwner> owner_;
};

TEST_F(OxDecouplingQueue, MakesAnAutomaticThenAManualEventBothClear) {
    make();
    EXPECT_THAT(threads.callsThatBegin("make event"),
                ElementsAre("make event 1 auto clear 0", "make event 2 manual clear 0"));
}

TEST_F(OxDecouplingQueue, DescribesItsThreads) {
    JobOwner const& owner = make({.stackSize = 0x80000});
    ASSERT_THAT(threads.descriptions(), SizeIs(1));
    ThreadDescription const description = threads.descriptions().front();
    EXPECT_EQ(description.entry, &JobOwner::Queue::decoupledThread);
    EXPECT_EQ(description.argument, owner.theQueue().get());
    EXPECT_EQ(description.stackSize, 0x80000U);
    EXPECT_EQ(description.exceptionHandler, &threadExceptionHandler);
    EXPECT_FALSE(description.isSystemThread);
}

TEST_F(OxDecouplingQueue, NamesItselfAfterTheFullNameOfItsRequests) {
    EXPECT_STREQ(make().theName().c_str(), "DQ<test::Job>");
    EXPECT_STREQ(threads.descriptions().front().name.c_str(), "DQ<test::Job>");
}

TEST_F(OxDecouplingQueue, OfVideoReadsIsNamedAfterThem) {
    class VideoOwner : public DecouplingQueue<VideoReadRequest>::Decoupler {
    public:
        VideoOwner() { init(1, iThread::normal, 0, 0, Shutdown::queueOrder, noLimit); }
        ~VideoOwner() override { queue.decRef(); }
        void despatch(Ox::Ptr<VideoReadRequest>&) override {}
    };
    VideoOwner const owner;
    EXPECT_STREQ(threads.descriptions().front().name.c_str(), "DQ<VideoReadRequest>");
}

TEST_F(OxDecouplingQueue, KeepsANameThatWasSetBefore) {
    EXPECT_STREQ(make({.name = "Frames"}).theName().c_str(), "Frames");
    EXPECT_STREQ(threads.descriptions().front().name.c_str(), "Frames");
}

TEST_F(OxDecouplingQueue, SetsThePriorityOfEachThreadAndThenHandsItTheOption) {
    make({.numThreads = 2});
    std::vector<std::string> calls = threads.calls();
    std::erase_if(calls, [](std::string const& call) { return call.starts_with("wait"); });
    EXPECT_THAT(calls, ElementsAre("make event 1 auto clear 0", "make event 2 manual clear 0",
                                   "make thread DQ<test::Job>", "priority 3 of 1", "affinity -1 of 1",
                                   "make thread DQ<test::Job>", "priority 3 of 2", "affinity -1 of 2"));
}

TEST_F(OxDecouplingQueue, HandsOnPriorityAndOptionUnchanged) {
    make({.priority = iThread::background, .threadOption = 5});
    EXPECT_THAT(threads.callsThatBegin("priority"), ElementsAre("priority 4 of 1"));
    EXPECT_THAT(threads.callsThatBegin("affinity"), ElementsAre("affinity 5 of 1"));
}

TEST_F(OxDecouplingQueue, LogsARefusedPriority) {
    threads.refusesPriority = true;
    make({.name = "Frames"});
    EXPECT_THAT(log.log(), ElementsAre("Failed to set process priority (Frames)\n"));
    EXPECT_THAT(log.console(), ElementsAre("Failed to set process priority (Frames)\n"));
}

TEST_F(OxDecouplingQueue, LogsARefusedPriorityOfANamelessThread) {
    class Nameless : public DecouplingQueue<Job>::Decoupler {
        void despatch(Ox::Ptr<Job>&) override {}
    };
    Nameless owner;
    threads.refusesPriority = true;
    DecouplingQueue<Job> const queue(1, iThread::normal, -1, 0, &owner, noLimit);
    EXPECT_THAT(log.log(), ElementsAre("Failed to set process priority ()\n"));
}

TEST_F(OxDecouplingQueue, KeepsAThreadWhosePriorityIsRefused) {
    threads.refusesPriority = true;
    JobOwner& owner = make();
    EXPECT_THAT(threads.callsThatBegin("affinity"), ElementsAre("affinity -1 of 1"));
    owner.add(1);
    EXPECT_THAT(owner.awaitDone(1), ElementsAre(1));
}

TEST_F(OxDecouplingQueue, MakesAsManyThreadsAsItIsTold) {
    EXPECT_EQ(make({.numThreads = 16}).theQueue()->threadCount(), 16U);
    EXPECT_THAT(threads.descriptions(), SizeIs(16));
}

TEST_F(OxDecouplingQueue, CountsSeventeenThreadsAsSixteen) {
    EXPECT_EQ(make({.numThreads = 17}).theQueue()->threadCount(), 16U);
    EXPECT_THAT(threads.descriptions(), SizeIs(16));
}

TEST_F(OxDecouplingQueue, CountsEveryLargerNumberOfThreadsAsSixteen) {
    EXPECT_EQ(make({.numThreads = 0xFFFFFFFF}).theQueue()->threadCount(), 16U);
}

TEST_F(OxDecouplingQueue, WithoutThreadsMakesNoEventAndNoThread) {
    make({.numThreads = 0});
    EXPECT_THAT(threads.calls(), IsEmpty());
}

TEST_F(OxDecouplingQueue, SleepsOnTheWakingEventAndThenTheStoppingOneWithItsLimit) {
    make({.waitMs = 50});
    threads.awaitCalls("wait", 1);
    EXPECT_THAT(threads.callsThatBegin("wait"), ElementsAre("wait 50 for any 1 2"));
}

TEST_F(OxDecouplingQueue, SleepsWithoutLimitIfItIsTold) {
    make({.waitMs = noLimit});
    threads.awaitCalls("wait", 1);
    EXPECT_THAT(threads.callsThatBegin("wait"), ElementsAre("wait 4294967295 for any 1 2"));
}

TEST_F(OxDecouplingQueue, DespatchesInOrderOfArrival) {
    JobOwner& owner = makeBusy();
    owner.enqueue({1, 2, 3, 4});
    gate.open();
    EXPECT_THAT(owner.awaitDone(5), ElementsAre(0, 1, 2, 3, 4));
}

TEST_F(OxDecouplingQueue, HoldsAReferenceOfItsOwnToAWaitingRequest) {
    JobOwner& owner = makeBusy();
    JobOwner::JobPtr job = Ox::makePtr<Job>(1);
    owner.theQueue()->enqueue(job);
    EXPECT_EQ(job.useCount(), 2U);
    gate.open();
}

TEST_F(OxDecouplingQueue, WorkerHoldsTheOnlyReferenceInsideDespatch) {
    JobOwner& owner = make();
    std::uint32_t useCount = 0;
    owner.onDespatch = [&useCount](JobOwner::JobPtr& job) { useCount = job.useCount(); };
    owner.add(1);
    owner.awaitDone(1);
    EXPECT_EQ(useCount, 1U);
}

TEST_F(OxDecouplingQueue, ReleasesARequestAfterItsDespatch) {
    JobOwner& owner = make();
    JobOwner::JobPtr job = Ox::makePtr<Job>(1);
    owner.theQueue()->enqueue(job);
    owner.theQueue()->signal();
    owner.awaitDone(1);
    threads.awaitCalls("wait", 2);
    EXPECT_EQ(job.useCount(), 1U);
}

TEST_F(OxDecouplingQueue, DespatchesWithoutItsLock) {
    JobOwner& owner = make();
    bool isHeld = true;
    owner.onDespatch = [&](JobOwner::JobPtr&) { isHeld = owner.theQueue()->lock().isHeldByThisThread(); };
    owner.add(1);
    owner.awaitDone(1);
    EXPECT_FALSE(isHeld);
}

TEST_F(OxDecouplingQueue, TakesRequestsWhileOneIsDespatched) {
    JobOwner& owner = makeBusy();
    owner.add(1);
    EXPECT_THAT(owner.theQueue()->requests(), SizeIs(1));
    gate.open();
    owner.awaitDone(2);
}

TEST_F(OxDecouplingQueue, SignalWithoutRequestsWakesNobody) {
    make().theQueue()->signal();
    EXPECT_THAT(threads.callsThatBegin("set"), IsEmpty());
}

TEST_F(OxDecouplingQueue, SignalWakesOutsideTheLock) {
    JobOwner& owner = make();
    bool isHeld = true;
    threads.onSet = [&] { isHeld = owner.theQueue()->lock().isHeldByThisThread(); };
    owner.add(1);
    EXPECT_THAT(threads.callsThatBegin("set"), ElementsAre("set 1"));
    EXPECT_FALSE(isHeld);
    threads.onSet = nullptr;
}

TEST_F(OxDecouplingQueue, LockMayBeHeldAcrossItsCalls) {
    JobOwner& owner = make();
    {
        ScopedLock const scope(owner.theQueue()->lock());
        owner.add(1);
    }
    EXPECT_THAT(owner.awaitDone(1), ElementsAre(1));
}

TEST_F(OxDecouplingQueue, LooksAtItsListWhenTheLimitOfASleepPasses) {
    JobOwner& owner = make();
    owner.enqueue({1, 2});
    threads.expireOneWait();
    EXPECT_THAT(owner.awaitDone(2), ElementsAre(1, 2));
    EXPECT_THAT(threads.callsThatBegin("set"), IsEmpty());
}

TEST_F(OxDecouplingQueue, ServesARequestWithoutASignalWithinItsRealLimit) {
    JobOwner& owner = make({.waitMs = 1});
    owner.enqueue({1});
    EXPECT_THAT(owner.awaitDone(1), ElementsAre(1));
}

TEST_F(OxDecouplingQueue, SleepsOnAfterASleepThatFoundNothing) {
    JobOwner& owner = make();
    threads.expireOneWait();
    threads.awaitCalls("wait", 2);
    owner.add(1);
    EXPECT_THAT(owner.awaitDone(1), ElementsAre(1));
}

TEST_F(OxDecouplingQueue, OneWakeBringsOneWorkerWhichEmptiesTheList) {
    JobOwner& owner = make({.numThreads = 4});
    owner.enqueue({1, 2, 3, 4, 5});
    owner.theQueue()->signal();
    EXPECT_THAT(owner.awaitDone(5), ElementsAre(1, 2, 3, 4, 5));
    auto const workers = owner.workers();
    EXPECT_EQ(std::count(workers.begin(), workers.end(), workers.front()), 5);
}

TEST_F(OxDecouplingQueue, EveryWorkerCanBeAtWorkAtOnce) {
    constexpr int workerCount = 4;
    JobOwner& owner = make({.numThreads = workerCount});
    owner.onDespatch = [this](JobOwner::JobPtr&) { gate.pass(); };
    for (int i = 1; i <= workerCount; ++i) {
        owner.add(i);
        EXPECT_TRUE(gate.waitForArrivals(i));
    }
    gate.open();
    EXPECT_THAT(owner.awaitDone(workerCount), SizeIs(workerCount));
}

TEST_F(OxDecouplingQueue, ServesRequestsFromManyThreadsOnceEach) {
    constexpr int makers = 4;
    constexpr int each = 200;
    JobOwner& owner = make({.numThreads = 3});
    {
        std::vector<std::jthread> makerThreads;
        for (int maker = 0; maker < makers; ++maker) {
            makerThreads.emplace_back([&owner, maker] {
                for (int i = 0; i < each; ++i) {
                    owner.add(maker * each + i);
                }
            });
        }
    }
    std::vector<int> done = owner.awaitDone(makers * each);
    std::sort(done.begin(), done.end());
    EXPECT_EQ(std::unique(done.begin(), done.end()), done.end());
}

TEST_F(OxDecouplingQueue, LeavesAnExceptionOfDespatchToTheThreadsHandler) {
    JobOwner& owner = make({.name = "Frames"});
    owner.onDespatch = [](JobOwner::JobPtr&) { throw std::runtime_error("broken frame"); };
    JobOwner::JobPtr job = Ox::makePtr<Job>(1);
    owner.theQueue()->enqueue(job);
    owner.theQueue()->signal();
    destroyOwner();
    ASSERT_THAT(log.log(), SizeIs(1));
    EXPECT_THAT(log.log().front(), testing::HasSubstr("Frames"));
    EXPECT_THAT(log.log().front(), testing::HasSubstr("broken frame"));
    EXPECT_EQ(job.useCount(), 1U);
}

TEST_F(OxDecouplingQueue, KnowsItsOwnWorkers) {
    JobOwner& owner = make();
    bool isWorker = false;
    owner.onDespatch = [&](JobOwner::JobPtr&) { isWorker = owner.theQueue()->isThisThreadAWorker(); };
    owner.add(1);
    owner.awaitDone(1);
    EXPECT_TRUE(isWorker);
    EXPECT_FALSE(owner.theQueue()->isThisThreadAWorker());
}

}  // namespace
