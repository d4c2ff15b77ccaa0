#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "tests/fakes/Gate.h"
#include "tests/fakes/RecordedThreads.h"
#include "tests/ole/Ox/JobOwner.h"

namespace {

using test::Job;
using test::JobOwner;
using test::QueueSetup;
using testing::ElementsAre;
using testing::IsEmpty;

/// An owner whose queue is still there when only the base is left of it.
class LateOwner : public DecouplingQueue<Job>::Decoupler {
public:
    LateOwner() { init(1, iThread::normal, 0, 0, Shutdown::queueOrder, iThread::noTimeLimit); }
    void despatch(Ox::Ptr<Job>&) override {}
    [[nodiscard]] LightweightString<char> const* nameAddress() const { return &name; }
    [[nodiscard]] Shutdown::CallbackPtr const& theCallback() const { return shutdownCallback; }
};

class OxDecouplingQueueStop : public testing::Test {
protected:
    using Work = std::function<void(Job const&, JobOwner&)>;

    /// An owner whose one worker is held inside job 0 until the gate opens; `work` is what it does with
    /// each later job.
    static std::unique_ptr<JobOwner> makeBusy(Gate& gate, Work const& work = nullptr) {
        auto owner = std::make_unique<JobOwner>();
        owner->onDespatch = [&gate, work, &self = *owner](JobOwner::JobPtr& job) {
            if (job->number == 0) {
                gate.pass();
            } else if (work) {
                work(*job, self);
            }
        };
        owner->add(0);
        EXPECT_TRUE(gate.waitForArrivals(1));
        return owner;
    }

