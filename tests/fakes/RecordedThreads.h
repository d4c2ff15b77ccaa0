#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fakes/ForwardingThreadService.h"

namespace test {

/// The thread service with a record of everything that is asked of it, of its events, locks and
/// threads; it forwards to the one in force before. It is in force while it lives, and outlives what
/// was made through it.
///
/// The record holds, numbers counting from 1 in the order of making:
///     "make event 1 auto clear 0", "make lock NAME", "make thread NAME",
///     "priority P of 1", "affinity A of 1", "wait for end M of 1",
///     "set 1", "wait M for 1", "wait M for any 1 2", "lock M", "unlock".
///
/// Threads  Any; the public members are set before threads use it.
class RecordedThreads final : public ForwardingThreadService {
public:
    RecordedThreads();
    ~RecordedThreads() override;

    ThreadEventPtr makeEvent(bool isManualReset, bool isInitiallySet, int option) override;
    Ox::Ptr<iAccessLock> makeLock(char const* name) override;
    Ox::Ptr<iThread> makeThread(ThreadDescription const& description) override;
    int waitForAny(std::vector<ThreadEventPtr> const& events, std::uint32_t waitMs) override;

    [[nodiscard]] std::vector<std::string> calls() const;
    /// Those of the record that begin with `start`, in order.
    [[nodiscard]] std::vector<std::string> callsThatBegin(std::string_view start) const;
    /// Waits until that many records begin with `start`.
    void awaitCalls(std::string_view start, std::size_t count);
    void forget();

    [[nodiscard]] std::vector<ThreadDescription> descriptions() const;
    [[nodiscard]] ThreadEventPtr event(std::size_t number) const;

    /// Lets one thread that waits for any of several events, or the next that does, find that its limit
    /// has passed.
    void expireOneWait() { expiry_->set(); }
    [[nodiscard]] bool isLockHeld() const { return isLockHeld_; }

    /// Makes every change of a priority fail.
    std::atomic<bool> refusesPriority{false};
    /// Run at the start of every wait for a thread's end.
    std::function<void()> onWaitForEnd;
    /// Run before every setting of an event.
    std::function<void()> onSet;
    /// Run before every wait for one event.
    std::function<void()> onWait;

private:
    class Event;
    class Lock;
    class Thread;

    void record(std::string const& call);

    iOS* const systemBefore_;
    ThreadEventPtr const expiry_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> calls_;
    std::vector<ThreadDescription> descriptions_;
    std::vector<ThreadEventPtr> events_;
    std::atomic<bool> isLockHeld_{false};
};

}  // namespace test
