#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "plugins/ffmpeg/AvOptions.h"
#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/PictureConverter.h"
#include "plugins/ffmpeg/StreamFacts.h"

namespace playfile_ffmpeg {

using Packets = std::vector<AvPtr<AVPacket>>;

/// What an encoder is to make.
struct EncoderSettings {
    /// FFmpeg's name of the encoder ("prores_ks", "libx264"), or of the codec for its usual one.
    std::string codec;
    /// Of every picture that it will be given.
    PictureShape shape;
    AVRational frameRate{25, 1};
    AVRational sampleAspect{0, 1};
    AVFieldOrder fieldOrder = AV_FIELD_UNKNOWN;
    ColourFacts colour;
    /// True for a container that keeps what the decoder must know apart from the packets.
    bool hasSeparateHeader = true;
    AvOptions options;
};

/// The options that make an encoder lose nothing: H.264 by libx264, and FFV1. Empty for one that can't.
[[nodiscard]] AvOptions losslessOptions(std::string const& codec);

/// Codes pictures, which it numbers from 0.
///
/// Threads  One at a time; the encoder has threads of its own.
/// Units    Times of packets count frames: the time base is one frame.
class VideoEncoder {
public:
    /// Empty with the reason in `error`.
    [[nodiscard]] static std::unique_ptr<VideoEncoder> open(EncoderSettings const& settings,
                                                            std::string& error);
    explicit VideoEncoder(AvPtr<AVCodecContext> context) : context_(std::move(context)) {}

    /// Takes the next picture and appends the packets that are ready, which may be none.
    ///
    /// @return  false with the reason in `error`; then no more pictures may come
    [[nodiscard]] bool encode(AVFrame const& picture, Packets& packets, std::string& error);
    /// Appends the packets that were held back.
    [[nodiscard]] bool finish(Packets& packets, std::string& error);

    /// What a container needs to know.
    [[nodiscard]] AvPtr<AVCodecParameters> parameters() const;
    [[nodiscard]] AVRational timeBase() const { return context_->time_base; }
    [[nodiscard]] AVRational frameRate() const { return context_->framerate; }
    [[nodiscard]] PictureShape shape() const;

private:
    [[nodiscard]] bool send(AVFrame const* picture, Packets& packets, std::string& error);

    AvPtr<AVCodecContext> const context_;
    int64_t nextFrame_ = 0;
};

}  // namespace playfile_ffmpeg
