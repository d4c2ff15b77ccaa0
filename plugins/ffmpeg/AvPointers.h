#pragma once

#include <cstdint>  // before FFmpeg's headers, which need its macros
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

namespace playfile_ffmpeg {

/// Frees an object of the FFmpeg libraries with the operation that belongs to it.
struct AvDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVBufferPool* pool) const { av_buffer_pool_uninit(&pool); }
    void operator()(AVBufferRef* memory) const { av_buffer_unref(&memory); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
    void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
    void operator()(AVCodecParameters* parameters) const { avcodec_parameters_free(&parameters); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

template <typename T>
using AvPtr = std::unique_ptr<T, AvDeleter>;

/// A decoded picture whose planes live as long as anybody holds it.
using PicturePtr = std::shared_ptr<AVFrame const>;

/// FFmpeg's own words for one of its error codes.
std::string avErrorText(int code);

/// Both throw std::bad_alloc when there is no memory.
AvPtr<AVPacket> makePacket();
AvPtr<AVFrame> makeFrame();

}  // namespace playfile_ffmpeg
