#include "plugins/ffmpeg/DecodedSound.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace playfile_ffmpeg {
namespace {

/// Where a channel's samples lie in a frame, and how far they are apart.
struct ChannelView {
    uint8_t const* first;
    size_t step;
};

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

DecodedSound::DecodedSound(AVFrame& frame)
    : sampleCount_(frame.nb_samples),
      channels_(frame.ch_layout.nb_channels),
      format_(static_cast<AVSampleFormat>(frame.format)) {
    std::copy_n(frame.data, planes_.size(), planes_.begin());
    bool const isOnePiece =
        frame.buf[0] != nullptr && frame.buf[1] == nullptr && frame.extended_data == frame.data;
    if (isOnePiece) {
        memory_.reset(std::exchange(frame.buf[0], nullptr));
    } else {
        frame_ = makeFrame();
        av_frame_move_ref(frame_.get(), &frame);
    }
}

void DecodedSound::copyChannel(int channel, int64_t first, uint32_t count, Aud::eSampleFormat form,
                               uint8_t* to) const {
    auto const number = static_cast<size_t>(channel);
    auto const at = static_cast<size_t>(first - firstSample_);
    size_t const bytes = static_cast<size_t>(av_get_bytes_per_sample(format_));
    size_t const step = bytes * static_cast<size_t>(channels_);
    ChannelView const view = av_sample_fmt_is_planar(format_) != 0
                                 ? ChannelView{plane(number) + at * bytes, bytes}
                                 : ChannelView{plane(0) + at * step + number * bytes, step};
    if (form == Aud::sampleS24) {
        packTo24(view, count, to);
    } else if (av_get_packed_sample_fmt(format_) == AV_SAMPLE_FMT_S64) {
        convertToDouble(view, count, to);
    } else {
        copyAsItIs(view, count, Aud::bytesPerSampleOf(form), to);
    }
}

}  // namespace playfile_ffmpeg
