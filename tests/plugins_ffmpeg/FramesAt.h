#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "plugins/ffmpeg/FrameIndex.h"

namespace test {

/// A stream of frames that are shown at these times.
inline playfile_ffmpeg::FrameIndex framesAt(std::vector<std::int64_t> const& times) {
    std::vector<playfile_ffmpeg::PacketEntry> packets;
    for (std::int64_t const time : times) {
        playfile_ffmpeg::PacketEntry packet;
        packet.pts = time;
        packet.frame = static_cast<std::int32_t>(packets.size());
        packets.push_back(packet);
    }
    return playfile_ffmpeg::FrameIndex(std::move(packets));
}

}  // namespace test