    test::RecordedThreads threads;
};

TEST_F(OxDecouplingQueueStop, SetsTheStoppingEventAndThenWaitsForEachThreadWithoutLimit) {
    auto owner = std::make_unique<JobOwner>(QueueSetup{.numThreads = 3});
    threads.awaitCalls("wait 4294967295 for any", 3);
    threads.forget();
    owner.reset();
    EXPECT_THAT(threads.calls(), ElementsAre("set 2", "wait for end 4294967295 of 1",
                                             "wait for end 4294967295 of 2", "wait for end 4294967295 of 3"));
}

TEST_F(OxDecouplingQueueStop, DespatchesTheBacklogBeforeTheWaitEnds) {
    Gate gate{false};
    auto const owner = makeBusy(gate);
    owner->enqueue({1, 2, 3});
    std::vector<int> doneBeforeTheWait{-1};
    threads.onWaitForEnd = [&] {
        doneBeforeTheWait = owner->done();
        gate.open();
    };
    owner->shutdown(Shutdown::normalExit);
    EXPECT_THAT(doneBeforeTheWait, IsEmpty());
    EXPECT_THAT(owner->done(), ElementsAre(0, 1, 2, 3));
}

TEST_F(OxDecouplingQueueStop, DespatchesTheBacklogOnTheWorkers) {
    Gate gate{false};
    auto const owner = makeBusy(gate);
    owner->enqueue({1});
    threads.onWaitForEnd = [&] { gate.open(); };
    owner->shutdown(Shutdown::normalExit);
    EXPECT_EQ(owner->workers()[0], owner->workers()[1]);
    EXPECT_NE(owner->workers()[1], std::this_thread::get_id());
}

TEST_F(OxDecouplingQueueStop, DespatchesWhatADespatchAddsMeanwhile) {
    Gate gate{false};
    auto const owner = makeBusy(gate, [](Job const& job, JobOwner& self) {
        if (job.number == 1) {
            self.enqueue({2});
        }
    });
    owner->enqueue({1});
    threads.onWaitForEnd = [&] { gate.open(); };
    owner->shutdown(Shutdown::normalExit);
    EXPECT_THAT(owner->done(), ElementsAre(0, 1, 2));
}

TEST_F(OxDecouplingQueueStop, ManyWorkersDespatchTheBacklogOnce) {
    constexpr int jobCount = 500;
    std::vector<int> numbers(jobCount);
    std::generate(numbers.begin(), numbers.end(), [n = 0]() mutable { return n++; });
    JobOwner owner(QueueSetup{.numThreads = 4});
    owner.enqueue(numbers);
    owner.theQueue()->signal();
    owner.shutdown(Shutdown::normalExit);
    std::vector<int> done = owner.done();
    std::sort(done.begin(), done.end());
    EXPECT_EQ(done, numbers);
}

TEST_F(OxDecouplingQueueStop, LeavesTheOwnerWithoutAQueue) {
    JobOwner owner;
    owner.shutdown(Shutdown::normalExit);
    EXPECT_FALSE(owner.theQueue());
}

TEST_F(OxDecouplingQueueStop, ReleasesBothEvents) {
    auto owner = std::make_unique<JobOwner>();
    ThreadEventPtr const wake = threads.event(1);
    ThreadEventPtr const stop = threads.event(2);
    owner.reset();
    EXPECT_EQ(wake.useCount(), 2U);
    EXPECT_EQ(stop.useCount(), 2U);
}

TEST_F(OxDecouplingQueueStop, ReleasesWithoutDespatchWhatNoThreadTook) {
    JobOwner owner(QueueSetup{.numThreads = 0});
    JobOwner::JobPtr job = Ox::makePtr<Job>(1);
    owner.theQueue()->enqueue(job);
    owner.shutdown(Shutdown::normalExit);
    EXPECT_THAT(owner.done(), IsEmpty());
    EXPECT_EQ(job.useCount(), 1U);
}

TEST_F(OxDecouplingQueueStop, MayComeTwice) {
    JobOwner owner;
    owner.shutdown(Shutdown::normalExit);
    owner.shutdown(Shutdown::normalExit);
    EXPECT_FALSE(owner.theQueue());
}

TEST_F(OxDecouplingQueueStop, ComesWithTheShutdownOfTheProcess) {
    JobOwner owner;
    owner.add(1);
    Shutdown::run(Shutdown::normalExit);
    EXPECT_THAT(owner.done(), ElementsAre(1));
    EXPECT_FALSE(owner.theQueue());
}

TEST_F(OxDecouplingQueueStop, GoesThroughTheOverrideOfTheOwner) {
    JobOwner owner;
    int count = 0;
    owner.onShutdown = [&count] { ++count; };
    Shutdown::run(Shutdown::normalExit);
    EXPECT_EQ(count, 1);
}

TEST_F(OxDecouplingQueueStop, ComesAtTheOwnersPlaceInTheOrder) {
    std::vector<std::string> order;
    auto const note = [&order](char const* text) {
        return Ox::makePtr<Ox::FunctionCallback<void, Shutdown::eExitType>>(
            [&order, text](Shutdown::eExitType const&) { order.emplace_back(text); });
    };
    JobOwner owner(QueueSetup{.shutdownOrder = 401});
    owner.onShutdown = [&order] { order.emplace_back("queue"); };
    Shutdown::addCallback(note("400"), 400);
    Shutdown::addCallback(note("402"), 402);
    Shutdown::run(Shutdown::normalExit);
    EXPECT_THAT(order, ElementsAre("400", "queue", "402"));
}

TEST_F(OxDecouplingQueueStop, OwnerThatHasGoneIsNotToldOfTheShutdown) {
    int count = 0;
    {
        JobOwner owner;
        owner.onShutdown = [&count] { ++count; };
    }
    Shutdown::run(Shutdown::normalExit);
    EXPECT_EQ(count, 0);
}

TEST_F(OxDecouplingQueueStop, OwnerUnregistersAndForgetsItsNameBeforeItsQueueStops) {
    auto owner = std::make_unique<LateOwner>();
    Shutdown::CallbackPtr const callback = owner->theCallback();
    LightweightString<char> const* const name = owner->nameAddress();
    std::uint32_t holders = 0;
    bool isNameless = false;
    threads.onWaitForEnd = [&] {
        holders = callback.useCount();
        isNameless = name->empty();
    };
    owner.reset();
    EXPECT_EQ(holders, 1U);
    EXPECT_TRUE(isNameless);
}

TEST_F(OxDecouplingQueueStop, DerivedOwnersEndDespatchesItsBacklog) {
    std::vector<int> seen;
    Gate gate{false};
    auto owner = makeBusy(gate, [&seen](Job const& job, JobOwner&) { seen.push_back(job.number); });
    owner->enqueue({1, 2});
    threads.onWaitForEnd = [&] { gate.open(); };
    owner.reset();
    EXPECT_THAT(seen, ElementsAre(1, 2));
}

}  // namespace
