#include "plugins/ffmpeg/PacketLengths.h"

#include <algorithm>

#include "plugins/ffmpeg/SoundDecoder.h"

namespace playfile_ffmpeg {

eLengthRule lengthRuleOf(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_AAC:
        case AV_CODEC_ID_AAC_LATM:
        case AV_CODEC_ID_MP1:
        case AV_CODEC_ID_MP2:
        case AV_CODEC_ID_MP3:
        case AV_CODEC_ID_AC3:
        case AV_CODEC_ID_EAC3:
        case AV_CODEC_ID_MLP:
        case AV_CODEC_ID_TRUEHD:
        case AV_CODEC_ID_AMR_NB:
        case AV_CODEC_ID_AMR_WB:
        case AV_CODEC_ID_GSM:
        case AV_CODEC_ID_GSM_MS:
        case AV_CODEC_ID_RA_144:
        case AV_CODEC_ID_SBC:
        case AV_CODEC_ID_SPEEX:
            return eLengthRule::fixed;
        case AV_CODEC_ID_ALAC:
            return eLengthRule::fixedButLast;
        case AV_CODEC_ID_FLAC:
        case AV_CODEC_ID_OPUS:
        case AV_CODEC_ID_VORBIS:
        case AV_CODEC_ID_DTS:
            return eLengthRule::byHeader;
        case AV_CODEC_ID_ADPCM_G722:
        case AV_CODEC_ID_ADPCM_G726:
        case AV_CODEC_ID_ADPCM_G726LE:
        case AV_CODEC_ID_NELLYMOSER:
            return eLengthRule::bySize;
        default:
            return eLengthRule::byDecoding;
    }
}

PacketLengths::PacketLengths(AVCodecParameters const& parameters)
    : parameters_(copyOf(parameters)), rule_(lengthRuleOf(parameters.codec_id)) {
    if (rule_ != eLengthRule::byHeader) {
        return;
    }
    context_.reset(avcodec_alloc_context3(nullptr));
    if (context_ && avcodec_parameters_to_context(context_.get(), parameters_.get()) >= 0) {
        parser_.reset(av_parser_init(parameters_->codec_id));
    }
    if (parser_) {
        parser_->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    }
}

uint32_t PacketLengths::of(AVPacket const& packet) {
    if (rule_ == eLengthRule::bySize) {
        return static_cast<uint32_t>(
            std::max(av_get_audio_frame_duration2(parameters_.get(), packet.size), 0));
    }
    return parser_ && packet.size > 0 ? byHeader(packet) : 0;
}

/// A Vorbis decoder gives what two packets have in common, and so nothing for the first one.
uint32_t PacketLengths::byHeader(AVPacket const& packet) {
    uint8_t* data = nullptr;
    int byteCount = 0;
    parser_->duration = 0;
    av_parser_parse2(parser_.get(), context_.get(), &data, &byteCount, packet.data, packet.size, packet.pts,
                     packet.dts, packet.pos);
    bool const givesNothing = isFirst_ && parameters_->codec_id == AV_CODEC_ID_VORBIS;
    isFirst_ = false;
    return givesNothing ? 0 : static_cast<uint32_t>(std::max(parser_->duration, 0));
}

}  // namespace playfile_ffmpeg
