/// Two ways from a source's frames to packets of a copy: taking the packets, and coding the pictures anew.
#include "plugins/ffmpeg/SectionPictures.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <utility>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace playfile_ffmpeg {
namespace {

/// Codings whose every packet is a whole picture and needs nothing that the container says of itself.
constexpr std::array independentCodecs{AV_CODEC_ID_PRORES,   AV_CODEC_ID_DNXHD,   AV_CODEC_ID_MJPEG,
                                       AV_CODEC_ID_JPEG2000, AV_CODEC_ID_DVVIDEO, AV_CODEC_ID_CFHD,
                                       AV_CODEC_ID_PNG};

/// Encoders that lose nothing, the one that is tried first at the front. The last two take what the first
/// has no form for: pictures of full range, and packed ones.
constexpr std::array losslessEncoders{"ffv1", "libx264", "rawvideo"};

/// Packed pictures that a QuickTime file holds as they are.
bool isPlainInContainer(AVPixelFormat format) {
    return format == AV_PIX_FMT_UYVY422 || format == AV_PIX_FMT_YUYV422 || format == AV_PIX_FMT_RGB24;
}

std::string frameText(std::uint32_t frame) {
    return "frame " + std::to_string(frame);
}

std::string undecodable(std::uint32_t frame) {
    return frameText(frame) + " can't be decoded; extract a section before or behind it";
}

class CopiedPictures final : public SectionPictures {
public:
    CopiedPictures(SectionSource& source, std::uint32_t first) : source_(source), first_(first) {}

    [[nodiscard]] AvPtr<AVCodecParameters> parameters() const override {
        AvPtr<AVCodecParameters> made(avcodec_parameters_alloc());
        if (!made || avcodec_parameters_copy(made.get(), &source_.file().parameters()) < 0) {
            throw std::bad_alloc();
        }
        return made;
    }

    [[nodiscard]] bool takeNext(Packets& packets, std::string& error) override {
        AvPtr<AVPacket> packet = makePacket();
        std::uint32_t const frame = first_ + taken_;
        if (!source_.file().readPacket(source_.storedFrame(frame), *packet)) {
            error = frameText(frame) + " isn't in the file; extract a section before or behind it";
            return false;
        }
        packet->pts = taken_;
        packet->dts = taken_;
        packet->duration = 1;
        packet->flags = AV_PKT_FLAG_KEY;
        ++taken_;
        packets.push_back(std::move(packet));
        return true;
    }

    [[nodiscard]] bool finish(Packets&, std::string&) override { return true; }

private:
    SectionSource& source_;
    std::uint32_t const first_;
    std::uint32_t taken_ = 0;
};

class CodedPictures final : public SectionPictures {
public:
    CodedPictures(SectionSource& source, std::uint32_t first, std::unique_ptr<VideoEncoder> encoder)
        : source_(source), next_(first), encoder_(std::move(encoder)) {}

    [[nodiscard]] AvPtr<AVCodecParameters> parameters() const override { return encoder_->parameters(); }

    [[nodiscard]] bool takeNext(Packets& packets, std::string& error) override {
        PicturePtr const picture = source_.file().fetch(source_.storedFrame(next_));
        if (!picture) {
            error = undecodable(next_);
            return false;
        }
        if (shapeOf(*picture) != encoder_->shape()) {
            error = frameText(next_) +
                    " has another size or pixel format than those before it; extract what lies before it and "
                    "what begins with it apart";
            return false;
        }
        ++next_;
        return encoder_->encode(*picture, packets, error);
    }

    [[nodiscard]] bool finish(Packets& packets, std::string& error) override {
        return encoder_->finish(packets, error);
    }

private:
    SectionSource& source_;
    std::uint32_t next_;
    std::unique_ptr<VideoEncoder> const encoder_;
};

EncoderSettings settingsFor(StreamFacts const& facts, PictureShape const& shape, std::string const& codec) {
    EncoderSettings settings;
    settings.codec = codec;
    settings.shape = shape;
    settings.frameRate = facts.frameRate;
    settings.sampleAspect = facts.sampleAspect;
    settings.fieldOrder = facts.fieldOrder;
    settings.colour = facts.colour;
    settings.options = losslessOptions(codec);
    return settings;
}

std::unique_ptr<VideoEncoder> openLossless(StreamFacts const& facts, PictureShape const& shape,
                                           std::string& error) {
    for (std::string const codec : losslessEncoders) {
        if (codec == "rawvideo" && !isPlainInContainer(shape.pixelFormat)) {
            continue;
        }
        if (auto encoder = VideoEncoder::open(settingsFor(facts, shape, codec), error)) {
            return encoder;
        }
    }
    char const* const name = av_get_pix_fmt_name(shape.pixelFormat);
    error = std::string("no coding without loss takes its pictures (") +
            (name != nullptr ? name : "unknown") + "); write them as images with 'playfile frames --out'";
    return nullptr;
}

}  // namespace

std::unique_ptr<SectionSource> SectionSource::open(LightweightString<wchar_t> const& name,
                                                   std::string& error) {
    std::unique_ptr<FrameFetcher> file = FrameFetcher::open(toUTF8(name).str(), error);
    return file ? std::unique_ptr<SectionSource>(new SectionSource(std::move(file))) : nullptr;
}

SectionSource::SectionSource(std::unique_ptr<FrameFetcher> file)
    : file_(std::move(file)), map_(FrameRateMap::of(file_->index(), file_->facts())) {}

std::uint32_t SectionSource::frameCount() const {
    return map_ ? map_->timelineCount() : file_->frameCount();
}

std::uint32_t SectionSource::storedFrame(std::uint32_t frame) const {
    return map_ ? map_->storedFrame(frame) : frame;
}

bool SectionPictures::canCopy(SectionSource& source) {
    AVCodecID const codec = source.file().parameters().codec_id;
    bool const isIndependent =
        std::find(independentCodecs.begin(), independentCodecs.end(), codec) != independentCodecs.end();
    return isIndependent && source.file().isPacketPerFrame();
}

std::unique_ptr<SectionPictures> SectionPictures::make(SectionSource& source, std::uint32_t first, eWay way,
                                                       std::string& error) {
    if (way == eWay::copied) {
        return std::make_unique<CopiedPictures>(source, first);
    }
    PicturePtr const picture = source.file().fetch(source.storedFrame(first));
    if (!picture) {
        error = undecodable(first);
        return nullptr;
    }
    std::unique_ptr<VideoEncoder> encoder = openLossless(source.file().facts(), shapeOf(*picture), error);
    return encoder ? std::make_unique<CodedPictures>(source, first, std::move(encoder)) : nullptr;
}

}  // namespace playfile_ffmpeg
