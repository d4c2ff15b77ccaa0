#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace cli {

/// Shows on a terminal how far a long piece of work has come; elsewhere it shows nothing.
///
/// Threads  One at a time.
class Progress {
public:
    /// @param total            0 if nobody knows it
    /// @param printsMeanwhile  true if the work writes lines to standard output, with which the display
    ///                         must not mix on one terminal
    Progress(std::string label, std::uint64_t total, bool printsMeanwhile);
    /// Wipes what it has shown.
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    /// One more is done.
    void step() { moveTo(done_ + 1); }
    /// So many are done by now.
    void moveTo(std::uint64_t done);

private:
    using Clock = std::chrono::steady_clock;

    std::string const label_;
    std::uint64_t const total_;
    bool const isShown_;
    std::uint64_t done_ = 0;
    Clock::time_point nextShow_;
    bool hasShown_ = false;
};

}  // namespace cli
