#include "plugins/ffmpeg/FrameDurations.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace playfile_ffmpeg {
namespace {

/// Finer units don't matter to pictures, and products of them would leave 64 bits.
constexpr int finestScale = 1'000'000;
/// For durations that finer units can't hold.
constexpr int coarsestScale = 1000;
constexpr std::size_t mostExactDurations = 24;
constexpr std::uint64_t longestRun = std::numeric_limits<std::uint32_t>::max();

/// The times of all frames and the end of the last, in units that a table can hold.
struct Times {
    std::vector<std::uint64_t> starts;
    std::uint32_t timeScale = 1;
};

/// The time base's own units where a table can hold them, which leaves every time exact.
int scaleFor(AVRational timeBase, std::int64_t longestGap) {
    for (int const scale : {timeBase.den, finestScale}) {
        if (scale <= finestScale && av_rescale_q(longestGap, timeBase, {1, scale}) <= INT32_MAX) {
            return scale;
        }
    }
    return coarsestScale;
}

/// @param end  of the last frame
std::int64_t longestGapOf(FrameIndex const& index, std::int64_t end) {
    std::int64_t longest = av_sat_sub64(end, index.ptsOf(index.frameCount() - 1));
    for (std::uint32_t frame = 1; frame < index.frameCount(); ++frame) {
        longest = std::max(longest, av_sat_sub64(index.ptsOf(frame), index.ptsOf(frame - 1)));
    }
    return longest;
}

/// Each frame begins after the one before it.
void push(std::vector<std::uint64_t>& starts, std::uint64_t start) {
    starts.push_back(starts.empty() ? start : std::max(start, starts.back() + 1));
}

Times timesOf(FrameIndex const& index, AVRational timeBase, std::int64_t end) {
    std::int64_t const first = index.ptsOf(0);
    int const scale = scaleFor(timeBase, longestGapOf(index, end));
    auto const unitsOf = [&](std::int64_t time) {
        std::int64_t const units = av_rescale_q(av_sat_sub64(time, first), timeBase, {1, scale});
        return static_cast<std::uint64_t>(std::max<std::int64_t>(units, 0));
    };
    Times times;
    times.timeScale = static_cast<std::uint32_t>(scale);
    times.starts.reserve(index.frameCount() + 1U);
    for (std::uint32_t frame = 0; frame < index.frameCount(); ++frame) {
        push(times.starts, unitsOf(index.ptsOf(frame)));
    }
    push(times.starts, unitsOf(end));
    return times;
}

/// Adds a frame to the last run, or begins another where it doesn't fit in.
void addFrame(std::vector<TimeToSampleItem>& runs, std::uint64_t duration) {
    std::uint32_t const units = static_cast<std::uint32_t>(std::min(duration, longestRun));
    bool const continues = !runs.empty() && runs.back().sampleDuration == units &&
                           (runs.back().sampleCount + std::uint64_t{1}) * units <= longestRun;
    if (continues) {
        ++runs.back().sampleCount;
    } else {
        runs.push_back({1, units});
    }
}

}  // namespace

FrameDurations FrameDurations::of(FrameIndex const& index, AVRational timeBase, std::int64_t end) {
    std::int64_t const last = index.ptsOf(index.frameCount() - 1);
    std::int64_t const likelyEnd = av_sat_add64(last, std::max<std::int64_t>(usualGap(index), 1));
    Times const times = timesOf(index, timeBase, end > last ? end : likelyEnd);
    FrameDurations durations;
    durations.timeScale = times.timeScale;
    for (std::size_t frame = 1; frame < times.starts.size(); ++frame) {
        addFrame(durations.runs, times.starts[frame] - times.starts[frame - 1]);
    }
    return durations;
}

std::uint64_t FrameDurations::total() const {
    std::uint64_t sum = 0;
    for (TimeToSampleItem const& run : runs) {
        sum += std::uint64_t{run.sampleCount} * run.sampleDuration;
    }
    return sum;
}

bool hasAllTimes(FrameIndex const& index) {
    for (std::uint32_t frame = 0; frame < index.frameCount(); ++frame) {
        if (index.ptsOf(frame) == AV_NOPTS_VALUE) {
            return false;
        }
    }
    return true;
}

std::int64_t usualGap(FrameIndex const& index) {
    std::vector<std::int64_t> gaps;
    gaps.reserve(index.frameCount());
    for (std::uint32_t frame = 1; frame < index.frameCount(); ++frame) {
        gaps.push_back(av_sat_sub64(index.ptsOf(frame), index.ptsOf(frame - 1)));
    }
    auto const middle = gaps.begin() + static_cast<std::ptrdiff_t>((gaps.size() - 1) / 2);
    std::nth_element(gaps.begin(), middle, gaps.end());
    return *middle;
}

std::vector<DurationCount> histogramOf(FrameDurations const& durations) {
    std::map<double, std::uint32_t> exact;
    std::map<double, std::uint32_t> rounded;
    for (TimeToSampleItem const& run : durations.runs) {
        double const seconds = static_cast<double>(run.sampleDuration) / durations.timeScale;
        exact[seconds] += run.sampleCount;
        rounded[std::round(seconds * 1000.0) / 1000.0] += run.sampleCount;
    }
    std::vector<DurationCount> histogram;
    for (auto const& [seconds, frames] : exact.size() <= mostExactDurations ? exact : rounded) {
        histogram.push_back({seconds, frames});
    }
    return histogram;
}

}  // namespace playfile_ffmpeg
