#include "host/remote/RestingStores.h"

#include <algorithm>

bool RestingStores::isResting(std::string const& store, TimePoint now) const {
    std::lock_guard const scope(lock_);
    auto const found = until_.find(store);
    return found != until_.end() && now < found->second;
}

void RestingStores::rest(std::string const& store, TimePoint now) {
    std::lock_guard const scope(lock_);
    if (until_.size() >= mostStores && until_.count(store) == 0) {
        until_.erase(std::min_element(until_.begin(), until_.end(),
                                      [](auto const& a, auto const& b) { return a.second < b.second; }));
    }
    until_[store] = now + rest_;
}

void RestingStores::wake(std::string const& store) {
    std::lock_guard const scope(lock_);
    until_.erase(store);
}
