#include "plugins/ffmpeg/PictureSurface.h"

#include <array>
#include <cstdlib>

#include "plugins/ffmpeg/PixelFormats.h"

namespace playfile_ffmpeg {
namespace {

/// Keeps a picture's memory as long as a surface shows it.
class PictureHolder : public virtual iObject {
public:
    explicit PictureHolder(PicturePtr held) : picture(std::move(held)) {}
    PicturePtr const picture;
};

Ox::Image::VideoData videoDataOf(AVFrame const& picture, StreamFacts const& facts) {
    StreamFacts own;
    own.colour = facts.colour;
    own.sampleAspect = facts.sampleAspect;
    own.pixelFormat = static_cast<AVPixelFormat>(picture.format);
    if (picture.colorspace != AVCOL_SPC_UNSPECIFIED) {
        own.colour.matrix = picture.colorspace;
    }
    if (picture.color_range != AVCOL_RANGE_UNSPECIFIED) {
        own.colour.range = picture.color_range;
    }
    return videoDataOf(own);
}

Ox::Image::eFieldOrder fieldOrderOf(AVFrame const& picture) {
    if (picture.interlaced_frame == 0) {
        return Ox::Image::eFieldOrder::progressive;
    }
    return picture.top_field_first != 0 ? Ox::Image::eFieldOrder::topFirst
                                        : Ox::Image::eFieldOrder::bottomFirst;
}

std::array<Ox::Image::Plane, Ox::Image::FormatDescription::maxPlanes> planesOf(AVFrame const& picture) {
    std::array<Ox::Image::Plane, Ox::Image::FormatDescription::maxPlanes> planes;
    for (std::size_t plane = 0; plane < planes.size(); ++plane) {
        planes[plane] = {picture.data[plane], picture.linesize[plane]};
    }
    return planes;
}

}  // namespace

Ox::Image::Surface surfaceOf(PicturePtr const& picture, StreamFacts const& facts, double timeSeconds) {
    Ox::Image::Format const format = formatOf(static_cast<AVPixelFormat>(picture->format));
    Ox::Image::FormatDescription const* const description = Ox::Image::describeFormat(format);
    Ox::Image::Surface surface(
        static_cast<std::uint32_t>(picture->width), static_cast<std::uint32_t>(picture->height), format,
        description ? description->bitsPerComponent : std::uint16_t(0),
        description ? description->bitsPerPixel : std::uint16_t(0), Ox::Image::layoutTopDown,
        Ox::Image::showForeignMemory, static_cast<std::uint32_t>(std::abs(picture->linesize[0])));
    surface.setOrientation(static_cast<Ox::Image::Orientation>(facts.orientation));
    showIn(surface, picture, facts, timeSeconds);
    return surface;
}

void showIn(Ox::Image::Surface& surface, PicturePtr const& picture, StreamFacts const& facts,
            double timeSeconds) {
    surface.setVideoData(videoDataOf(*picture, facts));
    surface.setSampleData({fieldOrderOf(*picture), timeSeconds});
    surface.setPlanes(planesOf(*picture), Ox::makePtr<PictureHolder>(picture));
}

PicturePtr pictureOf(Ox::Image::Surface const& surface) {
    Ox::Ptr<PictureHolder> const holder = Ox::dynamicPtrCast<PictureHolder>(surface.getOwner());
    return holder ? holder->picture : nullptr;
}

Ox::Image::VideoData videoDataOf(StreamFacts const& facts) {
    Ox::Image::VideoData data;
    data.colour.primaries = static_cast<std::uint8_t>(facts.colour.primaries);
    data.colour.transfer = static_cast<std::uint8_t>(facts.colour.transfer);
    data.colour.matrix = static_cast<std::uint8_t>(facts.colour.matrix);
    data.colour.isRangeStated = facts.colour.range != AVCOL_RANGE_UNSPECIFIED;
    data.colour.isFullRange =
        data.colour.isRangeStated ? facts.colour.range == AVCOL_RANGE_JPEG : isRgb(facts.pixelFormat);
    data.colour.chromaLocation = static_cast<std::uint8_t>(facts.colour.chromaLocation);
    data.pixelAspectNumerator = static_cast<std::uint32_t>(facts.sampleAspect.num);
    data.pixelAspectDenominator = static_cast<std::uint32_t>(facts.sampleAspect.den);
    return data;
}

/// Coded and shown order of fields may differ; the shown one counts.
Ox::Image::eFieldOrder fieldOrderOf(StreamFacts const& facts) {
    switch (facts.fieldOrder) {
        case AV_FIELD_PROGRESSIVE:
            return Ox::Image::eFieldOrder::progressive;
        case AV_FIELD_TT:
        case AV_FIELD_BT:
            return Ox::Image::eFieldOrder::topFirst;
        case AV_FIELD_BB:
        case AV_FIELD_TB:
            return Ox::Image::eFieldOrder::bottomFirst;
        default:
            return Ox::Image::eFieldOrder::unknown;
    }
}

}  // namespace playfile_ffmpeg
