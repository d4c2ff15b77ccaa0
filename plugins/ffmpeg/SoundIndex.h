#pragma once

#include <cstdint>
#include <vector>

#include "plugins/ffmpeg/KeptSamples.h"

namespace playfile_ffmpeg {

/// One coded packet of a stream of sound.
struct SoundPacket {
    int64_t position = -1;    ///< Where its bytes lie in the file, if they lie there in one piece.
    int64_t firstSample = 0;  ///< As decoded.
    uint32_t byteCount = 0;
    uint32_t sampleCount = 0;

    int64_t endSample() const { return firstSample + sampleCount; }
};

/// The packets of a stream, and which of their samples are heard.
///
/// Threads      Constant once the file is open.
/// Units        Samples of each channel.
class SoundIndex {
public:
    SoundIndex() = default;

    /// @param packets  in the order of decoding; their first samples are set here
    /// @param isStart  which packets decoding may begin at; empty if that are all
    SoundIndex(std::vector<SoundPacket> packets, std::vector<bool> isStart, KeptSamples kept);

    uint32_t packetCount() const { return static_cast<uint32_t>(packets_.size()); }
    SoundPacket const& packet(uint32_t number) const { return packets_[number]; }
    KeptSamples const& kept() const { return kept_; }

    /// The packet that gives a decoded sample; the last one for samples behind all packets.
    ///
    /// @param hint  where it may be, or shortly before it
    uint32_t packetWith(int64_t decodedSample, uint32_t hint = 0) const;
    /// The last packet not behind `number` that decoding may begin at; 0 if there is none.
    uint32_t startAtOrBefore(uint32_t number) const;

private:
    bool isWith(uint32_t number, int64_t decodedSample) const;

    std::vector<SoundPacket> packets_;
    std::vector<bool> isStart_;
    KeptSamples kept_;
};

}  // namespace playfile_ffmpeg
