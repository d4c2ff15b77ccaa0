#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

#include "playfile/Trace.h"

/// The events of one thread that aren't written yet, oldest first.
///
/// Threads  `push` on the thread itself, `take` on one other at a time: neither waits for the other. An
///          event belongs to the side that its index is on, which the acquiring loads make sure of.
class TraceRing {
public:
    static constexpr std::size_t size = 256;

    explicit TraceRing(int threadNumber) : thread(threadNumber) {}

    /// False if it is full; the event is then left as it was.
    bool push(TraceEvent& event) noexcept {
        std::size_t const end = end_.load(std::memory_order_relaxed);
        if (end - begin_.load(std::memory_order_acquire) == size) {
            return false;
        }
        events_[end % size] = std::move(event);
        end_.store(end + 1, std::memory_order_release);
        return true;
    }

    /// Hands each event to `use` and forgets it.
    template <class Use>
    void take(Use const& use) {
        std::size_t const end = end_.load(std::memory_order_acquire);
        for (std::size_t i = begin_.load(std::memory_order_relaxed); i != end; ++i) {
            TraceEvent const event = std::move(events_[i % size]);
            begin_.store(i + 1, std::memory_order_release);
            use(event);
        }
    }

    int const thread;
    /// Set by the thread when it ends: nothing comes any more.
    std::atomic<bool> hasEnded{false};

private:
    std::unique_ptr<TraceEvent[]> const events_ = std::make_unique<TraceEvent[]>(size);
    std::atomic<std::size_t> begin_{0};
    std::atomic<std::size_t> end_{0};
};
