#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "bench/support/Footprint.h"

namespace soak {

using bench::Footprint;

/// How much a figure may grow without being said to: by a part of itself and by so much more.
struct Tolerance {
    double part;
    double more;
};

/// One figure over the last half of a run: the medians of its two quarters.
struct Growth {
    std::string name;
    double thirdQuarter = 0;
    double lastQuarter = 0;
    Tolerance tolerance{};

    [[nodiscard]] bool hasGrown() const;
    /// One line for people.
    [[nodiscard]] std::string text() const;
};

/// Compares the last two quarters of a run in memory, threads and descriptors.
///
/// Requires four samples at least.
[[nodiscard]] std::vector<Growth> growthOf(std::vector<Footprint> const& samples);

}  // namespace soak
