#include "plugins/ffmpeg/SoundDecoder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

namespace playfile_ffmpeg {
namespace {

/// Decoders that are slow to open and whose flush leaves nothing behind that the next packets' lead-in
/// wouldn't clear. All others are opened anew: many of them keep their state over a flush.
constexpr std::array forgettingCodecs = {
    AV_CODEC_ID_AAC,  AV_CODEC_ID_AAC_LATM, AV_CODEC_ID_AC3,    AV_CODEC_ID_EAC3,   AV_CODEC_ID_MP1,
    AV_CODEC_ID_MP2,  AV_CODEC_ID_MP3,      AV_CODEC_ID_VORBIS, AV_CODEC_ID_OPUS,   AV_CODEC_ID_FLAC,
    AV_CODEC_ID_ALAC, AV_CODEC_ID_WMAV1,    AV_CODEC_ID_WMAV2,  AV_CODEC_ID_WMAPRO, AV_CODEC_ID_DTS};

constexpr size_t leastBlock = 4096;

}  // namespace

AvPtr<AVCodecParameters> copyOf(AVCodecParameters const& parameters) {
    AvPtr<AVCodecParameters> copy(avcodec_parameters_alloc());
    if (!copy || avcodec_parameters_copy(copy.get(), &parameters) < 0) {
        throw std::bad_alloc();
    }
    return copy;
}

SoundDecoder::SoundDecoder(AvPtr<AVCodecParameters> parameters)
    : parameters_(std::move(parameters)), packet_(makePacket()), frame_(makeFrame()) {}

std::unique_ptr<SoundDecoder> SoundDecoder::open(AVCodecParameters const& parameters, std::string& error) {
    std::unique_ptr<SoundDecoder> decoder(new SoundDecoder(copyOf(parameters)));
    int const code = decoder->openContext();
    if (code < 0) {
        error =
            std::string("no decoder for ") + avcodec_get_name(parameters.codec_id) + ": " + avErrorText(code);
        return nullptr;
    }
    return decoder;
}

int SoundDecoder::openContext() {
    AVCodec const* const codec = avcodec_find_decoder(parameters_->codec_id);
    if (codec == nullptr) {
        return AVERROR_DECODER_NOT_FOUND;
    }
    AvPtr<AVCodecContext> context(avcodec_alloc_context3(codec));
    if (!context) {
        throw std::bad_alloc();
    }
    int code = avcodec_parameters_to_context(context.get(), parameters_.get());
    if (code < 0) {
        return code;
    }
    context->thread_count = 1;
    context->thread_type = 0;
    context->opaque = this;
    context->get_buffer2 = &SoundDecoder::getBuffer;
    AVDictionary* options = nullptr;
    // Where noise stands in for what wasn't coded, it must be the same noise however one came there.
    av_dict_set(&options, "cons_noisegen", "1", 0);
    code = avcodec_open2(context.get(), codec, &options);
    av_dict_free(&options);
    if (code >= 0) {
        context_ = std::move(context);
        takeOverSkipping();
    }
    return code;
}

/// What is to be skipped stands at the first frame after a start; saying so with each frame takes time.
void SoundDecoder::takeOverSkipping() {
    context_->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
}

void SoundDecoder::restart() {
    bool const forgets = std::find(forgettingCodecs.begin(), forgettingCodecs.end(), parameters_->codec_id) !=
                         forgettingCodecs.end();
    if (forgets) {
        avcodec_flush_buffers(context_.get());
        takeOverSkipping();
    } else {
        restartAtFirstPacket();
    }
}

void SoundDecoder::restartAtFirstPacket() {
    if (openContext() < 0) {
        avcodec_flush_buffers(context_.get());
        takeOverSkipping();
    }
}

bool SoundDecoder::feed(AVPacket const* packet) {
    bool const isEmpty = packet != nullptr && packet->size == 0;
    return !isEmpty && avcodec_send_packet(context_.get(), packet) >= 0;
}

bool SoundDecoder::feed(std::span<uint8_t const> bytes) {
    if (bytes.empty()) {
        return false;
    }
    makeRoom(bytes.size());
    packet_->data = packet_->buf->data;
    packet_->size = static_cast<int>(bytes.size());
    std::memcpy(packet_->data, bytes.data(), bytes.size());
    std::memset(packet_->data + bytes.size(), 0, AV_INPUT_BUFFER_PADDING_SIZE);
    return feed(packet_.get());
}

/// The block is used again, unless it is too small or the decoder still has the last packet.
void SoundDecoder::makeRoom(size_t byteCount) {
    size_t const needed = byteCount + AV_INPUT_BUFFER_PADDING_SIZE;
    bool const isGood =
        packet_->buf != nullptr && needed <= blockByteCount_ && av_buffer_is_writable(packet_->buf) == 1;
    if (isGood) {
        return;
    }
    av_buffer_unref(&packet_->buf);
    blockByteCount_ = needed > blockByteCount_ ? std::max(2 * needed, leastBlock) : blockByteCount_;
    packet_->buf = av_buffer_alloc(blockByteCount_);
    if (packet_->buf == nullptr) {
        throw std::bad_alloc();
    }
}

/// Takes the place of libavcodec's own, which makes a reference for each channel.
int SoundDecoder::getBuffer(AVCodecContext* context, AVFrame* frame, int flags) {
    bool const isPlain = (context->codec->capabilities & AV_CODEC_CAP_DR1) != 0 &&
                         frame->ch_layout.nb_channels <= AV_NUM_DATA_POINTERS;
    if (!isPlain) {
        return avcodec_default_get_buffer2(context, frame, flags);
    }
    return static_cast<SoundDecoder*>(context->opaque)->memory_.giveTo(*frame) ? 0 : AVERROR(ENOMEM);
}

AVFrame* SoundDecoder::receive() {
    if (avcodec_receive_frame(context_.get(), frame_.get()) < 0) {
        return nullptr;
    }
    context_->flags2 &= ~AV_CODEC_FLAG2_SKIP_MANUAL;
    return frame_.get();
}

bool SoundDecoder::isDelayed() const {
    return (context_->codec->capabilities & AV_CODEC_CAP_DELAY) != 0;
}

}  // namespace playfile_ffmpeg
