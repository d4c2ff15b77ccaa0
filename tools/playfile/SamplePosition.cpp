#include "tools/playfile/SamplePosition.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/NumberRanges.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::uint64_t secondsPerMinute = 60;
constexpr std::uint64_t minutesPerHour = 60;
/// No file is that long; more would not fit the arithmetic.
constexpr double mostSeconds = 1e9;

/// The whole text as seconds followed by "s".
bool parseSeconds(std::string const& text, double& seconds) {
    if (text.empty() || text.back() != 's' || text.find_first_not_of("0123456789.s") != std::string::npos) {
        return false;
    }
    char* end = nullptr;
    seconds = std::strtod(text.c_str(), &end);
    return end == text.c_str() + text.size() - 1 && end != text.c_str() && seconds <= mostSeconds;
}

bool isTimecode(std::string const& text) {
    return text.find(':') != std::string::npos;
}

struct TimecodeFields {
    std::uint64_t hours = 0;
    std::uint64_t minutes = 0;
    std::uint64_t seconds = 0;
    std::uint64_t frames = 0;
    bool isDropFrame = false;
};

bool parseFields(std::string const& text, TimecodeFields& fields) {
    unsigned hours = 0;
    unsigned minutes = 0;
    unsigned seconds = 0;
    unsigned frames = 0;
    char separator = 0;
    int length = 0;
    int const found = std::sscanf(text.c_str(), "%2u:%2u:%2u%c%3u%n", &hours, &minutes, &seconds, &separator,
                                  &frames, &length);
    if (found != 5 || static_cast<std::size_t>(length) != text.size() ||
        (separator != ':' && separator != ';')) {
        return false;
    }
    fields = {hours, minutes, seconds, frames, separator == ';'};
    return minutes < minutesPerHour && seconds < secondsPerMinute;
}

[[noreturn]] void refuseTimecode(std::string const& text) {
    throw CommandError("the time code " + inQuotes(text) +
                           " isn't one of the file's rate; write hours:minutes:seconds:frames",
                       exitUsage);
}

/// Frames that are left out of the count at the start of each minute but every tenth.
std::uint64_t droppedPerMinute(std::uint64_t nominalRate) {
    return nominalRate / 15;
}

}  // namespace

std::uint64_t timecodeFrames(std::string const& text, Ox::FrameRate rate) {
    TimecodeFields fields;
    auto const nominalRate = static_cast<std::uint64_t>(std::lround(Ox::getFramesPerSecond(rate)));
    if (!parseFields(text, fields) || fields.frames >= nominalRate) {
        refuseTimecode(text);
    }
    std::uint64_t const minutes = fields.hours * minutesPerHour + fields.minutes;
    std::uint64_t const frames = (minutes * secondsPerMinute + fields.seconds) * nominalRate + fields.frames;
    return fields.isDropFrame ? frames - droppedPerMinute(nominalRate) * (minutes - minutes / 10) : frames;
}

SamplePosition SamplePosition::parse(std::string const& text, std::string const& option) {
    SamplePosition position(eKind::samples, text);
    if (parseNumber(text, position.samples_)) {
        return position;
    }
    if (parseSeconds(text, position.seconds_)) {
        position.kind_ = eKind::seconds;
        return position;
    }
    TimecodeFields fields;
    if (!isTimecode(text) || !parseFields(text, fields)) {
        throw CommandError(option + " " + inQuotes(text) +
                               " isn't understood; write samples (48000), seconds (1.5s) or a time code "
                               "(01:00:00:12)",
                           exitUsage);
    }
    position.kind_ = eKind::timecode;
    return position;
}

std::uint64_t SamplePosition::asPlace(double sampleRate, TimeScale const& scale) const {
    return convert(sampleRate, scale);
}

std::uint64_t SamplePosition::asLength(double sampleRate, TimeScale const& scale) const {
    return convert(sampleRate, {scale.frameRate, 0, 0});
}

std::uint64_t SamplePosition::convert(double sampleRate, TimeScale const& scale) const {
    if (kind_ == eKind::samples) {
        return samples_;
    }
    if (kind_ == eKind::seconds) {
        return static_cast<std::uint64_t>(std::llround(seconds_ * sampleRate));
    }
    double const framesPerSecond = Ox::getFramesPerSecond(scale.frameRate);
    if (framesPerSecond <= 0.0) {
        throw CommandError("the file states no frame rate for the time code " + inQuotes(text_) +
                           "; name one with --rate");
    }
    auto const samplesOf = [&](std::uint64_t frames) {
        return static_cast<std::uint64_t>(
            std::llround(static_cast<double>(frames) * sampleRate / framesPerSecond));
    };
    std::uint64_t const frame = timecodeFrames(text_, scale.frameRate);
    std::uint64_t const sample = frame < scale.startFrame ? 0 : samplesOf(frame - scale.startFrame);
    if (frame < scale.startFrame || sample < scale.startSample) {
        throw CommandError("the time code " + inQuotes(text_) + " lies before the file's start");
    }
    return sample - scale.startSample;
}

Ox::FrameRate parseFrameRate(std::string const& text) {
    std::size_t const slash = text.find('/');
    std::uint32_t numerator = 0;
    std::uint32_t denominator = 1;
    bool const isNumber = parseNumber(text.substr(0, slash), numerator) &&
                          (slash == std::string::npos || parseNumber(text.substr(slash + 1), denominator));
    if (!isNumber || numerator == 0 || denominator == 0) {
        throw CommandError("--rate " + inQuotes(text) + " is no frame rate; write 25 or 30000/1001",
                           exitUsage);
    }
    return {numerator, denominator};
}

}  // namespace cli
