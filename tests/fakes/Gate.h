#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

/// Long enough for anything that a test waits for; a wait that reaches it has failed.
inline constexpr std::chrono::seconds testPatience{30};

/// A door at which threads wait until the test opens it, and which tells the test who has come.
///
/// Threads  Any.
class Gate {
public:
    explicit Gate(bool isOpen) : isOpen_(isOpen) {}
    /// Lets everybody pass who waits or waits later.
    void open();
    void close();
    /// Lets exactly one more pass.
    void openOnce();
    /// Waits for the door; counts as an arrival before.
    void pass();
    /// False if fewer than `count` have come in all within the test's patience.
    [[nodiscard]] bool waitForArrivals(unsigned count);
    [[nodiscard]] unsigned arrivals() const;

private:
    mutable std::mutex lock_;
    std::condition_variable changed_;
    bool isOpen_;
    unsigned passes_ = 0;
    unsigned arrivals_ = 0;
};

/// Something that happens once and that threads wait for.
class Signal {
public:
    void set() { gate_.open(); }
    void wait() { gate_.pass(); }

private:
    Gate gate_{false};
};
