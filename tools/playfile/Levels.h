#pragma once

#include <cstdint>
#include <vector>

#include "tools/playfile/Picture.h"
#include "tools/playfile/SampleSinks.h"

namespace cli {

/// How loud one channel is.
///
/// Units  Full scale is 1.0.
struct ChannelLevels {
    /// The lowest and the highest sample of one part of the time.
    struct Column {
        float lowest = 0.0F;
        float highest = 0.0F;
    };

    std::vector<Column> columns;
    std::uint64_t samples = 0;
    double peak = 0.0;
    double sumOfSquares = 0.0;

    [[nodiscard]] double rms() const;
};

/// Measures the channels of a fetch, as their samples come in any order.
class LevelSink : public iSampleSink {
public:
    explicit LevelSink(std::vector<ChannelRange> const& ranges);
    void take(SampleFetcher::Samples const& samples) override;
    [[nodiscard]] std::vector<ChannelLevels> const& channels() const { return channels_; }

private:
    std::vector<ChannelRange> const& ranges_;
    std::vector<ChannelLevels> channels_;
};

/// A sample as a part of full scale; 0 for a form that isn't known.
[[nodiscard]] double sampleValue(std::uint8_t const* sample, std::uint32_t format);

/// A level in decibels below full scale; the lowest that is told for silence.
[[nodiscard]] double asDecibels(double level);

/// The course of a channel from left to right, with its middle line.
[[nodiscard]] Picture drawWaveform(ChannelLevels const& levels);

}  // namespace cli
