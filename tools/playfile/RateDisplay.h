#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace cli {

/// Tells how far a transfer has come, at what rate and how long it will still take: on a terminal as a bar that is
/// written anew, elsewhere as a line for every tenth.
///
/// Threads  One at a time.
class RateDisplay {
public:
    RateDisplay();
    /// Wipes the bar.
    ~RateDisplay();
    RateDisplay(RateDisplay const&) = delete;
    RateDisplay& operator=(RateDisplay const&) = delete;

    /// @param total  bytes, 0 if they aren't known; then there is no rate
    void show(double fraction, std::uint64_t total);
    /// Takes the bar away for a line that is to be written.
    void wipe();

    /// For tests as well: "[#####-----]  50 %  1.0 MiB/s  0:12 left".
    [[nodiscard]] static std::string text(double fraction, std::uint64_t total, double seconds);

private:
    using Clock = std::chrono::steady_clock;

    bool const isTerminal_;
    Clock::time_point const begin_ = Clock::now();
    Clock::time_point nextShow_ = begin_;
    bool isShown_ = false;
    int tenthsTold_ = 0;
};

}  // namespace cli
