#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include "ole/os/Events.h"

/// One sleeping thread, registered with every event that it waits for. Whoever claims it first, an event
/// or the thread itself, decides what the wait answers.
///
/// Ownership  Lies on the stack of the thread that waits, which takes it out of every event before it
///            returns.
class EventWaiter {
public:
    static constexpr std::int32_t unclaimed = -1;
    static constexpr std::int32_t limitPassed = -2;

    /// True for the first caller only. If that isn't the waiting thread itself, it calls `wake` next.
    bool claim(std::int32_t result) noexcept;
    /// Wakes the thread that sleeps at this word, which may have gone on and left it meanwhile.
    static void wake(std::atomic<std::int32_t>* word) noexcept;
    [[nodiscard]] std::atomic<std::int32_t>* word() noexcept { return &result_; }
    /// Sleeps until it is claimed or the limit has passed (then it claims itself); the result.
    std::int32_t sleep(std::uint32_t waitMs) noexcept;
    [[nodiscard]] std::int32_t result() const noexcept { return result_.load(std::memory_order_acquire); }

private:
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

    /// Where the one sleeps who gets the event; null if there is nobody. With the lock held, like the next.
    [[nodiscard]] std::atomic<std::int32_t>* claimOldest();
    void wakeAll();

    bool const isManualReset_;
    std::mutex lock_;
    bool isSet_;
    /// Oldest first.
    std::vector<Entry> waiters_;
};
