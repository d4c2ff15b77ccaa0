#include "tools/playfile/RateDisplay.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "toolkit/services/NumberText.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::chrono::milliseconds showInterval{100};
constexpr int barLength = 20;
constexpr double percent = 100.0;
constexpr double tenths = 10.0;
constexpr long secondsPerMinute = 60;
/// Before that a rate means nothing.
constexpr double leastSeconds = 0.2;
char const* const wipeLine = "\r\033[K";

std::string timeText(double seconds) {
    long const whole = std::lround(seconds);
    char text[32];
    std::snprintf(text, sizeof(text), "%ld:%02ld", whole / secondsPerMinute, whole % secondsPerMinute);
    return text;
}

}  // namespace

RateDisplay::RateDisplay() : isTerminal_(::isatty(STDERR_FILENO) == 1) {}

RateDisplay::~RateDisplay() {
    wipe();
}

void RateDisplay::wipe() {
    if (isShown_) {
        std::fputs(wipeLine, stderr);
        isShown_ = false;
    }
}

std::string RateDisplay::text(double fraction, std::uint64_t total, double seconds) {
    double const done = std::clamp(fraction, 0.0, 1.0);
    auto const filled = static_cast<std::size_t>(done * barLength);
    std::string result = "[" + std::string(filled, '#') + std::string(barLength - filled, '-') + "] " +
                         std::to_string(static_cast<int>(done * percent)) + " %";
    if (done > 0.0 && seconds >= leastSeconds) {
        if (total != 0) {
            double const rate = done * static_cast<double>(total) / seconds;
            result += "  " + narrowName(bytesAsString(static_cast<unsigned long>(rate), true)) + "/s";
        }
        result += "  " + timeText(seconds * (1.0 - done) / done) + " left";
    }
    return result;
}

void RateDisplay::show(double fraction, std::uint64_t total) {
    double const seconds = std::chrono::duration<double>(Clock::now() - begin_).count();
    if (isTerminal_) {
        if (Clock::now() >= nextShow_) {
            nextShow_ = Clock::now() + showInterval;
            isShown_ = true;
            std::fprintf(stderr, "%s%s", wipeLine, text(fraction, total, seconds).c_str());
        }
        return;
    }
    int const reached = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * tenths);
    if (reached > tenthsTold_) {
        tenthsTold_ = reached;
        writeLine(std::to_string(reached * static_cast<int>(tenths)) + " %");
    }
}

}  // namespace cli
