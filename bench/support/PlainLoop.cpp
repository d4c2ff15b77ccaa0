#include "bench/support/PlainLoop.h"

bool PlainLoop::open(std::string const& path) {
    AVFormatContext* format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) {
        return false;
    }
    format_.reset(format);
    AVCodec const* codec = nullptr;
    if (avformat_find_stream_info(format, nullptr) < 0) {
        return false;
    }
    stream_ = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    return stream_ >= 0 && openDecoder(*codec);
}

bool PlainLoop::openDecoder(AVCodec const& codec) {
    decoder_.reset(avcodec_alloc_context3(&codec));
    AVStream const& stream = *format_->streams[stream_];
    if (!decoder_ || avcodec_parameters_to_context(decoder_.get(), stream.codecpar) < 0) {
        return false;
    }
    decoder_->thread_count = 0;
    decoder_->pkt_timebase = stream.time_base;
    return avcodec_open2(decoder_.get(), &codec, nullptr) >= 0;
}

AVFrame const* PlainLoop::next() {
    for (;;) {
        int const code = avcodec_receive_frame(decoder_.get(), frame_.get());
        if (code >= 0) {
            return frame_.get();
        }
        if (code == AVERROR_EOF) {
            return nullptr;
        }
        feed();
    }
}

/// Sends the next packet of the stream, or word of its end.
void PlainLoop::feed() {
    while (av_read_frame(format_.get(), packet_.get()) >= 0) {
        bool const isVideo = packet_->stream_index == stream_;
        if (isVideo) {
            avcodec_send_packet(decoder_.get(), packet_.get());
        }
        av_packet_unref(packet_.get());
        if (isVideo) {
            return;
        }
    }
    avcodec_send_packet(decoder_.get(), nullptr);
}

AVFrame const* PlainLoop::frameAt(uint32_t number) {
    AVStream const& stream = *format_->streams[stream_];
    int64_t const start = stream.start_time == AV_NOPTS_VALUE ? 0 : stream.start_time;
    AVRational const rate = av_guess_frame_rate(format_.get(), format_->streams[stream_], nullptr);
    int64_t const wanted = start + av_rescale_q(number, av_inv_q(rate), stream.time_base);
    if (av_seek_frame(format_.get(), stream_, wanted, AVSEEK_FLAG_BACKWARD) < 0) {
        return nullptr;
    }
    avcodec_flush_buffers(decoder_.get());
    AVFrame const* frame = next();
    while (frame != nullptr && frame->best_effort_timestamp < wanted) {
        frame = next();
    }
    return frame;
}
