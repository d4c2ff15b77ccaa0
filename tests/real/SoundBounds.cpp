#include "tests/real/SoundBounds.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace test {
namespace {

/// What is left of the past when a decoder of such a codec begins anywhere. All other codecs leave nothing.
struct Bound {
    std::string_view codec;
    double rootMeanSquare;
};
constexpr std::array<Bound, 6> bounds = {{{"ac3", 0.02},    // noise stands in for what isn't coded
                                          {"eac3", 0.02},   // the same
                                          {"mp2", 0.0001},  // the last bit is dithered
                                          {"opus", 0.0001},
                                          {"gsm", 0.01},
                                          {"adpcm_ima_qt", 0.01}}};
constexpr double boundOfNoisyAac = 0.02;
/// Of linear prediction at a low rate, which may ring on for seconds.
constexpr double boundOfSpeech = 0.05;

}  // namespace

double soundBoundOf(std::string const& path, std::string const& codec) {
    if (codec == "aac" && path.find("noisy") != std::string::npos) {
        return boundOfNoisyAac;
    }
    if (path.find("speech") != std::string::npos) {
        return boundOfSpeech;
    }
    auto const found =
        std::find_if(bounds.begin(), bounds.end(), [&](Bound const& bound) { return bound.codec == codec; });
    return found == bounds.end() ? 0.0 : found->rootMeanSquare;
}

}  // namespace test
