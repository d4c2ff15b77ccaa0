#include "host/posix/PosixEvent.h"

#include <linux/futex.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>

namespace {

using Clock = std::chrono::steady_clock;

/// A thread that has waited for no more than `shortWait` expects its next event soon, and looks for it about twice
/// as long as that wait took. With the time of being woken, tens of microseconds on a slow machine, a wait that
/// would have been caught by looking is still a short one.
constexpr std::chrono::microseconds leastLook{20};
constexpr std::chrono::microseconds longestLook{100};
constexpr std::chrono::microseconds shortWait{200};
constexpr int pausesBetweenYields = 50;

/// How long the calling thread looks before it sleeps.
thread_local Clock::duration nextLook{0};

/// A limit that passes at once tells nothing.
void learn(Clock::duration waited, bool hasLimitPassed) noexcept {
    if (waited > shortWait) {
        nextLook = Clock::duration::zero();
    } else if (!hasLimitPassed) {
        nextLook = std::min<Clock::duration>(2 * waited + leastLook, longestLook);
    }
}

/// Sleeps while the word holds `value`, at most until `limit`; false once that has passed.
bool sleepWhile(std::atomic<std::int32_t>& word, std::int32_t value, Clock::time_point const* limit) {
    timespec left{};
    if (limit) {
        auto const ns = std::chrono::nanoseconds(*limit - Clock::now()).count();
        if (ns <= 0) {
            return false;
        }
        left.tv_sec = ns / 1'000'000'000;
        left.tv_nsec = ns % 1'000'000'000;
    }
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, limit ? &left : nullptr, nullptr, 0);
    return true;
}

}  // namespace

EventWaiter::eClaim EventWaiter::claim(std::int32_t result) noexcept {
    std::int32_t before = result_.load(std::memory_order_relaxed);
    while (before == unclaimed || before == asleep) {
        if (result_.compare_exchange_weak(before, result)) {
            return before == asleep ? eClaim::whileAsleep : eClaim::whileAwake;
        }
    }
    return eClaim::late;
}

/// The word is only an address here: the kernel looks who sleeps there. If somebody else does by now, a
/// wake that is none of his makes him look at his own word and sleep on.
void EventWaiter::wake(std::atomic<std::int32_t>* word) noexcept {
    syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

std::int32_t EventWaiter::wait(std::uint32_t waitMs) noexcept {
    bool const isLimited = waitMs != iThreadEvent::noTimeLimit;
    Clock::time_point const start = Clock::now();
    Clock::time_point const limit = start + std::chrono::milliseconds(isLimited ? waitMs : 0);
    if (nextLook > Clock::duration::zero()) {
        Clock::time_point const lookEnd = start + nextLook;
        lookUntil(isLimited ? std::min(limit, lookEnd) : lookEnd);
    }
    if (isUnclaimed()) {
        sleepUntil(isLimited ? &limit : nullptr);
    }
    learn(Clock::now() - start, result() == limitPassed);
    return result();
}

/// Yielding lets the very thread that is waited for run, if it shares the processor.
void EventWaiter::lookUntil(Clock::time_point limit) const noexcept {
    while (isUnclaimed() && Clock::now() < limit) {
        for (int i = 0; i < pausesBetweenYields && isUnclaimed(); ++i) {
            __builtin_ia32_pause();
        }
        sched_yield();
    }
}

void EventWaiter::sleepUntil(Clock::time_point const* limit) noexcept {
    std::int32_t before = unclaimed;
    result_.compare_exchange_strong(before, asleep);
    while (result() == asleep) {
        if (!sleepWhile(result_, asleep, limit)) {
            claim(limitPassed);
        }
    }
}

iThreadEvent::eWaitResult PosixEvent::wait(std::uint32_t waitMs) {
    EventWaiter waiter;
    if (enlist(waiter, 0)) {
        waiter.wait(waitMs);
        withdraw(waiter);
    }
    return waiter.result() == EventWaiter::limitPassed ? timedOut : signalled;
}

/// A waiter that can't be claimed has been woken by another event or by its limit: it is passed over.
///
/// The one who gets an automatic event is woken when the lock has been left: woken under it, he would run
/// into it at once, as he takes himself out of the list, and sleep again.
void PosixEvent::set() {
    Claimed claimed;
    {
        std::lock_guard const scope(lock_);
        if (isManualReset_) {
            wakeAll();
        } else {
            claimed = claimOldest();
        }
        isSet_ = !claimed.isSomebody;
    }
    if (claimed.sleepsAt) {
        EventWaiter::wake(claimed.sleepsAt);
    }
}

PosixEvent::Claimed PosixEvent::claimOldest() {
    for (Entry const& entry : waiters_) {
        EventWaiter::eClaim const claim = entry.waiter->claim(entry.index);
        if (claim != EventWaiter::eClaim::late) {
            return {true, claim == EventWaiter::eClaim::whileAsleep ? entry.waiter->word() : nullptr};
        }
    }
    return {};
}

void PosixEvent::wakeAll() {
    for (Entry const& entry : waiters_) {
        if (entry.waiter->claim(entry.index) == EventWaiter::eClaim::whileAsleep) {
            EventWaiter::wake(entry.waiter->word());
        }
    }
}

void PosixEvent::reset() {
    std::lock_guard const scope(lock_);
    isSet_ = false;
}

bool PosixEvent::enlist(EventWaiter& waiter, std::int32_t index) {
    std::lock_guard const scope(lock_);
    if (!isSet_) {
        waiters_.push_back({&waiter, index});
        return waiter.result() == EventWaiter::unclaimed;
    }
    if (waiter.claim(index) != EventWaiter::eClaim::late && !isManualReset_) {
        isSet_ = false;
    }
    return false;
}

void PosixEvent::withdraw(EventWaiter& waiter) {
    std::lock_guard const scope(lock_);
    std::erase_if(waiters_, [&](Entry const& entry) { return entry.waiter == &waiter; });
}
