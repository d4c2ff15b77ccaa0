#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "bench/support/Child.h"
#include "bench/support/NullCosts.h"
#include "bench/workload/Cases.h"

namespace bench {

/// The repetitions of one case, both sides in turn, so that a slow minute of the machine meets both.
struct CaseResult {
    eCase which = eCase::inOrder;
    std::vector<Sample> library;
    std::vector<Sample> plain;

    /// True if no repetition of either side failed.
    [[nodiscard]] bool isGood() const;
    /// Medians over the repetitions.
    [[nodiscard]] double librarySecondsPerRead() const;
    [[nodiscard]] double plainSecondsPerRead() const;
    /// How many times as fast as the plain loop: the median of the ratios of repetitions side by side.
    [[nodiscard]] double ratio() const;
    /// Bytes by which the library's process was larger at most; negative if it was smaller.
    [[nodiscard]] double extraBytes() const;
};

/// All that was measured of one clip.
struct ClipResult {
    std::string path;
    ClipFacts facts;
    std::vector<CaseResult> cases;
};

void printTable(std::FILE* out, ClipResult const& clip);

/// What the columns of the table mean.
void printLegend(std::FILE* out);

void printJson(std::FILE* out, std::vector<ClipResult> const& clips);

/// Says of each speed that playfile sets itself whether it was reached.
void printTargets(std::FILE* out, std::vector<ClipResult> const& clips, NullCosts const& costs);

}  // namespace bench
