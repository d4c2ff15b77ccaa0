#pragma once

#include <deque>
#include <map>

#include "ole/Ox/OxObject.h"
#include "ole/os/OS.h"

namespace Ox {

/// Throws the error of an `endAccess` that had no `beginAccess`.
[[noreturn]] void throwUncontrolledAccess();

/// Gives exclusive access per key: any number of keys may be in use at once, one key by one party at a
/// time; the others who want it wait, and get it in order of arrival.
///
/// It isn't a lock: a key doesn't remember who holds it, so another thread may end the access, and a
/// thread that begins twice on one key waits for itself.
///
/// Threads    Any. `beginAccess` may wait without limit. Destroying the queue releases nobody.
/// Lock order The guard is innermost and is never held while a thread waits for a key.
/// Errors     `endAccess` of a key that nobody holds throws `Ox::Exception::RuntimeError`.
/// Deliberate When memory runs out inside `beginAccess`, the guard stays locked.
template <class T>
class MultipleAccessQueue {
public:
    MultipleAccessQueue() : guard_(OS()->getThreads().makeLock("MultipleAccessQueue")) {}
    MultipleAccessQueue(MultipleAccessQueue const&) = delete;
    MultipleAccessQueue& operator=(MultipleAccessQueue const&) = delete;

    /// Returns when the caller holds `key`.
    void beginAccess(T const& key) {
        guard_->lock(iAccessLock::noTimeLimit);
        auto const found = accessed_.find(key);
        if (found == accessed_.end()) {
            accessed_.emplace(key, makePtr<AccessedObjectInfo>(key));
            guard_->unlock();
            return;
        }
        ThreadEventPtr const turn = OS()->getThreads().makeEvent(true, false, 0);
        found->second->waiters.push_back(turn);
        guard_->unlock();
        turn->wait(iThreadEvent::noTimeLimit);
    }

    /// Passes `key` to the one who has waited longest, else frees it. It is never free in between, so
    /// nobody overtakes those who wait.
    void endAccess(T const& key) {
        guard_->lock(iAccessLock::noTimeLimit);
        auto const found = accessed_.find(key);
        if (found == accessed_.end()) {
            guard_->unlock();
            throwUncontrolledAccess();
        }
        std::deque<ThreadEventPtr>& waiters = found->second->waiters;
        if (waiters.empty()) {
            accessed_.erase(found);
            guard_->unlock();
            return;
        }
        ThreadEventPtr const next = waiters.front();
        waiters.pop_front();
        guard_->unlock();
        next->set();
    }

    /// True while somebody holds `key`.
    [[nodiscard]] bool isAccessed(T const& key) const {
        guard_->lock(iAccessLock::noTimeLimit);
        bool const isThere = accessed_.find(key) != accessed_.end();
        guard_->unlock();
        return isThere;
    }

    /// How many wait for `key`.
    [[nodiscard]] std::size_t waiterCount(T const& key) const {
        guard_->lock(iAccessLock::noTimeLimit);
        auto const found = accessed_.find(key);
        std::size_t const count = found == accessed_.end() ? 0 : found->second->waiters.size();
        guard_->unlock();
        return count;
    }

private:
    /// A key in use and those who wait for it, oldest first.
    struct AccessedObjectInfo : public virtual iObject {
        explicit AccessedObjectInfo(T const& accessedKey) : key(accessedKey) {}
        T const key;
        std::deque<ThreadEventPtr> waiters;
    };

    Ptr<iAccessLock> const guard_;
    /// The keys in use; guarded by guard_.
    std::map<T, Ptr<AccessedObjectInfo>> accessed_;
};

}  // namespace Ox
