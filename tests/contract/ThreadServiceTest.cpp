#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <functional>
#include <stdexcept>

#include "ole/os/OS.h"
#include "tests/fakes/ForwardingOS.h"
#include "tests/fakes/ForwardingThreadService.h"
#include "tests/support/Threads.h"

namespace test {
namespace {

/// What every thread service must do, run on each that there is.
class ThreadServiceContract : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (GetParam()) {
            forwarding_ = std::make_unique<ForwardingThreadService>();
            system_ = std::make_unique<ForwardingOS>();
            system_->threads = forwarding_.get();
        }
    }
    static iThreadService& service() { return OS()->getThreads(); }
    static ThreadEventPtr automatic(bool isSet = false) { return service().makeEvent(false, isSet, 0); }
    static ThreadEventPtr manual(bool isSet = false) { return service().makeEvent(true, isSet, 0); }

private:
    std::unique_ptr<ForwardingThreadService> forwarding_;
    std::unique_ptr<ForwardingOS> system_;
};

TEST_P(ThreadServiceContract, AClearEventTimesOut) {
    EXPECT_EQ(iThreadEvent::timedOut, automatic()->wait(0));
    EXPECT_EQ(iThreadEvent::timedOut, manual()->wait(1));
}

TEST_P(ThreadServiceContract, AnEventCanBeSetFromTheStart) {
    EXPECT_EQ(iThreadEvent::signalled, automatic(true)->wait(0));
    EXPECT_EQ(iThreadEvent::signalled, manual(true)->wait(0));
}

TEST_P(ThreadServiceContract, AnAutomaticEventIsClearAfterOneWait) {
    auto const event = automatic();
    event->set();
    event->set();
    EXPECT_EQ(iThreadEvent::signalled, event->wait(0));
    EXPECT_EQ(iThreadEvent::timedOut, event->wait(0));
}

TEST_P(ThreadServiceContract, AManualEventStaysSetUntilReset) {
    auto const event = manual();
    event->set();
    EXPECT_EQ(iThreadEvent::signalled, event->wait(0));
    EXPECT_EQ(iThreadEvent::signalled, event->wait(0));
    event->reset();
    EXPECT_EQ(iThreadEvent::timedOut, event->wait(0));
}

TEST_P(ThreadServiceContract, ResetClearsAnAutomaticEvent) {
    auto const event = automatic(true);
    event->reset();
    EXPECT_EQ(iThreadEvent::timedOut, event->wait(0));
}

TEST_P(ThreadServiceContract, AManualEventWakesAllWhoWait) {
    auto const event = manual();
    std::atomic<int> woken{0};
    {
        Threads const threads(4, [&] { woken += event->wait(iThreadEvent::noTimeLimit) == 0 ? 1 : 0; });
        event->set();
    }
    EXPECT_EQ(4, woken);
}

TEST_P(ThreadServiceContract, EachSetOfAnAutomaticEventServesOneWait) {
    auto const event = automatic();
    auto const answer = automatic();
    std::atomic<int> served{0};
    {
        Threads const threads(4, [&] {
            for (int round = 0; round < 500; ++round) {
                event->wait(iThreadEvent::noTimeLimit);
                ++served;
                answer->set();
            }
        });
        for (int round = 0; round < 2000; ++round) {
            event->set();
            answer->wait(iThreadEvent::noTimeLimit);
        }
    }
    EXPECT_EQ(2000, served);
    EXPECT_EQ(iThreadEvent::timedOut, event->wait(0));
}

TEST_P(ThreadServiceContract, NoSignalIsLostBetweenLimitsThatPass) {
    auto const event = automatic();
    std::atomic<int> received{0};
    {
        Threads const threads(2, [&] {
            while (received < 2000) {
                received += event->wait(1) == iThreadEvent::signalled ? 1 : 0;
            }
        });
        for (int sent = 0; sent < 2000; ++sent) {
            event->set();
            while (received <= sent) {
                std::this_thread::yield();
            }
        }
    }
    EXPECT_EQ(2000, received);
}

