#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "plugins/ffmpeg/BitstreamFacts.h"
#include "plugins/ffmpeg/FrameDecoder.h"
#include "plugins/ffmpeg/FrameIndex.h"
#include "plugins/ffmpeg/PacketReader.h"
#include "plugins/ffmpeg/PictureShelf.h"

namespace playfile_ffmpeg {

/// What a lane did since it was made.
struct LaneCounters {
    uint64_t seeks = 0;        ///< Reading began at another packet than the one that follows.
    uint64_t packetsRead = 0;
};

/// A decoder that walks along the packets from a key to the wanted frame, and on from there.
///
/// Threads      One at a time.
class DecodeLane {
public:
    DecodeLane(FrameIndex const& index, PacketReader& reader, std::unique_ptr<FrameDecoder> decoder,
               NalFraming framing);

    /// Frame `wanted`; empty if it can't be decoded. Pictures from `keepFrom` on that come out on the way,
    /// and those shown after the wanted one, go onto the shelf. Pictures before `keepFrom` that nobody
    /// refers to aren't decoded.
    PicturePtr fetch(uint32_t wanted, uint32_t keepFrom, PictureShelf& shelf);

    /// The first picture that decoding from the first packet gives out, with its frame number.
    PicturePtr fetchFirst(uint32_t& frame);

    LaneCounters const& counters() const { return counters_; }
    FrameDecoder const& decoder() const { return *decoder_; }

private:
    struct Walk {
        uint32_t wanted;
        uint32_t keepFrom;
    };
    enum class eStep { delivered, passed, ended };

    bool leadsTo(uint32_t wanted) const;
    void restartAt(uint32_t packet);
    PicturePtr walk(Walk const& goal, PictureShelf& shelf);
    PicturePtr sift(AvPtr<AVFrame> frame, uint32_t number, Walk const& goal, PictureShelf& shelf, bool& hasPassed);
    void feedNext(Walk const& goal);
    bool isDroppable(PacketEntry const& entry, Walk const& goal);
    bool isCertain(uint32_t frame) const { return index_.startPacketFor(frame) >= startedAt_; }
    PicturePtr finish(AvPtr<AVFrame> frame, uint32_t number) const;

    FrameIndex const& index_;
    PacketReader& reader_;
    std::unique_ptr<FrameDecoder> decoder_;
    AVCodecID codec_;
    NalFraming framing_;
    AvPtr<AVPacket> packet_;
    bool isRunning_ = false;
    bool isDropping_ = false;
    uint32_t startedAt_ = 0;
    uint32_t next_ = 0;         ///< The packet to be sent next.
    uint32_t lastFetched_ = 0;
    std::vector<uint32_t> inDecoder_;  ///< Frames whose packets were sent and that haven't come out.
    LaneCounters counters_;
};

/// A decoder for streams of which every packet is a key: sends a frame's packets and nothing else.
///
/// Threads      One at a time.
class IntraLane {
public:
    IntraLane(FrameIndex const& index, PacketReader& reader, std::unique_ptr<FrameDecoder> decoder);

    PicturePtr fetch(uint32_t wanted);

    LaneCounters const& counters() const { return counters_; }
    FrameDecoder const& decoder() const { return *decoder_; }

private:
    AvPtr<AVFrame> receive(uint32_t wanted);

    FrameIndex const& index_;
    PacketReader& reader_;
    std::unique_ptr<FrameDecoder> decoder_;
    AvPtr<AVPacket> packet_;
    uint32_t next_ = 0;
    LaneCounters counters_;
};

}  // namespace playfile_ffmpeg
