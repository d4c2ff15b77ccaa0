#pragma once

#include <cstdint>

#include "plugins/ffmpeg/SoundIndex.h"

namespace playfile_ffmpeg {

/// How far before a packet a decoder must begin, so that what it gives from that packet on doesn't show
/// that it began there.
///
/// For codecs whose packets depend on few others that is exact; for the others what is left of the past
/// is then too little to be heard.
///
/// Units        Samples of each channel.
class LeadIn {
public:
    explicit LeadIn(AVCodecID codec = AV_CODEC_ID_NONE) : codec_(codec) {}

    /// Looks at the stream's packets, of which some need more than others.
    void take(AVPacket const& packet);
    /// Decides, with what the stream's decoder tells of it.
    void settle(int profile, int sampleRate, uint32_t packetSamples);

    /// The packet to begin with, so that packet `number` is right from its sample `offset` on.
    uint32_t startFor(uint32_t number, SoundIndex const& index, uint32_t offset = 0) const;
    /// From which sample on that packet is right then.
    uint32_t rightFrom(uint32_t offset) const { return offset < ownFrom_ ? 0 : ownFrom_; }

private:
    static constexpr uint32_t nowhere = UINT32_MAX;

    void settleReservoir(uint32_t packetSamples);
    uint32_t fillReservoir(uint32_t number, SoundIndex const& index) const;

    AVCodecID codec_;
    bool hasSpeech_ = false;
    uint32_t packets_ = 0;
    int64_t samples_ = 0;
    uint32_t reservoirByteCount_ = 0;  ///< Of main data that a packet may take from those before it.
    uint32_t sideByteCount_ = 0;       ///< Of a packet, at most, that isn't main data.
    uint32_t ownFrom_ = nowhere;       ///< A packet's samples from here on overlap with none before it.
};

}  // namespace playfile_ffmpeg
