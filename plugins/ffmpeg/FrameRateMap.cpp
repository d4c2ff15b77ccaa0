#include "plugins/ffmpeg/FrameRateMap.h"

#include <algorithm>
#include <limits>

#include "toolkit/services/Settings.h"

namespace playfile_ffmpeg {
namespace {

std::uint32_t countFrames(FrameDurations const& durations, AVRational rate) {
    std::int64_t const total =
        static_cast<std::int64_t>(std::min<std::uint64_t>(durations.total(), INT64_MAX));
    std::int64_t const frames =
        av_rescale_rnd(total, rate.num, std::int64_t{rate.den} * durations.timeScale, AV_ROUND_UP);
    return static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(frames, 1, std::numeric_limits<std::int32_t>::max()));
}

Ox::Ptr<iVariableFrameRateHandler> makeHandler(FrameDurations const& durations, AVRational rate) {
    constexpr int unused = 0;
    return Ox::makePtr<VariableFrameRateHandler>(durations.runs, unused, durations.timeScale,
                                                 durations.runs.front().sampleDuration, av_q2d(rate));
}

}  // namespace

FrameRateMap::FrameRateMap(FrameDurations const& durations, AVRational rate, std::uint32_t storedCount)
    : handler_(makeHandler(durations, rate)),
      storedCount_(storedCount),
      timelineCount_(countFrames(durations, rate)) {}

std::unique_ptr<FrameRateMap> FrameRateMap::of(FrameIndex const& index, StreamFacts const& facts) {
    if (facts.hasConstantRate || !hasAllTimes(index) || config_int("useFrameRateMap", 1, 0, 1) == 0) {
        return nullptr;
    }
    return std::make_unique<FrameRateMap>(FrameDurations::of(index, facts.timeBase, facts.endTime),
                                          facts.frameRate, index.frameCount());
}

std::uint32_t FrameRateMap::storedFrame(std::uint32_t frame) const {
    return std::min(handler_->mapVFRSample(std::min(frame, timelineCount_ - 1)), storedCount_ - 1);
}

}  // namespace playfile_ffmpeg
