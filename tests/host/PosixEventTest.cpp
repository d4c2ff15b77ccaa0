/// How a thread waits for an event: looking first or sleeping at once, claimed once, woken if it sleeps.
#include "host/posix/PosixEvent.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "ole/os/OS.h"
#include "tests/support/ThreadState.h"

namespace test {
namespace {

using eClaim = EventWaiter::eClaim;

constexpr std::uint32_t forEver = iThreadEvent::noTimeLimit;

/// A thread that waits, and what `gettid` says there.
class WaitingThread {
public:
    /// @param before  runs on the thread before it waits
    template <class Before>
    explicit WaitingThread(Before before)
        : thread_([this, before] {
              before();
              number_ = gettid();
              answer_ = waiter_.wait(forEver);
          }) {}
    WaitingThread() : WaitingThread([] {}) {}

    [[nodiscard]] EventWaiter& waiter() { return waiter_; }
    void waitUntilItSleeps() const { waitForSleep(number_); }
    /// What its wait answered.
    std::int32_t answer() {
        thread_.join();
        return answer_;
    }

private:
    EventWaiter waiter_;
    std::atomic<int> number_{0};
    std::int32_t answer_ = EventWaiter::unclaimed;
    std::thread thread_;
};

/// Hands over to another thread and back, so that the calling thread has waited for short times only.
void waitShortly() {
    ThreadEventPtr const there = OS()->getThreads().makeEvent(false, false, 0);
    ThreadEventPtr const back = OS()->getThreads().makeEvent(false, false, 0);
    constexpr int rounds = 200;
    std::thread other([&] {
        for (int round = 0; round < rounds; ++round) {
            there->wait(forEver);
            back->set();
        }
    });
    for (int round = 0; round < rounds; ++round) {
        there->set();
        back->wait(forEver);
    }
    other.join();
}

TEST(EventWaiter, BelongsToTheFirstWhoClaimsIt) {
    EventWaiter waiter;
    EXPECT_EQ(waiter.claim(3), eClaim::whileAwake);
    EXPECT_EQ(waiter.claim(4), eClaim::late);
    EXPECT_EQ(waiter.wait(forEver), 3);
}

TEST(EventWaiter, SaysThatItSleepsToWhoClaimsIt) {
    WaitingThread waiting;
    waiting.waitUntilItSleeps();
    EXPECT_EQ(waiting.waiter().claim(1), eClaim::whileAsleep);
    EventWaiter::wake(waiting.waiter().word());
    EXPECT_EQ(waiting.answer(), 1);
}

TEST(EventWaiter, SleepsInTheEndHoweverShortTheWaitsBeforeWere) {
    WaitingThread waiting(waitShortly);
    waiting.waitUntilItSleeps();
    EXPECT_EQ(waiting.waiter().claim(1), eClaim::whileAsleep);
    EventWaiter::wake(waiting.waiter().word());
    EXPECT_EQ(waiting.answer(), 1);
}

TEST(EventWaiter, IsPassedByItsLimitWhetherItLooksOrSleeps) {
    waitShortly();
    EXPECT_EQ(EventWaiter().wait(0), EventWaiter::limitPassed);
    EXPECT_EQ(EventWaiter().wait(1), EventWaiter::limitPassed);
    EXPECT_EQ(EventWaiter().wait(1), EventWaiter::limitPassed);
}

TEST(EventWaiter, CanNotBeClaimedOnceItsLimitHasPassed) {
    EventWaiter waiter;
    waiter.wait(0);
    EXPECT_EQ(waiter.claim(2), eClaim::late);
    EXPECT_EQ(waiter.result(), EventWaiter::limitPassed);
}

/// More threads than processors, each waiting for the one before: whoever looks must let the others run.
TEST(PosixEvent, GoesRoundAmongManyThreadsThatExpectItSoon) {
    constexpr std::size_t threadCount = 8;
    constexpr int rounds = 300;
    std::vector<ThreadEventPtr> turns;
    for (std::size_t i = 0; i < threadCount; ++i) {
        turns.push_back(OS()->getThreads().makeEvent(false, i == 0, 0));
    }
    std::vector<int> taken;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round) {
                turns[i]->wait(forEver);
                taken.push_back(static_cast<int>(i));
                turns[(i + 1) % threadCount]->set();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ASSERT_EQ(taken.size(), threadCount * rounds);
    for (std::size_t step = 0; step < taken.size(); ++step) {
        EXPECT_EQ(taken[step], static_cast<int>(step % threadCount));
    }
}

}  // namespace
}  // namespace test
