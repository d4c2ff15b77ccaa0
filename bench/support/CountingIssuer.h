#pragma once

#include <atomic>
#include <cstdint>

#include "toolkit/image/ReadRequestIssuer.h"

namespace bench {

/// Counts the reads that have ended, and lets one thread wait until there are enough of them.
///
/// Threads  `requestCompleted` comes on the queue's thread or on the asking one; `waitFor` is called by
///          one thread at a time.
class CountingIssuer : public ReadRequestIssuer {
public:
    CountingIssuer() = default;
    ~CountingIssuer() override { withdraw(); }

    void requestCompleted(Ox::Ptr<iObject>&, RequestStatus status) override {
        if (status == requestFailed) {
            failed_.fetch_add(1, std::memory_order_relaxed);
        }
        ended_.fetch_add(1, std::memory_order_release);
        ended_.notify_one();
    }

    /// Returns when `count` reads have ended since this issuer was made.
    void waitFor(std::uint64_t count) const {
        for (std::uint64_t ended = ended_.load(std::memory_order_acquire); ended < count;
             ended = ended_.load(std::memory_order_acquire)) {
            ended_.wait(ended, std::memory_order_acquire);
        }
    }

    [[nodiscard]] std::uint64_t endedCount() const { return ended_.load(std::memory_order_acquire); }
    [[nodiscard]] std::uint64_t failedCount() const { return failed_.load(std::memory_order_relaxed); }

private:
    std::atomic<std::uint64_t> ended_{0};
    std::atomic<std::uint64_t> failed_{0};
};

}  // namespace bench
