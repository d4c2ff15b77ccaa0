#include "toolkit/image/VideoDescription.h"

#include <algorithm>
#include <array>

namespace Ox {

double getFramesPerSecond(FrameRate rate) {
    return rate.numerator == 0 || rate.denominator == 0 ? 0.0 : double(rate.numerator) / rate.denominator;
}

bool isStandardFrameRate(FrameRate rate) {
    static constexpr std::array<FrameRate, 13> standard{{{24, 1},
                                                         {24000, 1001},
                                                         {25, 1},
                                                         {30, 1},
                                                         {30000, 1001},
                                                         {48, 1},
                                                         {48000, 1001},
                                                         {50, 1},
                                                         {60, 1},
                                                         {60000, 1001},
                                                         {100, 1},
                                                         {120, 1},
                                                         {120000, 1001}}};
    return rate.numerator != 0 && std::find(standard.begin(), standard.end(), rate) != standard.end();
}

}  // namespace Ox
