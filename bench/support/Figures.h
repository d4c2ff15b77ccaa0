#pragma once

#include <vector>

#include "bench/support/Child.h"

namespace bench {

/// What is made of the repetitions of one measurement, both sides in turn, so that a slow minute of the
/// machine meets both.

[[nodiscard]] double median(std::vector<double> values);

/// True if no repetition failed.
[[nodiscard]] bool areGood(std::vector<Sample> const& samples);

/// The median over the repetitions.
[[nodiscard]] double medianSecondsPerRead(std::vector<Sample> const& samples);

/// The same of the processors' time.
[[nodiscard]] double medianProcessorSecondsPerRead(std::vector<Sample> const& samples);

/// How many times as fast as the other: the median of the ratios of repetitions side by side.
[[nodiscard]] double ratioTo(std::vector<Sample> const& other, std::vector<Sample> const& own);

/// Bytes by which the own process was larger at most; negative if it was smaller.
[[nodiscard]] double bytesAbove(std::vector<Sample> const& other, std::vector<Sample> const& own);

}  // namespace bench
