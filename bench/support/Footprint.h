#pragma once

#include <functional>

#include "bench/support/Child.h"

namespace bench {

/// What the process takes at one moment.
struct Footprint {
    double residentMiB = 0;
    double threads = 0;
    double descriptors = 0;

    /// Of this process, now.
    [[nodiscard]] static Footprint now();
};

/// Runs the part of a measurement that is timed, as `measureTime` does, and has a thread look meanwhile at how
/// many threads and descriptors there are.
void watchWork(Sample& sample, std::function<bool()> const& work);

/// Looks at what is still taken when nothing has happened for a second. Called with all results still held.
void lookAfterRest(Sample& sample);

}  // namespace bench
