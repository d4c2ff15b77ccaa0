#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace soak {

/// What a run has done and found.
///
/// Threads  Any.
struct Tally {
    using Count = std::atomic<std::uint64_t>;

    Count picturesAsked{0};
    Count picturesCompared{0};
    Count soundsAsked{0};
    Count soundsCompared{0};
    /// The cache gave no request: the clip was just getting another identity, say.
    Count refused{0};
    /// Reads that failed, the first time and ever after.
    Count unreadable{0};
    Count cancelled{0};
    Count preOpened{0};
    Count closed{0};
    Count evicted{0};
    Count renamed{0};
    Count repositoryEvents{0};

    static void add(Count& count, std::uint64_t more = 1) {
        count.fetch_add(more, std::memory_order_relaxed);
    }

    /// Notes a fault; the text of the first ones is kept.
    void fault(std::string const& text) {
        std::scoped_lock const scope(lock_);
        ++faultCount_;
        if (faults_.size() < mostTexts) {
            faults_.push_back(text);
        }
    }
    [[nodiscard]] std::uint64_t faultCount() const {
        std::scoped_lock const scope(lock_);
        return faultCount_;
    }
    [[nodiscard]] std::vector<std::string> faults() const {
        std::scoped_lock const scope(lock_);
        return faults_;
    }

private:
    static constexpr std::size_t mostTexts = 20;

    mutable std::mutex lock_;
    std::uint64_t faultCount_ = 0;
    std::vector<std::string> faults_;
};

}  // namespace soak
