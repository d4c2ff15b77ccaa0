#pragma once

#include <cstdio>
#include <optional>
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
    /// Frames that must be decoded at least.
    std::uint32_t spannedFrames = 0;

    /// True if no repetition of either side failed.
    [[nodiscard]] bool isGood() const;
    /// Medians over the repetitions.
    [[nodiscard]] double librarySecondsPerRead() const;
    [[nodiscard]] double plainSecondsPerRead() const;
    /// How many times as fast as the plain loop: the median of the ratios of repetitions side by side.
    [[nodiscard]] double ratio() const;
    /// Bytes by which the library's process was larger at most; negative if it was smaller.
    [[nodiscard]] double extraBytes() const;
    /// How often each frame that had to be decoded was.
    [[nodiscard]] double decodesPerFrame() const;
};

/// The opening of a folder of clips, a first frame each, with all of it held.
struct BinResult {
    std::vector<Sample> library;
    /// With all files opened ahead of need.
    std::vector<Sample> ahead;
    std::vector<Sample> plain;

    [[nodiscard]] bool isGood() const;
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

void printBin(std::FILE* out, std::optional<BinResult> const& bin);

void printJson(std::FILE* out, std::vector<ClipResult> const& clips, std::optional<BinResult> const& bin);

/// Says of each speed that playfile sets itself whether it was reached.
void printTargets(std::FILE* out, std::vector<ClipResult> const& clips, std::optional<BinResult> const& bin,
                  NullCosts const& costs);

}  // namespace bench
