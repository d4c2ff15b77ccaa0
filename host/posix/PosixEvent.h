#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <vector>

#include "ole/os/Events.h"

/// One waiting thread, registered with every event that it waits for. Whoever claims it first, an event
/// or the thread itself, decides what the wait answers.
///
/// To be woken from the kernel's sleep costs microseconds, on a virtual machine tens of them, and most of all
/// where two threads hand work to each other and back. So a thread whose last wait was a short one looks for
/// a while whether it has been claimed, and lets other threads run meanwhile, before it sleeps; one that has
/// waited for long sleeps at once. Who claims it while it looks needs no call into the kernel to wake it.
///
/// Ownership  Lies on the stack of the thread that waits, which takes it out of every event before it
///            returns.
class EventWaiter {
public:
    static constexpr std::int32_t unclaimed = -1;
    static constexpr std::int32_t limitPassed = -2;

    enum class eClaim {
        late,         ///< Somebody else was first.
        whileAwake,   ///< The thread will see it by itself.
        whileAsleep,  ///< It is to be woken.
    };

    /// All but the first caller are late. If that isn't the waiting thread itself and that sleeps, it calls
    /// `wake` next.
    eClaim claim(std::int32_t result) noexcept;
    /// Wakes the thread that sleeps at this word, which may have gone on and left it meanwhile.
    static void wake(std::atomic<std::int32_t>* word) noexcept;
    [[nodiscard]] std::atomic<std::int32_t>* word() noexcept { return &result_; }
    /// Waits until it is claimed or the limit has passed (then it claims itself); the result.
    std::int32_t wait(std::uint32_t waitMs) noexcept;
    /// The result; `unclaimed` before, as long as the thread hasn't begun to wait.
    [[nodiscard]] std::int32_t result() const noexcept { return result_.load(std::memory_order_acquire); }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::int32_t asleep = -3;  ///< Unclaimed, and the thread sleeps or is about to.

    [[nodiscard]] bool isUnclaimed() const noexcept {
        std::int32_t const now = result();
        return now == unclaimed || now == asleep;
    }
    void lookUntil(Clock::time_point limit) const noexcept;
    void sleepUntil(Clock::time_point const* limit) noexcept;

    std::atomic<std::int32_t> result_{unclaimed};
};

/// An event with a list of those who wait for it. `set` hands an automatic event straight to the one who
/// has waited longest, so that one `set` wakes exactly one.
///
/// Lock order  Its lock is innermost.
class PosixEvent : public iThreadEvent {
public:
    PosixEvent(bool isManualReset, bool isInitiallySet)
        : isManualReset_(isManualReset), isSet_(isInitiallySet) {}

    eWaitResult wait(std::uint32_t waitMs) override;
    void set() override;
    void reset() override;

    /// Ends the wait of `waiter` with `index` if the event is set; else registers it. False if the wait
    /// has ended, by this event or by another.
    bool enlist(EventWaiter& waiter, std::int32_t index);
    /// Takes `waiter` out; it need not be there.
    void withdraw(EventWaiter& waiter);

private:
    struct Entry {
        EventWaiter* waiter;
        std::int32_t index;
    };

    /// Who gets an automatic event.
    struct Claimed {
        bool isSomebody = false;
        /// Null if that one doesn't sleep.
        std::atomic<std::int32_t>* sleepsAt = nullptr;
    };

    /// With the lock held, like the next.
    [[nodiscard]] Claimed claimOldest();
    void wakeAll();

    bool const isManualReset_;
    std::mutex lock_;
    bool isSet_;
    /// Oldest first.
    std::vector<Entry> waiters_;
};
