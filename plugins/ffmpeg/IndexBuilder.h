#pragma once

#include <memory>
#include <vector>

#include "plugins/ffmpeg/ByteFile.h"
#include "plugins/ffmpeg/OpenContainer.h"
#include "plugins/ffmpeg/PacketFacts.h"

namespace playfile_ffmpeg {

/// The packets of a video stream and how they can be read.
struct BuiltIndex {
    std::vector<PacketFacts> packets;
    bool timesAreTrue = true;  ///< The container keeps times of showing.
    bool isScanned = false;    ///< All packets were read to know them.
    bool liesInFile = false;   ///< The packets' positions and sizes point at the decoder's bytes.
};

/// From the container's index where it has one, else from one scan of the packets.
///
/// Reads nothing of the media data of a MOV, MP4, AVI or intra-coded MXF file whose index is whole.
BuiltIndex buildIndex(OpenContainer& container, ByteFile const& file);

}  // namespace playfile_ffmpeg
