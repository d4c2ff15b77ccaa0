#include "plugins/ffmpeg/SoundForm.h"

#include <cstring>

namespace playfile_ffmpeg {
namespace {

constexpr int bitsOfPackedForm = 24;
constexpr uint8_t unsignedSilence = 0x80;

}  // namespace

bool isPcm(AVCodecID codec) {
    return (codec >= AV_CODEC_ID_FIRST_AUDIO && codec < AV_CODEC_ID_ADPCM_IMA_QT) ||
           codec == AV_CODEC_ID_S302M;
}

Aud::eSampleFormat formOf(AVSampleFormat decoded, AVCodecID codec, int rawBits) {
    switch (av_get_packed_sample_fmt(decoded)) {
        case AV_SAMPLE_FMT_U8:
            return Aud::sampleU8;
        case AV_SAMPLE_FMT_S16:
            return Aud::sampleS16;
        case AV_SAMPLE_FMT_S32:
            return isPcm(codec) && rawBits > 0 && rawBits <= bitsOfPackedForm ? Aud::sampleS24
                                                                              : Aud::sampleS32;
        case AV_SAMPLE_FMT_FLT:
            return Aud::sampleF32;
        case AV_SAMPLE_FMT_DBL:
        case AV_SAMPLE_FMT_S64:
            return Aud::sampleF64;
        default:
            return Aud::sampleUnknown;
    }
}

void fillWithSilence(Aud::eSampleFormat form, uint32_t count, uint8_t* to) {
    int const value = form == Aud::sampleU8 ? unsignedSilence : 0;
    std::memset(to, value, size_t{count} * Aud::bytesPerSampleOf(form));
}

}  // namespace playfile_ffmpeg
