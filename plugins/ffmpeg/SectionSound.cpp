#include "plugins/ffmpeg/SectionSound.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <future>
#include <new>

#include "audio/AudioReadRequest.h"
#include "toolkit/sound/SampleFormat.h"

namespace playfile_ffmpeg {
namespace {

/// As many as make a block for which every reader is quick.
constexpr std::uint64_t blockSamples = 16384;
constexpr std::chrono::milliseconds lookRound{100};

/// Waits for the end of one read.
class SampleWaiter final : public ReadRequestIssuer {
public:
    ~SampleWaiter() override { withdraw(); }
    void requestCompleted(Ox::Ptr<iObject>&, RequestStatus) override { ended_.set_value(); }

    [[nodiscard]] bool waitFor(AudioReadRequest const& request) {
        std::future<void> const told = ended_.get_future();
        while (request.getRequestStatus() == requestBuilt &&
               told.wait_for(lookRound) != std::future_status::ready) {
        }
        return request.getRequestStatus() == requestComplete;
    }

private:
    std::promise<void> ended_;
};

AVCodecID codecOf(std::uint32_t form) {
    switch (form) {
        case Aud::sampleU8:
            return AV_CODEC_ID_PCM_U8;
        case Aud::sampleS16:
            return AV_CODEC_ID_PCM_S16LE;
        case Aud::sampleS24:
            return AV_CODEC_ID_PCM_S24LE;
        case Aud::sampleS32:
            return AV_CODEC_ID_PCM_S32LE;
        case Aud::sampleF32:
            return AV_CODEC_ID_PCM_F32LE;
        case Aud::sampleF64:
            return AV_CODEC_ID_PCM_F64LE;
        default:
            return AV_CODEC_ID_NONE;
    }
}

}  // namespace

SectionSound::SectionSound(Ox::Ptr<FileReadInstance> const& file, SoundPart const& part)
    : file_(file),
      part_(part),
      format_(file->metadata->audioStreams[part.stream]),
      channels_(part.channelCount) {}

bool SectionSound::canWrite() const {
    return codecOf(format_.sampleFormat) != AV_CODEC_ID_NONE && timeBase().den > 0;
}

AVRational SectionSound::timeBase() const {
    return {1, static_cast<int>(format_.sampleRate)};
}

AvPtr<AVCodecParameters> SectionSound::parameters() const {
    AvPtr<AVCodecParameters> made(avcodec_parameters_alloc());
    if (!made) {
        throw std::bad_alloc();
    }
    auto const bytes = static_cast<int>(Aud::bytesPerSampleOf(format_.sampleFormat));
    auto const channels = static_cast<int>(part_.channelCount);
    made->codec_type = AVMEDIA_TYPE_AUDIO;
    made->codec_id = codecOf(format_.sampleFormat);
    made->sample_rate = timeBase().den;
    made->bits_per_coded_sample = bytes * 8;
    made->block_align = bytes * channels;
    made->bit_rate = std::int64_t{made->block_align} * 8 * made->sample_rate;
    av_channel_layout_default(&made->ch_layout, channels);
    return made;
}

/// A block of a stream that is decoded by frames ends with one of them.
std::uint32_t SectionSound::nextCount() const {
    std::uint64_t const first = part_.first + taken_;
    std::uint64_t count = blockSamples;
    if (format_.isCompressedFormat() && format_.samplesPerCodecFrame > 1) {
        std::uint64_t const frame = format_.samplesPerCodecFrame;
        count = (first + blockSamples + frame - 1) / frame * frame - first;
    }
    return static_cast<std::uint32_t>(std::min(count, part_.end - first));
}

bool SectionSound::takeNext(Packets& packets, std::string& error) {
    std::uint32_t const wanted = nextCount();
    if (!readChannels(wanted, error)) {
        return false;
    }
    AvPtr<AVPacket> packet = interleaved();
    hasEnded_ = packet->duration < wanted;
    packet->pts = static_cast<std::int64_t>(taken_);
    packet->dts = packet->pts;
    taken_ += static_cast<std::uint64_t>(packet->duration);
    if (packet->duration > 0) {
        packets.push_back(std::move(packet));
    }
    return true;
}

/// All channels are asked for before the first is waited for, so that they cost one read.
bool SectionSound::readChannels(std::uint32_t count, std::string& error) {
    std::uint64_t const first = part_.first + taken_;
    std::vector<SampleWaiter> waiters(part_.channelCount);
    std::vector<Ox::Ptr<AudioReadRequest>> requests;
    for (std::uint32_t channel = 0; channel < part_.channelCount; ++channel) {
        AudioRequest wanted;
        wanted.stream = part_.stream;
        wanted.channelInStream = part_.firstChannel + channel;
        wanted.channel = part_.fileChannel + channel;
        wanted.startSample = first;
        wanted.numSamples = count;
        requests.push_back(Ox::makePtr<AudioReadRequest>(file_, wanted, count, waiters[channel].getProxy()));
        if (file_->queueReadRequest(requests.back()) != oxSuccess) {
            requests.back()->setRequestStatus(requestFailed);
        }
    }
    bool isGood = true;
    std::size_t const asked = std::size_t{count} * format_.bytesPerSample;
    for (std::uint32_t channel = 0; channel < part_.channelCount; ++channel) {
        AudioReadRequest const& request = *requests[channel];
        bool const isRead = waiters[channel].waitFor(request);
        auto const* const bytes = static_cast<std::uint8_t const*>(request.getBuffer());
        std::size_t const used =
            isRead && bytes != nullptr ? std::min<std::size_t>(request.getUsed(), asked) : 0;
        channels_[channel].assign(bytes, bytes + used);
        isGood = isGood && isRead;
    }
    if (!isGood) {
        error = "sample " + std::to_string(first) + " of stream " + std::to_string(part_.stream) +
                " can't be read; extract a section before or behind it";
    }
    return isGood;
}

AvPtr<AVPacket> SectionSound::interleaved() const {
    std::size_t const bytes = format_.bytesPerSample;
    std::size_t most = channels_.front().size();
    for (std::vector<std::uint8_t> const& channel : channels_) {
        most = std::min(most, channel.size());
    }
    std::size_t const count = most / bytes;
    AvPtr<AVPacket> packet = makePacket();
    if (av_new_packet(packet.get(), static_cast<int>(count * bytes * channels_.size())) < 0) {
        throw std::bad_alloc();
    }
    std::uint8_t* to = packet->data;
    for (std::size_t sample = 0; sample < count; ++sample) {
        for (std::vector<std::uint8_t> const& channel : channels_) {
            std::memcpy(to, channel.data() + sample * bytes, bytes);
            to += bytes;
        }
    }
    packet->duration = static_cast<std::int64_t>(count);
    packet->flags = AV_PKT_FLAG_KEY;
    return packet;
}

}  // namespace playfile_ffmpeg
