#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/playfile/RelocationPlan.h"

namespace cli {

/// Tells how many bytes of a plan have come to their targets, while somebody relocates them in the plan's order.
///
/// Threads  One at a time.
class RelocationMeter {
public:
    explicit RelocationMeter(RelocationPlan const& plan);

    /// From 0 to 1. It looks at the file under way and those behind it that are finished by now, and passes over one
    /// that failed.
    [[nodiscard]] double fraction();

private:
    std::vector<RelocationPlan::File> files_;
    std::uint64_t const needed_;
    std::size_t current_ = 0;
    std::uint64_t doneBytes_ = 0;
};

}  // namespace cli
