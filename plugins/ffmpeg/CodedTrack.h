#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "plugins/ffmpeg/Bundle.h"
#include "plugins/ffmpeg/ByteFile.h"
#include "plugins/ffmpeg/LeadIn.h"
#include "plugins/ffmpeg/SoundIndex.h"
#include "plugins/ffmpeg/SoundPacketReader.h"

namespace playfile_ffmpeg {

/// A stream whose samples come out of a decoder: for a run of samples it brings the packets that the
/// decoder needs, as a bundle.
///
/// It knows what the decoder has been given, so that each packet is handed over once when samples are
/// read in order; after a jump the packets before the target come along.
///
/// Threads      One at a time; but `giveNext` may run on another thread beside all the others, as long as
///              the bundles that are asked for need no packets.
/// Units        Samples of every channel, as heard.
class CodedTrack {
public:
    CodedTrack(SoundIndex index, LeadIn leadIn, AVCodecID codec);

    /// Packets that lie in the file in one piece are read without the container.
    void readFrom(std::shared_ptr<ByteFile const> file);
    void readFrom(std::string const& path, size_t stream, std::vector<PacketTrace> traces);

    int64_t sampleCount() const { return index_.kept().count(); }
    /// True if the decoder stands so that the run from `first` on needs no jump.
    bool goesOnAt(int64_t first);

    /// How many packets, from the first one on, the bundle for the samples from `first` up to `end` needs
    /// to have been given.
    uint32_t packetsFor(int64_t first, int64_t end);
    /// How many have been given.
    uint32_t packetsGiven() const { return given_; }
    /// Gives the packet that comes next, its bytes in `bytes`, before a bundle needs it; false if there is
    /// none. May block on the file.
    bool giveNext(Bundle::Packet& packet, std::vector<uint8_t>& bytes);

    /// Writes the bundle for the samples from `first` up to `end` into `bytes`. Requires that the stream
    /// has them. May block on the file.
    void bundle(int64_t first, int64_t end, std::vector<uint8_t>& bytes);

private:
    static constexpr uint32_t nothing = UINT32_MAX;

    bool canGoOnTo(SampleRun const& run, uint32_t lead) const;
    uint32_t leadOf(SampleRun const& run, uint32_t wanted) const;
    uint32_t offsetIn(uint32_t packet, SampleRun const& run) const;
    void hold(bool startsAnew, uint32_t wanted, SampleRun const& first);
    uint32_t endPacketFor(SampleRun const& last, uint32_t wanted) const;
    uint32_t nextWanted() const;

    SoundIndex const index_;
    LeadIn const leadIn_;
    bool const isDelayed_;
    std::unique_ptr<SoundPacketReader> packets_;
    /// The packet after the last one that the decoder has got.
    std::atomic<uint32_t> given_{nothing};
    int64_t heldFrom_ = 0;  ///< The decoder still holds what it decoded from this sample on.
    std::vector<SampleRun> runs_;
};

}  // namespace playfile_ffmpeg
