#include "plugins/ffmpeg/FFmpegAudioDecoder.h"

#include <exception>
#include <string>
#include <utility>

#include "plugins/ffmpeg/SoundConfiguration.h"
#include "toolkit/services/Log.h"

namespace playfile_ffmpeg {

FFmpegAudioDecoder::FFmpegAudioDecoder(std::unique_ptr<BundleDecoder> decoder)
    : decoder_(std::move(decoder)) {
    metadata = metadataOf(decoder_->form());
    status = ready;
}

std::uint32_t FFmpegAudioDecoder::decodeAudioStream(Aud::StreamBufferList& output, unsigned int,
                                                    Ox::Ptr<ByteBufferImpl>& packet, unsigned int& decoded,
                                                    unsigned int, unsigned int) {
    try {
        auto const* const bytes = static_cast<uint8_t const*>(packet->getBuffer());
        if (!readBundle({bytes, packet->getUsed()}, bundle_)) {
            return needsMore;
        }
        decoder_->take(bundle_);
        int64_t sampleCount = 0;
        for (SampleRun const& run : bundle_.runs) {
            sampleCount += run.count;
        }
        append(static_cast<std::uint32_t>(sampleCount), output);
        decoded += static_cast<std::uint32_t>(sampleCount);
        return good;
    } catch (std::exception const& exception) {
        Log("FFmpeg: %s can't be decoded: %s\n", metadata.codec.c_str(), exception.what());
        return needsMore;
    }
}

void FFmpegAudioDecoder::append(std::uint32_t sampleCount, Aud::StreamBufferList& output) const {
    std::uint32_t const byteCount = sampleCount * decoder_->form().bytesPerSample();
    int channel = 0;
    for (Aud::StreamBuffer& buffer : output) {
        std::uint32_t const used = buffer.getUsed();
        buffer.setUsed(used + byteCount);
        decoder_->write(bundle_, channel++, static_cast<uint8_t*>(buffer.getBuffer()) + used);
    }
}

void FFmpegAudioDecoder::resetToStart() {
    decoder_->reset();
}

bool FFmpegAudioDecoderInfo::canDecode(Aud::Metadata const&, Ox::Ptr<iMemHolder> const& configuration) {
    return static_cast<bool>(Ox::dynamicPtrCast<SoundConfiguration>(configuration));
}

Ox::Ptr<Ox::AudioCodecInstance> FFmpegAudioDecoderInfo::makeInstance(
    Aud::Metadata const&, Ox::Ptr<iMemHolder> const& configuration) {
    try {
        auto const known = Ox::dynamicPtrCast<SoundConfiguration>(configuration);
        std::string error = "is no stream that was opened here";
        std::unique_ptr<SoundDecoder> decoder =
            known ? SoundDecoder::open(known->parameters(), error) : nullptr;
        if (!decoder) {
            Log("FFmpeg: %s\n", error.c_str());
            return {};
        }
        return Ox::makePtr<FFmpegAudioDecoder>(
            std::make_unique<BundleDecoder>(std::move(decoder), known->form()));
    } catch (std::exception const& exception) {
        Log("FFmpeg: no decoder of sound: %s\n", exception.what());
        return {};
    }
}

Aud::Metadata metadataOf(SoundForm const& form) {
    Aud::Metadata metadata;
    metadata.channels = static_cast<std::uint32_t>(form.channels);
    metadata.sampleFormat = form.form;
    metadata.bytesPerSample = form.bytesPerSample();
    metadata.bitsPerSample = static_cast<std::uint32_t>(form.bitsPerSample);
    metadata.samplesPerCodecFrame = form.frameSamples;
    metadata.sampleRate = form.sampleRate;
    metadata.codec = LightweightString<char>(form.codec);
    metadata.isCompressed = form.isCompressed;
    return metadata;
}

}  // namespace playfile_ffmpeg
