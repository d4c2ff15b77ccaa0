#include "tests/fakes/Gate.h"

#include <cstdio>
#include <cstdlib>

void Gate::open() {
    std::lock_guard const scope(lock_);
    isOpen_ = true;
    changed_.notify_all();
}

void Gate::close() {
    std::lock_guard const scope(lock_);
    isOpen_ = false;
}

void Gate::openOnce() {
    std::lock_guard const scope(lock_);
    ++passes_;
    changed_.notify_all();
}

/// Whoever is never let through ends the test's process: going on would hide what went wrong.
void Gate::pass() {
    std::unique_lock scope(lock_);
    ++arrivals_;
    changed_.notify_all();
    if (!changed_.wait_for(scope, testPatience, [this] { return isOpen_ || passes_ > 0; })) {
        std::fputs("a gate was never opened\n", stderr);
        std::abort();
    }
    if (!isOpen_) {
        --passes_;
    }
}

bool Gate::waitForArrivals(unsigned count) {
    std::unique_lock scope(lock_);
    return changed_.wait_for(scope, testPatience, [&] { return arrivals_ >= count; });
}

unsigned Gate::arrivals() const {
    std::lock_guard const scope(lock_);
    return arrivals_;
}
