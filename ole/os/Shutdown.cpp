#include "ole/os/Shutdown.h"

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

#include "ole/os/HeldLocks.h"
#include "ole/os/Immortal.h"

namespace {

struct Registered {
    Shutdown::CallbackPtr callback;
    std::uint32_t order;
};

/// A call of a callback that is under way.
struct Execution {
    Shutdown::CallbackPtr callback;
    std::thread::id thread;
};

/// What is registered, sorted by order number, entries of one number in order of arrival; and what is
/// being run. A callback goes from the one to the other in one step, so that it can't be lost sight of.
struct Registry {
    std::mutex lock;
    std::condition_variable executionEnded;
    std::vector<Registered> entries;
    std::vector<Execution> executions;

    /// Takes `callback` out and hands it over; empty if it isn't registered any more. Requires `lock`.
    Shutdown::CallbackPtr take(Shutdown::CallbackPtr const& callback) {
        auto const found = std::find_if(entries.begin(), entries.end(),
                                        [&](Registered const& entry) { return entry.callback == callback; });
        Shutdown::CallbackPtr taken;
        if (found != entries.end()) {
            taken = std::move(found->callback);
            entries.erase(found);
        }
        return taken;
    }

    [[nodiscard]] bool isUnderWayElsewhere(Shutdown::CallbackPtr const& callback) const {
        return std::any_of(executions.begin(), executions.end(), [&](Execution const& execution) {
            return execution.callback == callback && execution.thread != std::this_thread::get_id();
        });
    }
};

Registry& registry() {
    return immortal<Registry>();
}

/// Strikes a callback off those under way when it has ended, however it did.
class ExecutionEnd {
public:
    explicit ExecutionEnd(Shutdown::CallbackPtr const& callback) : callback_(callback) {}
    ~ExecutionEnd() {
        std::lock_guard const scope(registry().lock);
        std::erase_if(registry().executions,
                      [&](Execution const& execution) { return execution.callback == callback_; });
        registry().executionEnded.notify_all();
    }
    ExecutionEnd(ExecutionEnd const&) = delete;
    ExecutionEnd& operator=(ExecutionEnd const&) = delete;

private:
    Shutdown::CallbackPtr const& callback_;
};

/// Runs one callback, unless it has been removed; the callback is let go without the lock.
void execute(Shutdown::CallbackPtr const& callback, Shutdown::eExitType exitType) {
    auto& known = registry();
    Shutdown::CallbackPtr taken;
    {
        std::lock_guard const scope(known.lock);
        taken = known.take(callback);
        if (!taken) {
            return;
        }
        known.executions.push_back({taken, std::this_thread::get_id()});
    }
    ExecutionEnd const end(taken);
    taken->execute(exitType);
}

void runAtExit() {
    forgetHeldLocks();
    Shutdown::run(Shutdown::normalExit);
}

}  // namespace

/// Handlers run in the reverse order of their registration, so one more for each callback sees to it
/// that the callback runs before anything is destroyed that was there when it was added.
void Shutdown::addCallback(CallbackPtr const& callback, std::uint32_t order) {
    {
        std::lock_guard const scope(registry().lock);
        auto& entries = registry().entries;
        auto const behind = std::upper_bound(
            entries.begin(), entries.end(), order,
            [](std::uint32_t wanted, Registered const& entry) { return wanted < entry.order; });
        entries.insert(behind, Registered{callback, order});
    }
    runBeforeEarlierStatics();
}

void Shutdown::removeCallback(CallbackPtr const& callback) {
    CallbackPtr removed;
    std::unique_lock scope(registry().lock);
    removed = registry().take(callback);
    registry().executionEnded.wait(scope, [&] { return !registry().isUnderWayElsewhere(callback); });
}

void Shutdown::run(eExitType exitType) {
    std::vector<Registered> snapshot;
    {
        std::lock_guard const scope(registry().lock);
        snapshot = registry().entries;
    }
    for (Registered const& entry : snapshot) {
        execute(entry.callback, exitType);
    }
}

void Shutdown::runBeforeEarlierStatics() {
    static_cast<void>(std::atexit(&runAtExit));
}
