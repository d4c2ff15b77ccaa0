#pragma once

#include <vector>

namespace cli {

/// Durations of like things.
///
/// Units  Milliseconds.
class Latencies {
public:
    void add(double milliseconds) { values_.push_back(milliseconds); }

    [[nodiscard]] std::size_t count() const { return values_.size(); }
    /// 0 without a duration, as are the next two.
    [[nodiscard]] double mean() const;
    [[nodiscard]] double total() const;
    /// The smallest duration that `percent` of all don't exceed.
    ///
    /// @param percent  from 0 to 100
    [[nodiscard]] double percentile(double percent) const;

private:
    std::vector<double> values_;
};

}  // namespace cli
