#include "bench/soak/Growth.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace soak {
namespace {

/// What a run at random scatters by from quarter to quarter although nothing leaks.
constexpr Tolerance ofMemory{.part = 0.05, .more = 16.0};
constexpr Tolerance ofThreads{.part = 0.1, .more = 3.0};
constexpr Tolerance ofDescriptors{.part = 0.1, .more = 6.0};

using Samples = std::vector<Footprint>;

double medianOf(Samples::const_iterator begin, Samples::const_iterator end, double Footprint::*figure) {
    std::vector<double> values;
    std::transform(begin, end, std::back_inserter(values),
                   [figure](Footprint const& sample) { return sample.*figure; });
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

Growth compare(Samples const& samples, char const* name, double Footprint::*figure, Tolerance tolerance) {
    auto const quarter = static_cast<std::ptrdiff_t>(samples.size() / 4);
    return {name, medianOf(samples.end() - 2 * quarter, samples.end() - quarter, figure),
            medianOf(samples.end() - quarter, samples.end(), figure), tolerance};
}

}  // namespace

bool Growth::hasGrown() const {
    return lastQuarter > thirdQuarter * (1 + tolerance.part) + tolerance.more;
}

std::string Growth::text() const {
    char line[200];
    std::snprintf(line, sizeof line,
                  "%-12s third quarter %8.1f, last %8.1f, may grow by %.0f %% and %.0f: %s", name.c_str(),
                  thirdQuarter, lastQuarter, tolerance.part * 100, tolerance.more,
                  hasGrown() ? "IT GREW" : "steady");
    return line;
}

std::vector<Growth> growthOf(std::vector<Footprint> const& samples) {
    return {compare(samples, "memory MiB", &Footprint::residentMiB, ofMemory),
            compare(samples, "threads", &Footprint::threads, ofThreads),
            compare(samples, "descriptors", &Footprint::descriptors, ofDescriptors)};
}

}  // namespace soak
