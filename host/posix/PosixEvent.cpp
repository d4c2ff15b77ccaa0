#include "host/posix/PosixEvent.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
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
    return result_.compare_exchange_strong(expected, result);
}

/// The word is only an address here: the kernel looks who sleeps there. If somebody else does by now, a
/// wake that is none of his makes him look at his own word and sleep on.
void EventWaiter::wake(std::atomic<std::int32_t>* word) noexcept {
    syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

std::int32_t EventWaiter::sleep(std::uint32_t waitMs) noexcept {
    bool const isLimited = waitMs != iThreadEvent::noTimeLimit;
    Clock::time_point const deadline =
        isLimited ? Clock::now() + std::chrono::milliseconds(waitMs) : Clock::time_point();
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
///
/// The one who gets an automatic event is woken when the lock has been left: woken under it, he would run
/// into it at once, as he takes himself out of the list, and sleep again.
void PosixEvent::set() {
    std::atomic<std::int32_t>* woken = nullptr;
    {
        std::lock_guard const scope(lock_);
        if (isManualReset_) {
            wakeAll();
        } else {
            woken = claimOldest();
        }
        isSet_ = !woken;
    }
    if (woken) {
        EventWaiter::wake(woken);
    }
}

std::atomic<std::int32_t>* PosixEvent::claimOldest() {
    auto const claimed = std::find_if(waiters_.begin(), waiters_.end(),
                                      [](Entry const& entry) { return entry.waiter->claim(entry.index); });
    return claimed == waiters_.end() ? nullptr : claimed->waiter->word();
}

void PosixEvent::wakeAll() {
    for (Entry const& entry : waiters_) {
        if (entry.waiter->claim(entry.index)) {
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
    if (waiter.claim(index) && !isManualReset_) {
        isSet_ = false;
    }
    return false;
}

void PosixEvent::withdraw(EventWaiter& waiter) {
    std::lock_guard const scope(lock_);
    std::erase_if(waiters_, [&](Entry const& entry) { return entry.waiter == &waiter; });
}
