#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "plugins/ffmpeg/BitstreamFacts.h"
#include "plugins/ffmpeg/FrameDecoder.h"
#include "plugins/ffmpeg/FrameIndex.h"
#include "plugins/ffmpeg/PacketReader.h"
#include "plugins/ffmpeg/PictureStore.h"
#include "plugins/ffmpeg/ReadPattern.h"

namespace playfile_ffmpeg {

/// A decoder that walks along the packets from a key to the wanted frame, and on from there.
///
/// Threads      One at a time.
class DecodeLane {
public:
    DecodeLane(FrameIndex& index, PacketReader& reader, std::unique_ptr<FrameDecoder> decoder,
               NalFraming framing);

    /// Frame `wanted`; empty if it can't be decoded. What comes out on the way goes to the store if it is to
    /// be kept. Pictures before `keep.wantedFrom` that no other needs aren't decoded; unless there is damage
    /// on the way, since what a decoder makes of a damaged picture depends on all that went before.
    PicturePtr fetch(uint32_t wanted, Keep const& keep, PictureStore& store);

    /// The first picture that decoding from the first packet gives out, with its frame number.
    PicturePtr fetchFirst(uint32_t& frame);

    /// Frame 0, decoded from its own packets only, which are kept for the walk that follows. Empty if
    /// they aren't enough or are damaged; requires that frame 0 begins with packet 0 and that this is a key.
    /// A decoder of one picture does for this, and is opened anew when more are wanted.
    PicturePtr fetchFirstAlone();

    FrameDecoder const& decoder() const { return *decoder_; }

private:
    struct Walk {
        uint32_t wanted;
        Keep keep;
        bool endsThere = false;  ///< What follows isn't sent; the decoder is drained instead.
    };
    PicturePtr walkFrom(uint32_t packet, Walk const& goal, PictureStore& store);
    bool readPacket(uint32_t number);
    bool leadsTo(uint32_t wanted) const;
    void restartAt(uint32_t packet);
    PicturePtr walk(Walk const& goal, PictureStore& store);
    uint32_t endOf(Walk const& goal) const;
    PicturePtr sift(AvPtr<AVFrame> frame, uint32_t number, Walk const& goal, PictureStore& store,
                    bool& hasPassed);
    bool isFalseStart(AVFrame const& frame, uint32_t number);
    void feedNext(Walk const& goal);
    bool isDroppable(PacketEntry const& entry, Walk const& goal);
    bool isCertain(uint32_t frame) const { return index_.startPacketFor(frame) >= startedAt_; }
    PicturePtr finish(AvPtr<AVFrame> frame, uint32_t number) const;

    FrameIndex& index_;
    PacketReader& reader_;
    std::unique_ptr<FrameDecoder> decoder_;
    AVCodecID codec_;
    NalFraming framing_;
    AvPtr<AVPacket> packet_;
    bool isRunning_ = false;
    bool isDrained_ = false;  ///< Gives out what it holds and takes nothing more.
    bool mayDrop_ = true;     ///< False from the first damage on, see fetch().
    bool isDropping_ = false;
    bool hasDropped_ = false;  ///< Since the start.
    uint64_t errorsAtStart_ = 0;
    bool hasFalseStart_ = false;  ///< The packet it started at turned out not to be a key.
    bool hasSeenStart_ = false;   ///< The picture of the packet it started at has come out.
    uint32_t startedAt_ = 0;
    uint32_t next_ = 0;  ///< The packet to be sent next.
    uint32_t lastFetched_ = 0;
    uint32_t jumpsInARow_ = 0;
    std::vector<AvPtr<AVPacket>> firstPackets_;  ///< Those of frame 0, if it was fetched alone.
    std::vector<uint32_t> inDecoder_;  ///< Frames whose packets were sent and that haven't come out.
};

/// A decoder for streams of which every packet is a key: sends a frame's packets and nothing else.
///
/// Threads      One at a time.
class IntraLane {
public:
    IntraLane(FrameIndex const& index, PacketReader& reader, std::unique_ptr<FrameDecoder> decoder);

    PicturePtr fetch(uint32_t wanted);

    FrameDecoder const& decoder() const { return *decoder_; }

private:
    AvPtr<AVFrame> receive(uint32_t wanted);

    FrameIndex const& index_;
    PacketReader& reader_;
    std::unique_ptr<FrameDecoder> decoder_;
    AvPtr<AVPacket> packet_;
};

}  // namespace playfile_ffmpeg
