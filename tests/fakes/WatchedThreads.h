#pragma once

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/fakes/ForwardingThreadService.h"
#include "tests/fakes/Gate.h"

/// What a thread was made from, and what was asked of it afterwards.
struct MadeThread {
    ThreadDescription description;
    std::atomic<std::int32_t> priority{-1};
    std::atomic<std::int64_t> affinity{-2};
    /// Passed by the thread when its entry function has returned.
    Gate ended{true};
};

/// The thread service in force with eyes: it forwards everything and remembers what was made.
///
/// It stays in force until the process ends, as threads go through it to their end.
///
/// Threads  Any.
class WatchedThreads final : public test::ForwardingThreadService {
public:
    /// Puts it in force, at the first call.
    [[nodiscard]] static WatchedThreads& instance();

    [[nodiscard]] ThreadEventPtr makeEvent(bool isManualReset, bool isInitiallySet, int option) override;
    [[nodiscard]] Ox::Ptr<iThread> makeThread(ThreadDescription const& description) override;
    int waitForAny(std::vector<ThreadEventPtr> const& events, std::uint32_t waitMs) override;

    /// Threads made so far, in order.
    [[nodiscard]] std::vector<std::shared_ptr<MadeThread>> threads() const;
    /// The latest thread of that name; null if there is none.
    [[nodiscard]] std::shared_ptr<MadeThread> find(std::string_view name) const;
    /// Passed by everyone who makes a manual-reset event: a thread makes one when it is about to wait
    /// for a name that another holds.
    Gate manualEventMade{true};
    /// Waits until a thread goes to wait for any of several events once more, or is asleep there without a
    /// limit; false if it never does. A queue's worker does so when it has nothing left to do and holds no
    /// request.
    ///
    /// Requires of a worker that sleeps without a limit that it has woken for what it was given last.
    [[nodiscard]] bool waitUntilIdle(std::thread::id worker);
    /// The same for all threads that ever waited so and still run.
    [[nodiscard]] bool waitUntilAllIdle();
    /// The limit of the latest wait of a worker.
    std::atomic<std::uint32_t> latestWaitMs{0};

private:
    struct Trampoline;
    /// What a thread has waited for any of several events.
    struct Waits {
        unsigned count = 0;
        bool isAsleepWithoutLimit = false;

        [[nodiscard]] bool isIdleSince(Waits const& before) const {
            return count > before.count || isAsleepWithoutLimit;
        }
    };

    WatchedThreads() = default;
    static int runAndNote(void* trampoline);

    mutable std::mutex lock_;
    std::condition_variable changed_;
    std::vector<std::shared_ptr<MadeThread>> threads_;
    std::map<std::thread::id, Waits> waits_;
};
