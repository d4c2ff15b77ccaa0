#include "bench/sound/PlainSound.h"

#include <algorithm>
#include <cstring>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

namespace bench {
namespace {

/// Packets that a decoder gets before a place, so that what it gives there is right.
constexpr int packetsEarly = 2;
constexpr int usualFrameSize = 1024;

/// One open stream of sound, decoded into a buffer a channel.
class SoundLoop {
public:
    bool open(std::string const& path) {
        AVFormatContext* format = nullptr;
        if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) {
            return false;
        }
        format_.reset(format);
        AVCodec const* codec = nullptr;
        if (avformat_find_stream_info(format, nullptr) < 0) {
            return false;
        }
        stream_ = av_find_best_stream(format, AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
        if (stream_ < 0) {
            return false;
        }
        decoder_.reset(avcodec_alloc_context3(codec));
        decoder_->pkt_timebase = stream().time_base;
        return avcodec_parameters_to_context(decoder_.get(), stream().codecpar) >= 0 &&
               avcodec_open2(decoder_.get(), codec, nullptr) >= 0;
    }

    /// True if the whole block has come. What the end of the stream lacks counts as there: nobody promised
    /// how many samples the loop finds.
    bool read(SoundBlock const& block) {
        auto const first = static_cast<std::int64_t>(block.first);
        if (first != next_ && !goTo(first)) {
            return false;
        }
        channels_.resize(static_cast<std::size_t>(decoder_->ch_layout.nb_channels));
        for (auto& channel : channels_) {
            channel.clear();
        }
        std::int64_t const end = first + block.count;
        while (next_ < end && (offset_ < frame_->nb_samples || decodeNext())) {
            take(first, end);
        }
        return true;
    }

private:
    struct Deleter {
        void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
        void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
        void operator()(AVPacket* packet) const { av_packet_free(&packet); }
        void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    };

    [[nodiscard]] AVStream& stream() const { return *format_->streams[stream_]; }
    [[nodiscard]] AVRational sampleTime() const { return {1, decoder_->sample_rate}; }
    [[nodiscard]] std::int64_t startTime() const {
        return stream().start_time == AV_NOPTS_VALUE ? 0 : stream().start_time;
    }

    /// Goes where the decoder stands right when it comes to the sample.
    bool goTo(std::int64_t sample) {
        int const frameSize = decoder_->frame_size > 0 ? decoder_->frame_size : usualFrameSize;
        std::int64_t const early = std::max<std::int64_t>(0, sample - packetsEarly * frameSize);
        std::int64_t const time = startTime() + av_rescale_q(early, sampleTime(), stream().time_base);
        if (av_seek_frame(format_.get(), stream_, time, AVSEEK_FLAG_BACKWARD) < 0) {
            return false;
        }
        avcodec_flush_buffers(decoder_.get());
        av_frame_unref(frame_.get());
        offset_ = 0;
        next_ = 0;
        hasPlace_ = false;
        return true;
    }

    bool decodeNext() {
        for (;;) {
            int const code = avcodec_receive_frame(decoder_.get(), frame_.get());
            if (code >= 0) {
                break;
            }
            if (code == AVERROR_EOF) {
                return false;
            }
            feed();
        }
        offset_ = 0;
        if (!hasPlace_) {
            next_ =
                av_rescale_q(frame_->best_effort_timestamp - startTime(), stream().time_base, sampleTime());
            hasPlace_ = true;
        }
        return true;
    }

    /// Sends the next packet of the stream, or word of its end.
    void feed() {
        while (av_read_frame(format_.get(), packet_.get()) >= 0) {
            bool const isOurs = packet_->stream_index == stream_;
            if (isOurs) {
                avcodec_send_packet(decoder_.get(), packet_.get());
            }
            av_packet_unref(packet_.get());
            if (isOurs) {
                return;
            }
        }
        avcodec_send_packet(decoder_.get(), nullptr);
    }

    /// Takes what the frame has of the samples from `first` to before `end`.
    void take(std::int64_t first, std::int64_t end) {
        advance(std::clamp<std::int64_t>(first - next_, 0, frame_->nb_samples - offset_));
        std::int64_t const count = std::clamp<std::int64_t>(end - next_, 0, frame_->nb_samples - offset_);
        for (std::size_t channel = 0; channel < channels_.size(); ++channel) {
            copyChannel(channel, static_cast<std::size_t>(count));
        }
        advance(count);
    }

    void copyChannel(std::size_t channel, std::size_t count) {
        auto const format = static_cast<AVSampleFormat>(frame_->format);
        auto const bytes = static_cast<std::size_t>(av_get_bytes_per_sample(format));
        bool const isPlanar = av_sample_fmt_is_planar(format) != 0;
        std::size_t const step = isPlanar ? bytes : bytes * channels_.size();
        std::uint8_t const* const from = frame_->extended_data[isPlanar ? channel : 0] +
                                         static_cast<std::size_t>(offset_) * step +
                                         (isPlanar ? 0 : channel * bytes);
        std::vector<std::uint8_t>& to = channels_[channel];
        std::size_t const before = to.size();
        to.resize(before + count * bytes);
        for (std::size_t i = 0; i < (isPlanar ? 1 : count); ++i) {
            std::memcpy(&to[before + i * bytes], from + i * step, isPlanar ? count * bytes : bytes);
        }
    }

    void advance(std::int64_t samples) {
        offset_ += samples;
        next_ += samples;
    }

    std::unique_ptr<AVFormatContext, Deleter> format_;
    std::unique_ptr<AVCodecContext, Deleter> decoder_;
    std::unique_ptr<AVPacket, Deleter> packet_{av_packet_alloc()};
    std::unique_ptr<AVFrame, Deleter> frame_{av_frame_alloc()};
    int stream_ = -1;
    /// Samples of the frame that are taken.
    std::int64_t offset_ = 0;
    /// The sample that comes next, counted from the stream's start.
    std::int64_t next_ = 0;
    bool hasPlace_ = true;
    std::vector<std::vector<std::uint8_t>> channels_;
};

}  // namespace

Sample runPlainSound(std::string const& path, std::vector<SoundBlock> const& blocks) {
    av_log_set_level(AV_LOG_QUIET);
    Sample sample;
    SoundLoop loop;
    if (!loop.open(path)) {
        return sample;
    }
    measureTime(sample, [&] {
        return std::all_of(blocks.begin(), blocks.end(),
                           [&](SoundBlock const& block) { return loop.read(block); });
    });
    sample.reads = static_cast<std::uint32_t>(blocks.size());
    sample.peakBytes = peakResidentBytes();
    return sample;
}

bool canPlainLoopRead(std::string const& path) {
    av_log_set_level(AV_LOG_QUIET);
    return SoundLoop().open(path);
}

}  // namespace bench
