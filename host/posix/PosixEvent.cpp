#include "host/posix/PosixEvent.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <ctime>

namespace {

using Clock = std::chrono::steady_clock;

/// Sleeps while the word holds `value`, at most until `deadline`; false once that has passed.
bool sleepWhile(std::atomic<std::int32_t>& word, std::int32_t value, Clock::time_point const* deadline) {
    timespec left{};
    if (deadline) {
        auto const ns = std::chrono::nanoseconds(*deadline - Clock::now()).count();
        if (ns <= 0) {
            return false;
        }
        left.tv_sec = ns / 1'000'000'000;
        left.tv_nsec = ns % 1'000'000'000;
    }
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, deadline ? &left : nullptr, nullptr, 0);
    return true;
}

}  // namespace

bool EventWaiter::claim(std::int32_t result) noexcept {
    std::int32_t expected = unclaimed;
    if (!result_.compare_exchange_strong(expected, result)) {
        return false;
    }
    syscall(SYS_futex, &result_, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    return true;
}

std::int32_t EventWaiter::sleep(std::uint32_t waitMs) noexcept {
    bool const isLimited = waitMs != iThreadEvent::noTimeLimit;
    Clock::time_point const deadline = Clock::now() + std::chrono::milliseconds(isLimited ? waitMs : 0);
    while (result() == unclaimed) {
        if (!sleepWhile(result_, unclaimed, isLimited ? &deadline : nullptr)) {
            claim(limitPassed);
        }
    }
    return result();
}

iThreadEvent::eWaitResult PosixEvent::wait(std::uint32_t waitMs) {
    EventWaiter waiter;
    if (enlist(waiter, 0)) {
        waiter.sleep(waitMs);
        withdraw(waiter);
    }
    return waiter.result() == EventWaiter::limitPassed ? timedOut : signalled;
}

/// A waiter that can't be claimed has been woken by another event or by its limit: it is passed over.
void PosixEvent::set() {
    std::lock_guard const scope(lock_);
    bool isTaken = false;
    for (Entry const& entry : waiters_) {
        bool const isClaimed = entry.waiter->claim(entry.index);
        isTaken = isTaken || isClaimed;
        if (isClaimed && !isManualReset_) {
            break;
        }
    }
    isSet_ = isManualReset_ || !isTaken;
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
    if (waiter.claim(index) && !isManualReset_) {
        isSet_ = false;
    }
    return false;
}

void PosixEvent::withdraw(EventWaiter& waiter) {
    std::lock_guard const scope(lock_);
    std::erase_if(waiters_, [&](Entry const& entry) { return entry.waiter == &waiter; });
}
