#include "plugins/ffmpeg/FirstLook.h"

#include <string>

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace playfile_ffmpeg {
namespace {

/// So many packets may give nothing before the stream counts as one that tells nothing.
constexpr int mostPackets = 16;
constexpr size_t skipMarkByteCount = 4;

int exactBits(AVCodecParameters const& parameters, AVCodecContext const* context) {
    int const bits = av_get_exact_bits_per_sample(parameters.codec_id);
    if (bits > 0 || context == nullptr) {
        return bits;
    }
    return context->bits_per_raw_sample;
}

/// The form that a decoder is known to give before it has given any.
AVSampleFormat statedFormat(AVCodecContext const& context) {
    bool const hasChoice = context.codec->sample_fmts != nullptr;
    return context.sample_fmt == AV_SAMPLE_FMT_NONE && hasChoice ? context.codec->sample_fmts[0]
                                                                 : context.sample_fmt;
}

}  // namespace

FirstLook::FirstLook(AVCodecParameters const& parameters) : parameters_(copyOf(parameters)) {
    std::string error;
    decoder_ = SoundDecoder::open(*parameters_, error);
    form_.codec = avcodec_get_name(parameters_->codec_id);
    form_.isCompressed = !isPcm(parameters_->codec_id);
    form_.channels = parameters_->ch_layout.nb_channels;
    form_.sampleRate = parameters_->sample_rate;
    form_.bitsPerSample = exactBits(*parameters_, decoder_ ? &decoder_->context() : nullptr);
    if (decoder_) {
        form_.form = formOf(statedFormat(decoder_->context()), parameters_->codec_id, form_.bitsPerSample);
    }
    isOver_ = !decoder_;
}

/// What the container says beside a packet only counts for the first ones: a decoder that heard of a cut at
/// the end would make it.
uint32_t FirstLook::take(AVPacket const& packet) {
    uint32_t samples = 0;
    if (!decoder_) {
        return samples;
    }
    if (hasFrame_) {
        decoder_->feed(std::span(packet.data, static_cast<size_t>(packet.size)));
    } else {
        decoder_->feed(&packet);
    }
    while (AVFrame const* const frame = decoder_->receive()) {
        samples += static_cast<uint32_t>(frame->nb_samples);
        if (!hasFrame_) {
            learn(*frame);
        }
    }
    if (packetSamples_ == 0) {
        packetSamples_ = samples;
    }
    isOver_ = packetSamples_ > 0 || ++packetCount_ == mostPackets;
    return samples;
}

void FirstLook::learn(AVFrame const& frame) {
    hasFrame_ = true;
    form_.channels = frame.ch_layout.nb_channels;
    form_.sampleRate = frame.sample_rate;
    form_.bitsPerSample = exactBits(*parameters_, &decoder_->context());
    form_.form =
        formOf(static_cast<AVSampleFormat>(frame.format), parameters_->codec_id, form_.bitsPerSample);
    if (form_.bitsPerSample <= 0) {
        form_.bitsPerSample = static_cast<int>(8 * form_.bytesPerSample());
    }
    AVFrameSideData const* const mark = av_frame_get_side_data(&frame, AV_FRAME_DATA_SKIP_SAMPLES);
    skip_ = mark != nullptr && mark->size >= skipMarkByteCount ? AV_RL32(mark->data) : 0;
}

uint32_t FirstLook::takeAlone(AVPacket const& packet) {
    if (!decoder_) {
        return 0;
    }
    decoder_->restart();
    return take(packet);
}

uint32_t FirstLook::drain() {
    uint32_t samples = 0;
    if (decoder_ && decoder_->isDelayed()) {
        decoder_->feed(nullptr);
        while (AVFrame const* const frame = decoder_->receive()) {
            samples += static_cast<uint32_t>(frame->nb_samples);
        }
    }
    return samples;
}

int FirstLook::profile() const {
    return decoder_ ? decoder_->context().profile : parameters_->profile;
}

int FirstLook::codedBits() const {
    return decoder_ ? decoder_->context().bits_per_coded_sample : 0;
}

}  // namespace playfile_ffmpeg
