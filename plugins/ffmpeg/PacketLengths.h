#pragma once

#include <cstdint>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// How the number of samples that a packet gives can be known.
enum class eLengthRule {
    fixed,         ///< All packets give as many as the first one.
    fixedButLast,  ///< The same, but the last one may give fewer.
    byHeader,      ///< Each packet's first bytes tell.
    bySize,        ///< It follows from the packet's size.
    byDecoding,    ///< Nothing tells but decoding it.
};

eLengthRule lengthRuleOf(AVCodecID codec);

/// Tells how many samples each packet of a stream gives from its bytes, for `byHeader` and `bySize`.
class PacketLengths {
public:
    explicit PacketLengths(AVCodecParameters const& parameters);

    /// Packets come in the stream's order. 0 if it can't be told.
    uint32_t of(AVPacket const& packet);

private:
    uint32_t byHeader(AVPacket const& packet);

    AvPtr<AVCodecParameters> const parameters_;
    eLengthRule const rule_;
    AvPtr<AVCodecContext> context_;
    AvPtr<AVCodecParserContext> parser_;
    bool isFirst_ = true;
};

}  // namespace playfile_ffmpeg
