#include "plugins/ffmpeg/PixelFormats.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

namespace playfile_ffmpeg {
namespace {

/// Bytes of the palette of a format that has one.
constexpr std::uint32_t paletteBytes = AVPALETTE_SIZE;

/// A plane's samples are those of its component with the widest step, which may be a chroma one that
/// stands for several pixels.
void describePlanes(AVPixFmtDescriptor const& source, Ox::Image::FormatDescription& description) {
    int steps[4] = {};
    int stepComponents[4] = {};
    av_image_fill_max_pixsteps(steps, stepComponents, &source);
    bool const isBits = (source.flags & AV_PIX_FMT_FLAG_BITSTREAM) != 0;
    for (unsigned plane = 0; plane < description.planeCount; ++plane) {
        bool const isChromaStep = stepComponents[plane] == 1 || stepComponents[plane] == 2;
        bool const isChromaPlane = plane == 1 || plane == 2;
        description.sampleBits[plane] = static_cast<std::uint8_t>(isBits ? steps[plane] : steps[plane] * 8);
        description.log2Width[plane] = isChromaStep ? source.log2_chroma_w : std::uint8_t(0);
        description.log2Height[plane] = isChromaPlane ? source.log2_chroma_h : std::uint8_t(0);
    }
}

void makeKnown(AVPixelFormat pixelFormat, AVPixFmtDescriptor const& source) {
    Ox::Image::FormatDescription description;
    description.name = source.name;
    description.bitsPerComponent = static_cast<std::uint16_t>(source.comp[0].depth);
    description.bitsPerPixel = static_cast<std::uint16_t>(av_get_bits_per_pixel(&source));
    description.planeCount = static_cast<unsigned>(av_pix_fmt_count_planes(pixelFormat));
    describePlanes(source, description);
    if ((source.flags & AV_PIX_FMT_FLAG_PAL) != 0) {
        description.planeCount = 2;
        description.paletteBytes = paletteBytes;
    }
    Ox::Image::registerFormat(description);
}

}  // namespace

Ox::Image::Format formatOf(AVPixelFormat pixelFormat) {
    AVPixFmtDescriptor const* const source = av_pix_fmt_desc_get(pixelFormat);
    if (source == nullptr) {
        return Ox::Image::Format::unknown;
    }
    Ox::Image::Format const format = Ox::Image::formatFor(source->name);
    if (Ox::Image::describeFormat(format) == nullptr) {
        makeKnown(pixelFormat, *source);
    }
    return format;
}

AVPixelFormat pixelFormatOf(Ox::Image::Format format) {
    Ox::Image::FormatDescription const* const description = Ox::Image::describeFormat(format);
    return description != nullptr ? av_get_pix_fmt(description->name.c_str()) : AV_PIX_FMT_NONE;
}

bool isRgb(AVPixelFormat pixelFormat) {
    AVPixFmtDescriptor const* const description = av_pix_fmt_desc_get(pixelFormat);
    return description != nullptr && (description->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
}

}  // namespace playfile_ffmpeg
