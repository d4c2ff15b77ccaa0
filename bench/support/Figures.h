#pragma once

#include <vector>

#include "bench/support/Child.h"

namespace bench {

/// What is made of the repetitions of one measurement, both sides in turn, so that a slow minute of the
/// machine meets both.

[[nodiscard]] double median(std::vector<double> values);

/// The median over the repetitions of what `figure` says of each.
[[nodiscard]] double medianOf(std::vector<Sample> const& samples, double (*figure)(Sample const&));

/// Figures for that.
[[nodiscard]] double peakMiBOf(Sample const& sample);
[[nodiscard]] double restMiBOf(Sample const& sample);
[[nodiscard]] double peakThreadsOf(Sample const& sample);
[[nodiscard]] double restThreadsOf(Sample const& sample);
[[nodiscard]] double peakDescriptorsOf(Sample const& sample);
[[nodiscard]] double restDescriptorsOf(Sample const& sample);

/// MiB that are resident after a rest, less those before the work.
[[nodiscard]] double restMiBAbove(std::vector<Sample> const& samples);

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
