#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>

/// Which stores gave no answer lately and aren't asked for a while, so that they delay nobody again and again.
///
/// Threads  Any.
class RestingStores {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    explicit RestingStores(std::chrono::milliseconds rest) : rest_(rest) {}

    [[nodiscard]] bool isResting(std::string const& store, TimePoint now) const;
    void rest(std::string const& store, TimePoint now);
    void wake(std::string const& store);

private:
    /// How many are remembered at most; beyond them the one that has rested longest is asked again.
    static constexpr std::size_t mostStores = 256;

    std::chrono::milliseconds const rest_;
    mutable std::mutex lock_;
    std::map<std::string, TimePoint> until_;
};
