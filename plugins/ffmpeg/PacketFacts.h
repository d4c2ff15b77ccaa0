#pragma once

#include <cstdint>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/FrameIndex.h"

namespace playfile_ffmpeg {

/// What a container or one scan of its packets tells of a packet.
struct PacketFacts {
    enum class ePicture : uint8_t { unknown, reference, bidirectional };

    int64_t position = -1;
    int64_t pts = AV_NOPTS_VALUE;
    int64_t dts = AV_NOPTS_VALUE;
    uint32_t byteCount = 0;
    uint32_t fingerprint = 0;
    int32_t pictureOrder = 0;  ///< Order of showing within the coded sequence.
    bool isKey = false;
    bool isCutOff = false;        ///< Outside the edit list: decoded, not shown.
    bool isHidden = false;        ///< Coded to be referred to, never shown.
    bool isSecondField = false;   ///< Completes the frame that an earlier packet began.
    bool beginsSequence = false;  ///< Picture order counts anew from here on.
    bool hasPictureOrder = false;
    ePicture picture = ePicture::unknown;
};

/// Whether frames of this coding can be shown in another order than they are coded in.
bool codecReorders(AVCodecID codec);

/// Whether each frame of this coding stands for itself.
bool isIntraCoded(AVCodecID codec);

/// Gives each shown packet its frame number: by time of showing; where times are missing or the
/// container keeps none (`timesAreTrue` false), by the order that the pictures themselves state.
std::vector<PacketEntry> numberFrames(std::vector<PacketFacts> const& facts, AVCodecID codec,
                                      bool timesAreTrue);

}  // namespace playfile_ffmpeg
