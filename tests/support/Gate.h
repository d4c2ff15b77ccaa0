#pragma once

#include <condition_variable>
#include <mutex>

namespace test {

/// A door that threads wait at until a test opens it.
///
/// Threads  Any.
class Gate {
public:
    /// Waits until the gate is open; counts as arrived from the start of the call on.
    void pass() {
        std::unique_lock lock(mutex_);
        ++arrived_;
        changed_.notify_all();
        changed_.wait(lock, [this] { return isOpen_; });
    }

    /// Lets everyone through, now and later.
    void open() {
        std::scoped_lock const lock(mutex_);
        isOpen_ = true;
        changed_.notify_all();
    }

    /// Waits until that many calls of `pass` have begun, over the life of the gate.
    void awaitArrivals(int count) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this, count] { return arrived_ >= count; });
    }

    [[nodiscard]] int getArrivals() {
        std::scoped_lock const lock(mutex_);
        return arrived_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isOpen_ = false;
    int arrived_ = 0;
};

}  // namespace test
