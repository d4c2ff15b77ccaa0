#include "tests/plugins_ffmpeg/SoundParts.h"

#include <algorithm>
#include <cstring>

namespace test {

using namespace playfile_ffmpeg;

AvPtr<AVCodecParameters> parametersOf(AVCodecID codec, int channels, int sampleRate) {
    AvPtr<AVCodecParameters> parameters(avcodec_parameters_alloc());
    parameters->codec_type = AVMEDIA_TYPE_AUDIO;
    parameters->codec_id = codec;
    parameters->sample_rate = sampleRate;
    parameters->bits_per_coded_sample = av_get_exact_bits_per_sample(codec);
    av_channel_layout_default(&parameters->ch_layout, channels);
    return parameters;
}

SoundForm shortForm(int channels) {
    SoundForm form;
    form.codec = "pcm_s16le";
    form.form = Aud::sampleS16;
    form.channels = channels;
    form.sampleRate = 48000;
    form.bitsPerSample = 16;
    form.frameSamples = 100;
    return form;
}

std::string rising(int first, int count) {
    std::string bytes;
    for (int sample = first; sample < first + count; ++sample) {
        bytes += static_cast<char>(sample & 0xff);
        bytes += static_cast<char>(sample >> 8 & 0xff);
    }
    return bytes;
}

std::vector<int16_t> shortsOf(std::vector<uint8_t> const& bytes) {
    std::vector<int16_t> samples(bytes.size() / sizeof(int16_t));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(int16_t));
    return samples;
}

AvPtr<AVPacket> packetOf(std::string const& bytes) {
    AvPtr<AVPacket> packet = makePacket();
    if (av_new_packet(packet.get(), static_cast<int>(bytes.size())) >= 0) {
        std::copy(bytes.begin(), bytes.end(), packet->data);
    }
    return packet;
}

}  // namespace test
