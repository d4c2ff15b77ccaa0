#include "bench/support/Figures.h"

#include <algorithm>
#include <iterator>

namespace bench {
namespace {

double secondsPerRead(Sample const& sample) {
    return sample.reads == 0 ? 0.0 : sample.seconds / sample.reads;
}

}  // namespace

double median(std::vector<double> values) {
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    std::size_t const half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

double medianOf(std::vector<Sample> const& samples, double (*figure)(Sample const&)) {
    std::vector<double> values;
    std::transform(samples.begin(), samples.end(), std::back_inserter(values), figure);
    return median(values);
}

double peakMiBOf(Sample const& sample) {
    return static_cast<double>(sample.peakBytes) / (1024.0 * 1024.0);
}

double restMiBOf(Sample const& sample) {
    return sample.restMiB;
}

double peakThreadsOf(Sample const& sample) {
    return sample.peakThreads;
}

double restThreadsOf(Sample const& sample) {
    return sample.restThreads;
}

double peakDescriptorsOf(Sample const& sample) {
    return sample.peakDescriptors;
}

double restDescriptorsOf(Sample const& sample) {
    return sample.restDescriptors;
}

double restMiBAbove(std::vector<Sample> const& samples) {
    return medianOf(samples, [](Sample const& sample) { return sample.restMiB - sample.startMiB; });
}

bool areGood(std::vector<Sample> const& samples) {
    return std::all_of(samples.begin(), samples.end(), [](Sample const& sample) { return sample.isGood; });
}

double medianSecondsPerRead(std::vector<Sample> const& samples) {
    std::vector<double> values;
    std::transform(samples.begin(), samples.end(), std::back_inserter(values), secondsPerRead);
    return median(values);
}

double medianProcessorSecondsPerRead(std::vector<Sample> const& samples) {
    std::vector<double> values;
    for (Sample const& sample : samples) {
        values.push_back(sample.reads == 0 ? 0.0 : sample.processorSeconds / sample.reads);
    }
    return median(values);
}

double ratioTo(std::vector<Sample> const& other, std::vector<Sample> const& own) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < std::min(own.size(), other.size()); ++i) {
        if (secondsPerRead(own[i]) > 0.0) {
            ratios.push_back(secondsPerRead(other[i]) / secondsPerRead(own[i]));
        }
    }
    return median(ratios);
}

double bytesAbove(std::vector<Sample> const& other, std::vector<Sample> const& own) {
    std::vector<double> differences;
    for (std::size_t i = 0; i < std::min(own.size(), other.size()); ++i) {
        differences.push_back(static_cast<double>(own[i].peakBytes) -
                              static_cast<double>(other[i].peakBytes));
    }
    return median(differences);
}

}  // namespace bench
