#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

using Bytes = std::span<uint8_t const>;

/// How the units of an H.264 or HEVC packet are told apart.
struct NalFraming {
    size_t lengthByteCount = 0;  ///< Bytes of the length before each unit; 0: start codes.
    int temporalLayers = 0;      ///< HEVC: layers of the stream; 0 if the configuration states none.

    static NalFraming of(AVCodecID codec, Bytes configuration);
};

/// Type of the first coded slice in a packet, with its reference marks; no slice: type -1.
struct SliceFacts {
    int type = -1;
    int temporalLayer = 0;
    bool isReference = true;
    int pictureCount = 0;  ///< H.264: how many pictures (fields or frames) begin in the packet.
};

SliceFacts firstSlice(AVCodecID codec, NalFraming const& framing, Bytes packet);

/// A picture at which the order of showing counts anew (an IDR picture).
bool beginsCodedSequence(AVCodecID codec, SliceFacts const& slice);

/// A picture that no other one refers to.
bool isDisposable(AVCodecID codec, NalFraming const& framing, SliceFacts const& slice);

/// A packet whose pictures are only there to be referred to (VP8, VP9).
bool isNeverShown(AVCodecID codec, Bytes packet);

}  // namespace playfile_ffmpeg
