#pragma once

namespace Aud {

/// A rate of samples: the nominal one, and by how much it is pulled up or down.
class SampleRate {
public:
    SampleRate() = default;
    /// @param nominal  samples a second
    /// @param factor   1.0 for a rate that isn't pulled, 1000/1001 for one that is pulled down
    explicit SampleRate(double nominal, double factor = 1.0) : nominal_(nominal), factor_(factor) {}

    /// Samples a second, the pull included; 0 for none.
    [[nodiscard]] double calcCombinedSampleRate() const { return nominal_ * factor_; }

private:
    double nominal_ = 0.0;
    double factor_ = 1.0;
};

}  // namespace Aud
