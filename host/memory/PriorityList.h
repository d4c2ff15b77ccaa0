#pragma once

#include <algorithm>
#include <mutex>
#include <vector>

#include "ole/Ox/OxPtr.h"

/// Things that are asked in the order of their priority numbers, those of one number as they came.
///
/// Threads  Any. Whoever asks them all works on a copy, so that nothing is called under the lock.
template <class T>
class PriorityList {
public:
    /// False for an empty pointer and for one that is in the list.
    bool add(Ox::Ptr<T> const& member, int priority) {
        std::lock_guard const scope(lock_);
        if (!member || find(member) != entries_.end()) {
            return false;
        }
        auto const behind =
            std::upper_bound(entries_.begin(), entries_.end(), priority,
                             [](int wanted, Entry const& entry) { return wanted < entry.priority; });
        entries_.insert(behind, Entry{member, priority});
        return true;
    }

    /// False if it isn't in the list. It doesn't die under the lock.
    bool remove(Ox::Ptr<T> const& member) {
        Ox::Ptr<T> const held(member);
        std::lock_guard const scope(lock_);
        auto const found = find(held);
        if (found == entries_.end()) {
            return false;
        }
        entries_.erase(found);
        return true;
    }

    [[nodiscard]] std::vector<Ox::Ptr<T>> all() const {
        std::lock_guard const scope(lock_);
        std::vector<Ox::Ptr<T>> members;
        for (Entry const& entry : entries_) {
            members.push_back(entry.member);
        }
        return members;
    }

private:
    struct Entry {
        Ox::Ptr<T> member;
        int priority;
    };

    /// Requires the lock.
    [[nodiscard]] typename std::vector<Entry>::iterator find(Ox::Ptr<T> const& member) {
        return std::find_if(entries_.begin(), entries_.end(),
                            [&](Entry const& entry) { return entry.member == member; });
    }

    mutable std::mutex lock_;
    std::vector<Entry> entries_;
};
