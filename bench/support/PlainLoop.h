#pragma once

#include <cstdint>  // before FFmpeg's headers, which need its macros
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

/// The loop on libavformat and libavcodec that somebody writes who wants frames of a file and has no
/// library for it: open, probe, decode with automatic threads, seek by time.
///
/// What the benches measure playfile against. It makes no promise about exact numbers.
///
/// Ownership    The picture answered lives until the next call.
/// Threads      One at a time.
class PlainLoop {
public:
    /// False if the file can't be opened or has no video stream.
    [[nodiscard]] bool open(std::string const& path);

    /// The next picture in display order; null at the end.
    AVFrame const* next();

    /// The first picture that isn't shown before frame `number` of a stream of constant rate; null if
    /// there is none.
    AVFrame const* frameAt(uint32_t number);

private:
    struct Deleter {
        void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
        void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
        void operator()(AVPacket* packet) const { av_packet_free(&packet); }
        void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    };

    bool openDecoder(AVCodec const& codec);
    void feed();

    std::unique_ptr<AVFormatContext, Deleter> format_;
    std::unique_ptr<AVCodecContext, Deleter> decoder_;
    std::unique_ptr<AVPacket, Deleter> packet_{av_packet_alloc()};
    std::unique_ptr<AVFrame, Deleter> frame_{av_frame_alloc()};
    int stream_ = -1;
};
