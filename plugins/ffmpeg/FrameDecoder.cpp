#include "plugins/ffmpeg/FrameDecoder.h"

#include <algorithm>
#include <new>

#include "playfile/Counters.h"

namespace playfile_ffmpeg {
namespace {

/// A decoder that reports one error after another without taking anything in is given up.
constexpr int mostErrorsInARow = 64;

bool can(AVCodec const& codec, int capability) {
    return (codec.capabilities & capability) != 0;
}

void chooseThreads(AVCodecContext& context, AVCodec const& codec, FrameDecoder::eThreading threading) {
    bool const byFrame =
        threading != FrameDecoder::eThreading::lowLatency && can(codec, AV_CODEC_CAP_FRAME_THREADS);
    context.thread_type = byFrame ? FF_THREAD_FRAME : FF_THREAD_SLICE;
    bool const useful = byFrame ? threading == FrameDecoder::eThreading::throughput
                                : can(codec, AV_CODEC_CAP_SLICE_THREADS | AV_CODEC_CAP_OTHER_THREADS);
    context.thread_count = useful ? 0 : 1;
}

/// Without it a decoder's threads would leave the asking to the one that sends packets.
void allowAnyThread(AVCodecContext& context) {
#if LIBAVCODEC_VERSION_MAJOR < 60
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    context.thread_safe_callbacks = 1;
#pragma GCC diagnostic pop
#else
    static_cast<void>(context);
#endif
}

/// A want of memory says nothing about a packet.
int checked(int code) {
    if (code == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    return code;
}

}  // namespace

std::unique_ptr<FrameDecoder> FrameDecoder::open(AVCodecParameters const& parameters, uint32_t reorderDepth,
                                                 eThreading threading, std::string& error) {
    std::unique_ptr<FrameDecoder> decoder(new FrameDecoder(parameters, reorderDepth, threading));
    int const code = decoder->openContext();
    if (code < 0) {
        error =
            std::string("no decoder for ") + avcodec_get_name(parameters.codec_id) + ": " + avErrorText(code);
        return nullptr;
    }
    return decoder;
}

int FrameDecoder::openContext() {
    AVCodec const* codec = avcodec_find_decoder(parameters_.codec_id);
    if (codec == nullptr) {
        return AVERROR_DECODER_NOT_FOUND;
    }
    AvPtr<AVCodecContext> context(avcodec_alloc_context3(codec));
    int code = context ? avcodec_parameters_to_context(context.get(), &parameters_) : AVERROR(ENOMEM);
    if (code >= 0) {
        context->has_b_frames = std::max(context->has_b_frames, static_cast<int>(reorderDepth_));
        chooseThreads(*context, *codec, threading_);
        context->opaque = &memory_;
        context->get_buffer2 = &FrameDecoder::getBuffer;
        allowAnyThread(*context);
        code = avcodec_open2(context.get(), codec, nullptr);
    }
    if (code >= 0) {
        context_ = std::move(context);
        hasEnded_ = false;
        isOutdated_ = false;
        errorsBeforeOpening_ = errorCount_;
    }
    return code;
}

int FrameDecoder::getBuffer(AVCodecContext* context, AVFrame* picture, int flags) {
    return static_cast<PictureMemory*>(context->opaque)->giveTo(*context, *picture, flags);
}

bool FrameDecoder::hasFrameThreads(AVCodecID id) {
    AVCodec const* codec = avcodec_find_decoder(id);
    return codec != nullptr && can(*codec, AV_CODEC_CAP_FRAME_THREADS);
}

void FrameDecoder::send(AVPacket& packet, uint32_t number, bool mayDrop) {
    packet.pts = number;
    packet.dts = AV_NOPTS_VALUE;
    packet.flags &= ~AV_PKT_FLAG_DISCARD;
    context_->skip_frame = mayDrop ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
    ++sentCount_;
    errorCount_ += checked(avcodec_send_packet(context_.get(), &packet)) < 0;
}

void FrameDecoder::drain() {
    avcodec_send_packet(context_.get(), nullptr);
}

void FrameDecoder::expectMore() {
    isOutdated_ = threading_ == eThreading::onePicture && hasFrameThreads(parameters_.codec_id);
    threading_ = isOutdated_ ? eThreading::throughput : threading_;
}

void FrameDecoder::reset() {
    if (sentCount_ == 0 && !isOutdated_) {
        return;
    }
    bool const isTainted = errorCount_ > errorsBeforeOpening_;
    if ((!isTainted && !isOutdated_) || openContext() < 0) {
        avcodec_flush_buffers(context_.get());
        hasEnded_ = false;
    }
}

AvPtr<AVFrame> FrameDecoder::receive(uint32_t& number) {
    AvPtr<AVFrame> frame = makeFrame();
    for (int errors = 0; errors < mostErrorsInARow; ++errors) {
        int const code = checked(avcodec_receive_frame(context_.get(), frame.get()));
        if (code >= 0) {
            ++decodedCount_;
            PlayFileCounters::add(playFileCounters().framesDecoded);
            errorCount_ += frame->decode_error_flags != 0;
            number = static_cast<uint32_t>(frame->pts);
            return frame;
        }
        if (code == AVERROR(EAGAIN)) {
            return nullptr;
        }
        if (code == AVERROR_EOF) {
            break;
        }
        ++errorCount_;
    }
    hasEnded_ = true;
    return nullptr;
}

bool isPredicted(AVFrame const& picture) {
    bool const isOfSuchType =
        picture.pict_type == AV_PICTURE_TYPE_P || picture.pict_type == AV_PICTURE_TYPE_B;
    return isOfSuchType && picture.key_frame == 0;
}

}  // namespace playfile_ffmpeg
