#pragma once

#include <cstdint>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// One coded packet of the video stream.
struct PacketEntry {
    static constexpr int32_t notShown = -1;

    int64_t position = -1;         ///< Byte offset in the file; of what, depends on the container.
    int64_t pts = AV_NOPTS_VALUE;  ///< Time of showing, in the stream's time base.
    uint32_t byteCount = 0;
    uint32_t fingerprint = 0;  ///< Of the last bytes, if the packet was read; else 0.
    int32_t frame = notShown;  ///< Number of the shown frame that begins with this packet.
    bool isKey = false;
};

/// Which packet becomes which shown frame, and where decoding may begin.
///
/// Packets stand in decoding order, frames in display order. A packet that shows nothing (cut off by
/// an edit list, hidden reference, second field of a frame) has no frame number.
///
/// Threads      Constant once the file is open.
/// Units        Times in the stream's time base.
class FrameIndex {
public:
    FrameIndex() = default;

    /// Takes packets whose `frame` numbers run from 0 without holes.
    explicit FrameIndex(std::vector<PacketEntry> packets);

    uint32_t frameCount() const { return static_cast<uint32_t>(packetOfFrame_.size()); }
    uint32_t packetCount() const { return static_cast<uint32_t>(packets_.size()); }
    PacketEntry const& packet(uint32_t index) const { return packets_[index]; }

    /// The packet that frame `frame` begins with. Requires frame < frameCount().
    uint32_t packetOf(uint32_t frame) const { return packetOfFrame_[frame]; }
    int64_t ptsOf(uint32_t frame) const { return packets_[packetOfFrame_[frame]].pts; }

    /// The last packet from which on frame `frame` decodes exactly: a key packet that is shown no
    /// later than the frame. 0 if there is none.
    uint32_t startPacketFor(uint32_t frame) const;

    /// Number of the first key's frame; 0 if there is no key.
    uint32_t firstKeyFrame() const {
        return keys_.empty() ? 0 : static_cast<uint32_t>(keys_.front().shownAt);
    }

    /// The key packet before `packet`, which is one itself; 0 if there is none.
    uint32_t keyBefore(uint32_t packet) const;

    /// One past the last packet that belongs to the shown frame that begins with `packet`.
    uint32_t endOfFrameAt(uint32_t packet) const;

    /// How many packets at most a decoder holds back to bring the frames into display order.
    uint32_t reorderDepth() const { return reorderDepth_; }
    bool isEveryPacketAKey() const { return isEveryPacketAKey_; }

    /// Decoding no longer begins at this packet.
    void takeKeyMark(uint32_t packet);

    /// Takes the frames before `frame` out of the numbering: they are coded, but nothing shows them.
    void hideFramesBefore(uint32_t frame);

private:
    struct KeyPacket {
        uint32_t packet;
        int64_t shownAt;  ///< Frame number of the key or, if it isn't shown, of what follows it.
    };

    void rebuild();
    void collectKeys();
    void measureReordering();

    std::vector<PacketEntry> packets_;
    std::vector<uint32_t> packetOfFrame_;
    std::vector<KeyPacket> keys_;
    uint32_t reorderDepth_ = 0;
    bool isEveryPacketAKey_ = true;
};

}  // namespace playfile_ffmpeg
