#include "plugins/ffmpeg/PcmForm.h"

#include <cstring>
#include <new>
#include <string>

#include "plugins/ffmpeg/SoundDecoder.h"

namespace playfile_ffmpeg {
namespace {

constexpr uint8_t signBit = 0x80;

template <size_t Bytes>
void swapBytes(uint8_t const* from, size_t count, uint8_t* to, uint8_t flip) {
    for (size_t i = 0; i < count; ++i, from += Bytes, to += Bytes) {
        uint8_t sample[Bytes];
        for (size_t byte = 0; byte < Bytes; ++byte) {
            sample[byte] = from[Bytes - 1 - byte];
        }
        sample[Bytes - 1] ^= flip;
        std::memcpy(to, sample, Bytes);
    }
}

void swapBytes(uint8_t const* from, size_t count, size_t bytes, uint8_t* to, uint8_t flip) {
    switch (bytes) {
        case 2:
            return swapBytes<2>(from, count, to, flip);
        case 3:
            return swapBytes<3>(from, count, to, flip);
        case 4:
            return swapBytes<4>(from, count, to, flip);
        default:
            return swapBytes<8>(from, count, to, flip);
    }
}

/// The last byte of a little-endian sample holds its sign.
void flipSigns(uint8_t const* from, size_t count, size_t bytes, uint8_t* to) {
    if (to != from) {
        std::memcpy(to, from, count * bytes);
    }
    for (size_t i = 0; i < count; ++i) {
        to[i * bytes + bytes - 1] ^= signBit;
    }
}

}  // namespace

std::optional<PcmForm> PcmForm::of(AVCodecParameters const& parameters) {
    switch (parameters.codec_id) {
        case AV_CODEC_ID_PCM_U8:
            return PcmForm(eChange::none, 1, Aud::sampleU8);
        case AV_CODEC_ID_PCM_S8:
            return PcmForm(eChange::flipSign, 1, Aud::sampleU8);
        case AV_CODEC_ID_PCM_S16LE:
            return PcmForm(eChange::none, 2, Aud::sampleS16);
        case AV_CODEC_ID_PCM_S16BE:
            return PcmForm(eChange::swapBytes, 2, Aud::sampleS16);
        case AV_CODEC_ID_PCM_U16LE:
            return PcmForm(eChange::flipSign, 2, Aud::sampleS16);
        case AV_CODEC_ID_PCM_U16BE:
            return PcmForm(eChange::swapAndFlip, 2, Aud::sampleS16);
        case AV_CODEC_ID_PCM_S24LE:
            return PcmForm(eChange::none, 3, Aud::sampleS24);
        case AV_CODEC_ID_PCM_S24BE:
            return PcmForm(eChange::swapBytes, 3, Aud::sampleS24);
        case AV_CODEC_ID_PCM_U24LE:
            return PcmForm(eChange::flipSign, 3, Aud::sampleS24);
        case AV_CODEC_ID_PCM_U24BE:
            return PcmForm(eChange::swapAndFlip, 3, Aud::sampleS24);
        case AV_CODEC_ID_PCM_S32LE:
            return PcmForm(eChange::none, 4, Aud::sampleS32);
        case AV_CODEC_ID_PCM_S32BE:
            return PcmForm(eChange::swapBytes, 4, Aud::sampleS32);
        case AV_CODEC_ID_PCM_U32LE:
            return PcmForm(eChange::flipSign, 4, Aud::sampleS32);
        case AV_CODEC_ID_PCM_U32BE:
            return PcmForm(eChange::swapAndFlip, 4, Aud::sampleS32);
        case AV_CODEC_ID_PCM_F32LE:
            return PcmForm(eChange::none, 4, Aud::sampleF32);
        case AV_CODEC_ID_PCM_F32BE:
            return PcmForm(eChange::swapBytes, 4, Aud::sampleF32);
        case AV_CODEC_ID_PCM_F64LE:
            return PcmForm(eChange::none, 8, Aud::sampleF64);
        case AV_CODEC_ID_PCM_F64BE:
            return PcmForm(eChange::swapBytes, 8, Aud::sampleF64);
        case AV_CODEC_ID_PCM_ALAW:
        case AV_CODEC_ID_PCM_MULAW:
        case AV_CODEC_ID_PCM_VIDC: {
            PcmForm form(eChange::expand, 1, Aud::sampleS16);
            return form.makeTable(parameters) ? std::optional(form) : std::nullopt;
        }
        default:
            return std::nullopt;
    }
}

/// Each byte stands for one sample, so one decoded packet of all bytes tells them all.
bool PcmForm::makeTable(AVCodecParameters const& parameters) {
    AvPtr<AVCodecParameters> const mono(avcodec_parameters_alloc());
    if (!mono) {
        throw std::bad_alloc();
    }
    mono->codec_type = AVMEDIA_TYPE_AUDIO;
    mono->codec_id = parameters.codec_id;
    mono->sample_rate = parameters.sample_rate;
    av_channel_layout_default(&mono->ch_layout, 1);
    std::string error;
    std::unique_ptr<SoundDecoder> const decoder = SoundDecoder::open(*mono, error);
    AvPtr<AVPacket> const packet = makePacket();
    if (!decoder || av_new_packet(packet.get(), static_cast<int>(table_.size())) < 0) {
        return false;
    }
    for (size_t byte = 0; byte < table_.size(); ++byte) {
        packet->data[byte] = static_cast<uint8_t>(byte);
    }
    AVFrame const* const frame = decoder->feed(packet.get()) ? decoder->receive() : nullptr;
    bool const isWhole =
        frame && frame->format == AV_SAMPLE_FMT_S16 && frame->nb_samples == static_cast<int>(table_.size());
    if (isWhole) {
        std::memcpy(table_.data(), frame->data[0], sizeof table_);
    }
    return isWhole;
}

void PcmForm::convert(uint8_t const* from, size_t count, uint8_t* to) const {
    switch (change_) {
        case eChange::none:
            if (to != from) {
                std::memcpy(to, from, count * storedByteCount_);
            }
            return;
        case eChange::flipSign:
            return flipSigns(from, count, storedByteCount_, to);
        case eChange::swapBytes:
            return swapBytes(from, count, storedByteCount_, to, 0);
        case eChange::swapAndFlip:
            return swapBytes(from, count, storedByteCount_, to, signBit);
        case eChange::expand:
            for (size_t i = 0; i < count; ++i) {
                std::memcpy(to + i * sizeof(int16_t), &table_[from[i]], sizeof(int16_t));
            }
            return;
    }
}

}  // namespace playfile_ffmpeg
