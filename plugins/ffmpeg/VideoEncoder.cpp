#include "plugins/ffmpeg/VideoEncoder.h"

#include <new>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace playfile_ffmpeg {
namespace {

AVCodec const* findEncoder(std::string const& name) {
    if (AVCodec const* const encoder = avcodec_find_encoder_by_name(name.c_str())) {
        return encoder;
    }
    AVCodecDescriptor const* const codec = avcodec_descriptor_get_by_name(name.c_str());
    return codec != nullptr ? avcodec_find_encoder(codec->id) : nullptr;
}

bool takes(AVCodec const& encoder, AVPixelFormat wanted) {
    for (AVPixelFormat const* format = encoder.pix_fmts; format != nullptr && *format != AV_PIX_FMT_NONE;
         ++format) {
        if (*format == wanted) {
            return true;
        }
    }
    return encoder.pix_fmts == nullptr;
}

/// Empty if the encoder is there and can be asked for such pictures.
std::string reasonAgainst(AVCodec const* encoder, EncoderSettings const& settings) {
    if (encoder == nullptr || encoder->type != AVMEDIA_TYPE_VIDEO) {
        return "this FFmpeg has no encoder \"" + settings.codec + "\" of pictures";
    }
    if (settings.shape.width < 1 || settings.shape.height < 1) {
        return "pictures need a size";
    }
    if (settings.frameRate.num < 1 || settings.frameRate.den < 1) {
        return "pictures need a frame rate";
    }
    if (!takes(*encoder, settings.shape.pixelFormat)) {
        char const* const name = av_get_pix_fmt_name(settings.shape.pixelFormat);
        return "the encoder \"" + settings.codec + "\" takes no pictures of the format \"" +
               (name != nullptr ? name : "none") + "\"";
    }
    return "";
}

bool isInterlaced(AVFieldOrder order) {
    return order != AV_FIELD_UNKNOWN && order != AV_FIELD_PROGRESSIVE;
}

void describe(AVCodecContext& context, EncoderSettings const& settings) {
    context.width = settings.shape.width;
    context.height = settings.shape.height;
    context.pix_fmt = settings.shape.pixelFormat;
    context.time_base = av_inv_q(settings.frameRate);
    context.framerate = settings.frameRate;
    context.sample_aspect_ratio = settings.sampleAspect;
    context.field_order = settings.fieldOrder;
    context.color_primaries = settings.colour.primaries;
    context.color_trc = settings.colour.transfer;
    context.colorspace = settings.colour.matrix;
    context.color_range = settings.colour.range;
    context.chroma_sample_location = settings.colour.chromaLocation;
    context.thread_count = 0;
    if (isInterlaced(settings.fieldOrder)) {
        context.flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    }
    if (settings.hasSeparateHeader) {
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
}

}  // namespace

AvOptions losslessOptions(std::string const& codec) {
    if (codec == "libx264") {
        return {{"qp", "0"}, {"preset", "ultrafast"}};
    }
    if (codec == "ffv1") {
        return {{"level", "3"}, {"g", "1"}};
    }
    return {};
}

std::unique_ptr<VideoEncoder> VideoEncoder::open(EncoderSettings const& settings, std::string& error) {
    AVCodec const* const encoder = findEncoder(settings.codec);
    error = reasonAgainst(encoder, settings);
    if (!error.empty()) {
        return nullptr;
    }
    AvPtr<AVCodecContext> context(avcodec_alloc_context3(encoder));
    if (!context) {
        throw std::bad_alloc();
    }
    describe(*context, settings);
    AvDictionary options(settings.options);
    int const result = avcodec_open2(context.get(), encoder, options.address());
    if (result < 0) {
        error = "the encoder \"" + settings.codec + "\" doesn't take " + std::to_string(context->width) +
                "x" + std::to_string(context->height) + " with these options: " + avErrorText(result);
        return nullptr;
    }
    if (!options.firstKey().empty()) {
        error = "the encoder \"" + settings.codec + "\" has no option \"" + options.firstKey() + "\"";
        return nullptr;
    }
    return std::make_unique<VideoEncoder>(std::move(context));
}

PictureShape VideoEncoder::shape() const {
    return {context_->width, context_->height, context_->pix_fmt};
}

bool VideoEncoder::encode(AVFrame const& picture, Packets& packets, std::string& error) {
    if (shapeOf(picture) != shape()) {
        error = "frame " + std::to_string(nextFrame_) + " has another size or pixel format than the first";
        return false;
    }
    AvPtr<AVFrame> const frame = makeFrame();
    if (av_frame_ref(frame.get(), &picture) < 0) {
        throw std::bad_alloc();
    }
    frame->pts = nextFrame_++;
    // What kind of picture it was in another coding doesn't matter here.
    frame->pict_type = AV_PICTURE_TYPE_NONE;
    frame->key_frame = 0;
    return send(frame.get(), packets, error);
}

bool VideoEncoder::finish(Packets& packets, std::string& error) {
    return send(nullptr, packets, error);
}

bool VideoEncoder::send(AVFrame const* picture, Packets& packets, std::string& error) {
    int result = avcodec_send_frame(context_.get(), picture);
    while (result >= 0) {
        AvPtr<AVPacket> packet = makePacket();
        result = avcodec_receive_packet(context_.get(), packet.get());
        if (result >= 0) {
            packet->duration = 1;
            packets.push_back(std::move(packet));
        }
    }
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
        return true;
    }
    error = std::string("the encoder \"") + context_->codec->name + "\" has failed: " + avErrorText(result);
    return false;
}

AvPtr<AVCodecParameters> VideoEncoder::parameters() const {
    AvPtr<AVCodecParameters> made(avcodec_parameters_alloc());
    if (!made || avcodec_parameters_from_context(made.get(), context_.get()) < 0) {
        throw std::bad_alloc();
    }
    return made;
}

}  // namespace playfile_ffmpeg
