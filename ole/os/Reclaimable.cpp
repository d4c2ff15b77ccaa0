#include "ole/os/Reclaimable.h"

#include <algorithm>
#include <vector>

#include "ole/os/Immortal.h"
#include "ole/os/Locks.h"

namespace {

/// The enrolled. The lock is held while they are called, so that none of them goes in the call; it is
/// re-entrant, and takes no part in the lock order because it comes before every lock of its members.
struct Members {
    CriticalSection lock;
    std::vector<Reclaimable*> list;

    void callEach(void (Reclaimable::*operation)()) {
        ScopedLock const scope(lock);
        std::vector<Reclaimable*> const snapshot = list;
        for (Reclaimable* const member : snapshot) {
            if (std::find(list.begin(), list.end(), member) != list.end()) {
                (member->*operation)();
            }
        }
    }
};

Members& members() {
    return immortal<Members>();
}

}  // namespace

void Reclaimable::limitAll() {
    members().callEach(&Reclaimable::limitUsage);
}

void Reclaimable::purgeAll() {
    members().callEach(&Reclaimable::purge);
}

void Reclaimable::reportAll() {
    members().callEach(&Reclaimable::reportUsage);
}

void Reclaimable::enrol() {
    ScopedLock const scope(members().lock);
    members().list.push_back(this);
}

void Reclaimable::withdraw() {
    ScopedLock const scope(members().lock);
    std::erase(members().list, this);
}
