#include "tools/playfile/SurfaceSum.h"

#include "toolkit/image/Format.h"
#include "tools/playfile/CommandError.h"

namespace cli {
namespace {

Ox::Image::FormatDescription const& describe(Ox::Image::Surface const& surface) {
    Ox::Image::FormatDescription const* const description =
        Ox::Image::describeFormat(surface.getDataFormat());
    if (!description) {
        throw CommandError("the reader delivered a pixel format that it has described to nobody");
    }
    return *description;
}

void addPlane(Md5& sum, Ox::Image::Surface const& surface, Ox::Image::FormatDescription const& description,
              unsigned index) {
    Ox::Image::Plane const plane = surface.getPlane(index);
    if (!plane.data) {
        throw CommandError("the reader delivered a picture that lacks a plane");
    }
    std::uint32_t const rowBytes = planeRowBytes(description, index, surface.getWidth());
    std::uint32_t const rows = planeRows(description, index, surface.getHeight());
    bool const isBottomUp = surface.getLayout() == Ox::Image::layoutBottomUp;
    for (std::uint32_t y = 0; y < rows; ++y) {
        sum.add(plane.data + (isBottomUp ? rows - 1 - y : y) * plane.stride, rowBytes);
    }
}

}  // namespace

std::string pixelFormatName(Ox::Image::Surface const& surface) {
    return describe(surface).name.str();
}

Md5::Digest sumOf(Ox::Image::Surface const& surface) {
    Ox::Image::FormatDescription const& description = describe(surface);
    if (!surface.valid()) {
        throw CommandError("the reader delivered no pixels");
    }
    Md5 sum;
    bool const hasPalette = description.paletteBytes != 0;
    for (unsigned plane = 0; plane < (hasPalette ? 1U : description.planeCount); ++plane) {
        addPlane(sum, surface, description, plane);
    }
    if (hasPalette) {
        Ox::Image::Plane const palette = surface.getPlane(1);
        if (!palette.data) {
            throw CommandError("the reader delivered a picture that lacks its palette");
        }
        sum.add(palette.data, description.paletteBytes);
    }
    return sum.finish();
}

}  // namespace cli
