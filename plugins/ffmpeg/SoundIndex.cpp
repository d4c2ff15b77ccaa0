#include "plugins/ffmpeg/SoundIndex.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {
namespace {

constexpr uint32_t hintReach = 4;

}  // namespace

SoundIndex::SoundIndex(std::vector<SoundPacket> packets, std::vector<bool> isStart, KeptSamples kept)
    : packets_(std::move(packets)), isStart_(std::move(isStart)), kept_(std::move(kept)) {
    int64_t next = 0;
    for (SoundPacket& packet : packets_) {
        packet.firstSample = next;
        next = packet.endSample();
    }
}

/// Packets without samples stand at the first sample of those that follow, and are passed over.
uint32_t SoundIndex::packetWith(int64_t decodedSample, uint32_t hint) const {
    for (uint32_t number = hint; number < packetCount() && number < hint + hintReach; ++number) {
        if (isWith(number, decodedSample)) {
            return number;
        }
    }
    auto const after = std::upper_bound(
        packets_.begin(), packets_.end(), decodedSample,
        [](int64_t sample, SoundPacket const& packet) { return sample < packet.firstSample; });
    return after == packets_.begin() ? 0 : static_cast<uint32_t>(after - packets_.begin() - 1);
}

bool SoundIndex::isWith(uint32_t number, int64_t decodedSample) const {
    return packets_[number].firstSample <= decodedSample && decodedSample < packets_[number].endSample();
}

uint32_t SoundIndex::startAtOrBefore(uint32_t number) const {
    while (number > 0 && !isStart_.empty() && !isStart_[number]) {
        --number;
    }
    return number;
}

}  // namespace playfile_ffmpeg
