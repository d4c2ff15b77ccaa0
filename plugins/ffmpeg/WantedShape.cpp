#include "plugins/ffmpeg/WantedShape.h"

#include <algorithm>

#include "plugins/ffmpeg/PixelFormats.h"

namespace playfile_ffmpeg {
namespace {

/// One side of a picture in proportion to the other, at least a pixel.
int inProportion(std::uint32_t other, int ownSide, int ownOther) {
    std::int64_t const side = (std::int64_t(other) * ownSide + ownOther / 2) / ownOther;
    return static_cast<int>(std::clamp<std::int64_t>(side, 1, INT32_MAX));
}

}  // namespace

PictureShape wantedShape(DecodeFormat const& wanted, PictureShape const& own) {
    PictureShape shape = own;
    std::uint32_t const width = std::min<std::uint32_t>(wanted.getWidth(), INT32_MAX);
    std::uint32_t const height = std::min<std::uint32_t>(wanted.getHeight(), INT32_MAX);
    if (width != 0 || height != 0) {
        shape.width = width != 0 ? static_cast<int>(width) : inProportion(height, own.width, own.height);
        shape.height = height != 0 ? static_cast<int>(height) : inProportion(width, own.height, own.width);
    }
    if (wanted.getDataFormat() != Ox::Image::Format::unknown) {
        shape.pixelFormat = pixelFormatOf(wanted.getDataFormat());
    }
    return shape;
}

}  // namespace playfile_ffmpeg
