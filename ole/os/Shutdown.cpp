#include "ole/os/Shutdown.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "ole/os/Immortal.h"
#include "ole/os/Locks.h"

namespace {

struct Registered {
    Shutdown::CallbackPtr callback;
    std::uint32_t order;
};

/// What is registered, sorted by order number; entries of one number in order of arrival.
struct Registry {
    CriticalSection lock{eLockRank::toolkit, "Shutdown"};
    std::vector<Registered> entries;

    [[nodiscard]] auto find(Shutdown::CallbackPtr const& callback) {
        return std::find_if(entries.begin(), entries.end(),
                            [&](Registered const& entry) { return entry.callback == callback; });
    }

    /// Takes `callback` out; false if it isn't registered any more. What was held goes to `removed`,
    /// so that it can be let go without the lock.
    bool take(Shutdown::CallbackPtr const& callback, Shutdown::CallbackPtr& removed) {
        ScopedLock const scope(lock);
        auto const found = find(callback);
        if (found == entries.end()) {
            return false;
        }
        removed = std::move(found->callback);
        entries.erase(found);
        return true;
    }
};

Registry& registry() {
    return immortal<Registry>();
}

void runAtExit() {
    Shutdown::run(Shutdown::normalExit);
}

}  // namespace

/// Handlers run in the reverse order of their registration, so one more for each callback sees to it
/// that the callback runs before anything is destroyed that was there when it was added.
void Shutdown::addCallback(CallbackPtr const& callback, std::uint32_t order) {
    {
        ScopedLock const scope(registry().lock);
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
    registry().take(callback, removed);
}

void Shutdown::run(eExitType exitType) {
    std::vector<Registered> snapshot;
    {
        ScopedLock const scope(registry().lock);
        snapshot = registry().entries;
    }
    for (Registered const& entry : snapshot) {
        CallbackPtr taken;
        if (registry().take(entry.callback, taken)) {
            taken->execute(exitType);
        }
    }
}

void Shutdown::runBeforeEarlierStatics() {
    static_cast<void>(std::atexit(&runAtExit));
}
