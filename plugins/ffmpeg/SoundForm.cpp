#include "plugins/ffmpeg/SoundForm.h"

#include <cstring>

namespace playfile_ffmpeg {
namespace {

constexpr int bitsOfPackedForm = 24;
constexpr uint8_t unsignedSilence = 0x80;

/// Where a channel's samples lie in a frame, and how far they are apart.
struct ChannelView {
    uint8_t const* first;
    size_t step;
};

ChannelView viewOf(AVFrame const& frame, int channel, int64_t from) {
    auto const format = static_cast<AVSampleFormat>(frame.format);
    size_t const bytes = static_cast<size_t>(av_get_bytes_per_sample(format));
    size_t const at = static_cast<size_t>(from);
    if (av_sample_fmt_is_planar(format) != 0) {
        return {frame.extended_data[channel] + at * bytes, bytes};
    }
    size_t const step = bytes * static_cast<size_t>(frame.ch_layout.nb_channels);
    return {frame.extended_data[0] + at * step + static_cast<size_t>(channel) * bytes, step};
}

template <size_t Bytes>
void gather(ChannelView const& view, uint32_t count, uint8_t* to) {
    for (uint32_t i = 0; i < count; ++i) {
        std::memcpy(to + i * Bytes, view.first + i * view.step, Bytes);
    }
}

/// Decoders put 24 bits at the top of 32.
void packTo24(ChannelView const& view, uint32_t count, uint8_t* to) {
    for (uint32_t i = 0; i < count; ++i) {
        std::memcpy(to + size_t{i} * 3, view.first + i * view.step + 1, 3);
    }
}

void convertToDouble(ChannelView const& view, uint32_t count, uint8_t* to) {
    constexpr double fullScale = 9223372036854775808.0;
    for (uint32_t i = 0; i < count; ++i) {
        int64_t sample = 0;
        std::memcpy(&sample, view.first + i * view.step, sizeof sample);
        double const value = static_cast<double>(sample) / fullScale;
        std::memcpy(to + size_t{i} * sizeof value, &value, sizeof value);
    }
}

void copyAsItIs(ChannelView const& view, uint32_t count, size_t bytes, uint8_t* to) {
    if (view.step == bytes) {
        std::memcpy(to, view.first, count * bytes);
        return;
    }
    switch (bytes) {
        case 1:
            return gather<1>(view, count, to);
        case 2:
            return gather<2>(view, count, to);
        case 4:
            return gather<4>(view, count, to);
        default:
            return gather<8>(view, count, to);
    }
}

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

void copyChannel(AVFrame const& frame, int channel, int64_t from, uint32_t count, Aud::eSampleFormat form,
                 uint8_t* to) {
    ChannelView const view = viewOf(frame, channel, from);
    if (form == Aud::sampleS24) {
        packTo24(view, count, to);
    } else if (av_get_packed_sample_fmt(static_cast<AVSampleFormat>(frame.format)) == AV_SAMPLE_FMT_S64) {
        convertToDouble(view, count, to);
    } else {
        copyAsItIs(view, count, Aud::bytesPerSampleOf(form), to);
    }
}

void fillWithSilence(Aud::eSampleFormat form, uint32_t count, uint8_t* to) {
    int const value = form == Aud::sampleU8 ? unsignedSilence : 0;
    std::memset(to, value, size_t{count} * Aud::bytesPerSampleOf(form));
}

}  // namespace playfile_ffmpeg