TEST_P(ThreadServiceContract, WaitForAnyNamesTheFirstEventInOrder) {
    EXPECT_EQ(1, service().waitForAny({automatic(), automatic(true), automatic(true)}, 0));
}

TEST_P(ThreadServiceContract, WaitForAnyTellsThatTheLimitPassed) {
    EXPECT_EQ(-1, service().waitForAny({automatic(), manual()}, 1));
    EXPECT_EQ(-1, service().waitForAny({}, 1));
}

TEST_P(ThreadServiceContract, WaitForAnyClearsOnlyTheAutomaticEventThatEndedIt) {
    auto const first = automatic(true);
    auto const second = automatic(true);
    EXPECT_EQ(0, service().waitForAny({first, second}, 0));
    EXPECT_EQ(iThreadEvent::timedOut, first->wait(0));
    EXPECT_EQ(iThreadEvent::signalled, second->wait(0));
}

TEST_P(ThreadServiceContract, WaitForAnyTakesAnEventTwice) {
    auto const event = automatic(true);
    EXPECT_EQ(0, service().waitForAny({event, event}, 0));
    EXPECT_EQ(-1, service().waitForAny({event, event}, 0));
}

TEST_P(ThreadServiceContract, WaitForAnyWakesForEachOfItsEvents) {
    std::vector<ThreadEventPtr> const events{automatic(), automatic(), automatic()};
    auto const answer = automatic();
    std::vector<int> ends;
    {
        Threads const waiter(1, [&] {
            for (int round = 0; round < 3; ++round) {
                ends.push_back(service().waitForAny(events, iThreadEvent::noTimeLimit));
                answer->set();
            }
        });
        for (int const index : {2, 0, 1}) {
            events[static_cast<std::size_t>(index)]->set();
            answer->wait(iThreadEvent::noTimeLimit);
        }
    }
    EXPECT_EQ((std::vector<int>{2, 0, 1}), ends);
}

/// Two threads wait for the same two events. Every signal must reach exactly one of them.
TEST_P(ThreadServiceContract, SignalsOfSeveralEventsReachOneWaiterEach) {
    std::vector<ThreadEventPtr> const events{automatic(), automatic()};
    auto const stop = manual();
    auto const answer = automatic();
    std::atomic<int> received{0};
    {
        Threads const threads(3, [&] {
            for (int index = 0; index != 2;) {
                index = service().waitForAny({events[0], events[1], stop}, 1);
                if (index == 0 || index == 1) {
                    ++received;
                    answer->set();
                }
            }
        });
        for (std::size_t sent = 0; sent < 1000; ++sent) {
            events[sent % 2]->set();
            answer->wait(iThreadEvent::noTimeLimit);
        }
        stop->set();
    }
    EXPECT_EQ(1000, received);
}

TEST_P(ThreadServiceContract, ALockIsHeldByOne) {
    auto const lock = service().makeLock("one");
    ASSERT_TRUE(lock->lock());
    bool isTaken = true;
    {
        Threads const other(1, [&] { isTaken = lock->lock(0); });
    }
    EXPECT_FALSE(isTaken);
    lock->unlock();
    EXPECT_TRUE(lock->lock(0));
    lock->unlock();
}

TEST_P(ThreadServiceContract, ALockGuardsWhatIsCounted) {
    auto const lock = service().makeLock();
    int count = 0;
    {
        Threads const threads(4, [&] {
            for (int round = 0; round < 1000; ++round) {
                lock->lock();
                ++count;
                lock->unlock();
            }
        });
    }
    EXPECT_EQ(4000, count);
}

TEST_P(ThreadServiceContract, SleepsAtLeastAsLongAsAsked) {
    auto const before = std::chrono::steady_clock::now();
    service().sleep(5);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(5));
}

INSTANTIATE_TEST_SUITE_P(Implementations, ThreadServiceContract, ::testing::Bool(),
                         [](auto const& tested) { return tested.param ? "Forwarding" : "Posix"; });

}  // namespace
}  // namespace test
