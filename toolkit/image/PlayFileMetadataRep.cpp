#include "toolkit/image/PlayFileMetadataRep.h"

#include <numeric>

bool PlayFileMetadataRep::isVariableFrameRate() const {
    return frameRateMap || (minFrameRate > 0.0 && minFrameRate < maxFrameRate);
}

bool PlayFileMetadataRep::isNonStandardFrameRate() const {
    Ox::FrameRate const rate = videoSequence.frameRate;
    return Ox::getFramesPerSecond(rate) > 0.0 && !Ox::isStandardFrameRate(rate);
}

std::uint32_t PlayFileMetadataRep::getTotalChannels() const {
    return std::accumulate(
        audioStreams.begin(), audioStreams.end(), 0U,
        [](std::uint32_t sum, Aud::Metadata const& stream) { return sum + stream.channels; });
}
