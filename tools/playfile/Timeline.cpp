#include "tools/playfile/Timeline.h"

#include <algorithm>
#include <cmath>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/NumberRanges.h"
#include "tools/playfile/Text.h"
#include "video/iVariableFrameRateHandler.h"

namespace cli {
namespace {

constexpr int timeDigits = 3;
/// A time that was rounded when it was written still means the frame that begins there.
constexpr double roundingFrames = 1e-3;

}  // namespace

std::uint32_t Timeline::frameCount() const {
    LightweightString<char> text;
    std::uint32_t count = 0;
    bool const isStated = metadata_.frameRateMap && metadata_.extraConfig.in("timelineFrames", text) == 0 &&
                          parseNumber(text.str(), count);
    return isStated ? count : metadata_.videoSampleCount;
}

std::uint32_t Timeline::frameAt(double seconds, std::string const& fileName) const {
    double const framesPerSecond = Ox::getFramesPerSecond(metadata_.videoSequence.frameRate);
    if (framesPerSecond <= 0.0) {
        throw CommandError(inQuotes(fileName) + " has no frame rate; name its frames by their numbers");
    }
    double const frame = std::floor(seconds * framesPerSecond + roundingFrames);
    if (!(frame >= 0.0 && frame < frameCount())) {
        throw CommandError(inQuotes(fileName) + " shows no frame at " + fixed(seconds, timeDigits) +
                           " s; it lasts " + fixed(frameCount() / framesPerSecond, timeDigits) + " s");
    }
    return static_cast<std::uint32_t>(frame);
}

std::uint32_t Timeline::storedFrame(std::uint32_t frame) const {
    auto const map = Ox::dynamicPtrCast<iVariableFrameRateHandler>(metadata_.frameRateMap);
    if (!map || metadata_.videoSampleCount == 0) {
        return frame;
    }
    return std::min(map->mapVFRSample(frame), metadata_.videoSampleCount - 1);
}

}  // namespace cli
