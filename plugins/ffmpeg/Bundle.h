#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "plugins/ffmpeg/KeptSamples.h"

namespace playfile_ffmpeg {

/// What is handed to a decoder for one run of a stream's samples: the packets that it hasn't had yet, and
/// which of the decoded samples are wanted.
///
/// It stands for one codec frame where sound is read by frames, but begins and ends at any sample, so
/// that a stream can be numbered from its first sample that is heard.
///
/// Units        Samples as decoded, of each channel.
struct Bundle {
    struct Packet {
        int64_t firstSample = 0;
        uint32_t sampleCount = 0;
        bool isFirstOfStream = false;
        /// Empty for a packet that can't be read.
        std::span<uint8_t const> bytes;
    };

    bool startsAnew = false;  ///< The decoder forgets what it had, and begins with the first packet.
    bool endsStream = false;  ///< No packet follows those that are in here.
    int64_t holdFrom = 0;     ///< Samples before this one won't be asked for again.
    std::vector<SampleRun> runs;
    std::vector<Packet> packets;
};

/// Writes a bundle into a block of bytes, step by step: runs first, then packets.
class BundleWriter {
public:
    explicit BundleWriter(std::vector<uint8_t>& bytes);

    void addRun(SampleRun const& run);
    /// The packet's bytes are put behind those in `bytes` between these two calls.
    void beginPacket(int64_t firstSample, uint32_t sampleCount, bool isFirstOfStream);
    void endPacket();
    void finish(bool startsAnew, bool endsStream, int64_t holdFrom);

private:
    std::vector<uint8_t>& bytes_;
    uint32_t runCount_ = 0;
    uint32_t packetCount_ = 0;
    size_t packetAt_ = 0;
};

/// Takes a block apart into `bundle`; false if it is none that the writer wrote. The packets' bytes stay
/// in the block.
[[nodiscard]] bool readBundle(std::span<uint8_t const> bytes, Bundle& bundle);

}  // namespace playfile_ffmpeg
