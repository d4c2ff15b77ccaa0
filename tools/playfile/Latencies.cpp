#include "tools/playfile/Latencies.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace cli {

double Latencies::mean() const {
    return values_.empty() ? 0.0 : total() / static_cast<double>(values_.size());
}

double Latencies::total() const {
    return std::accumulate(values_.begin(), values_.end(), 0.0);
}

double Latencies::percentile(double percent) const {
    if (values_.empty()) {
        return 0.0;
    }
    std::vector<double> sorted(values_);
    std::sort(sorted.begin(), sorted.end());
    double const rank = std::ceil(percent / 100.0 * static_cast<double>(sorted.size()));
    return sorted[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

}  // namespace cli
