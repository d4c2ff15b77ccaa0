#pragma once

#include <vector>

#include "plugins/ffmpeg/BitstreamFacts.h"
#include "plugins/ffmpeg/OpenContainer.h"
#include "plugins/ffmpeg/PacketFacts.h"

namespace playfile_ffmpeg {

/// Looks into the packets of a stream, in decoding order, without decoding them.
class PacketInspector {
public:
    explicit PacketInspector(AVCodecParameters const& parameters);

    PacketFacts inspect(AVPacket const& packet);

    /// True if the packet that was inspected last holds one field of a frame, not both.
    bool lastIsSingleField() const { return lastIsSingleField_; }

private:
    void parse(AVPacket const& packet, PacketFacts& facts);
    void pairFields(SliceFacts const& slice, PacketFacts& facts);

    AVCodecID codec_;
    NalFraming framing_;
    AvPtr<AVCodecContext> context_;
    AvPtr<AVCodecParserContext> parser_;
    AVPictureStructure openField_ = AV_PICTURE_STRUCTURE_UNKNOWN;
    bool lastIsSingleField_ = false;
};

/// Reads all packets of the video stream once. What libavformat can't read ends the list.
std::vector<PacketFacts> scanPackets(OpenContainer& container);

/// A number that tells packets of the same length apart.
uint32_t fingerprintOf(AVPacket const& packet);

}  // namespace playfile_ffmpeg
