#include "tools/playfile/Picture.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "toolkit/image/Format.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// Where red, green and blue lie in the pixels of a format.
struct PixelLayout {
    Ox::Image::Format format;
    unsigned bytesPerPixel;
    std::array<unsigned, Picture::channels> offsets;
};

constexpr std::array<PixelLayout, 4> knownLayouts{{{Ox::Image::rgb24, 3, {0, 1, 2}},
                                                   {Ox::Image::rgba, 4, {0, 1, 2}},
                                                   {Ox::Image::bgra, 4, {2, 1, 0}},
                                                   {Ox::Image::gray8, 1, {0, 0, 0}}}};

PixelLayout const* layoutOf(Ox::Image::Format format) {
    auto const* const found =
        std::find_if(knownLayouts.begin(), knownLayouts.end(),
                     [format](PixelLayout const& layout) { return layout.format == format; });
    return found == knownLayouts.end() ? nullptr : found;
}

std::string nameOf(Ox::Image::Format format) {
    Ox::Image::FormatDescription const* const description = Ox::Image::describeFormat(format);
    return description ? description->name.str() : "of unknown name";
}

void copyRow(std::uint8_t* to, std::uint8_t const* from, std::uint32_t width, PixelLayout const& layout) {
    for (std::uint32_t x = 0; x < width; ++x) {
        for (unsigned channel = 0; channel < Picture::channels; ++channel) {
            to[channel] = from[layout.offsets[channel]];
        }
        to += Picture::channels;
        from += layout.bytesPerPixel;
    }
}

/// How a turned picture is read: from the stored one with x and y exchanged, or counted from the far
/// side, or both. The eight codes of the Exif tag are the eight ways to do so.
struct Turn {
    bool isTransposed;
    bool isMirroredInX;
    bool isMirroredInY;
};

Turn turnOf(Ox::Image::Orientation orientation) {
    static constexpr std::array<Turn, 9> turns{{{false, false, false},
                                                {false, false, false},
                                                {false, true, false},
                                                {false, true, true},
                                                {false, false, true},
                                                {true, false, false},
                                                {true, false, true},
                                                {true, true, true},
                                                {true, true, false}}};
    return turns[orientation < turns.size() ? orientation : Ox::Image::orientationUpright];
}

/// The stored pixels, along one side, that a pixel of the scaled picture covers: at least one.
struct Span {
    std::uint32_t begin;
    std::uint32_t end;
};

Span spanOf(std::uint32_t index, std::uint32_t stored, std::uint32_t scaled) {
    auto const begin = static_cast<std::uint32_t>(std::uint64_t(index) * stored / scaled);
    auto const end = static_cast<std::uint32_t>(std::uint64_t(index + 1) * stored / scaled);
    return {begin, std::max(end, begin + 1)};
}

void writeMean(std::uint8_t* to, Picture const& from, Span columns, Span rows) {
    std::array<std::uint64_t, Picture::channels> sums{};
    for (std::uint32_t y = rows.begin; y < rows.end; ++y) {
        std::uint8_t const* pixel = from.at(columns.begin, y);
        for (std::uint32_t x = columns.begin; x < columns.end; ++x, pixel += Picture::channels) {
            for (unsigned channel = 0; channel < Picture::channels; ++channel) {
                sums[channel] += pixel[channel];
            }
        }
    }
    std::uint64_t const count = std::uint64_t(columns.end - columns.begin) * (rows.end - rows.begin);
    for (unsigned channel = 0; channel < Picture::channels; ++channel) {
        to[channel] = static_cast<std::uint8_t>((sums[channel] + count / 2) / count);
    }
}

}  // namespace

Picture::Picture(std::uint32_t width, std::uint32_t height)
    : width_(width), height_(height), pixels_(std::size_t(width) * height * channels) {}

Picture Picture::of(Ox::Image::Surface const& surface) {
    Ox::Image::Plane const plane = surface.getPlane(0);
    if (!surface.valid() || !plane.data) {
        throw CommandError("the reader delivered no pixels");
    }
    PixelLayout const* const layout = layoutOf(surface.getDataFormat());
    if (!layout) {
        throw CommandError("the reader delivered the pixel format " + nameOf(surface.getDataFormat()) +
                           " where rgb24 was asked for");
    }
    Picture picture(surface.getWidth(), surface.getHeight());
    bool const isBottomUp = surface.getLayout() == Ox::Image::layoutBottomUp;
    for (std::uint32_t y = 0; y < picture.height(); ++y) {
        std::uint32_t const stored = isBottomUp ? picture.height() - 1 - y : y;
        copyRow(picture.at(0, y), plane.data + stored * plane.stride, picture.width(), *layout);
    }
    return picture;
}

Picture Picture::upright(Ox::Image::Orientation orientation) const {
    Turn const turn = turnOf(orientation);
    Picture turned(turn.isTransposed ? height_ : width_, turn.isTransposed ? width_ : height_);
    for (std::uint32_t y = 0; y < turned.height(); ++y) {
        for (std::uint32_t x = 0; x < turned.width(); ++x) {
            std::uint32_t const storedX = turn.isTransposed ? y : x;
            std::uint32_t const storedY = turn.isTransposed ? x : y;
            std::memcpy(turned.at(x, y),
                        at(turn.isMirroredInX ? width_ - 1 - storedX : storedX,
                           turn.isMirroredInY ? height_ - 1 - storedY : storedY),
                        channels);
        }
    }
    return turned;
}

Picture Picture::scaled(std::uint32_t width, std::uint32_t height) const {
    if (empty() || (width == width_ && height == height_)) {
        return *this;
    }
    Picture result(width, height);
    for (std::uint32_t y = 0; y < height; ++y) {
        Span const rows = spanOf(y, height_, height);
        for (std::uint32_t x = 0; x < width; ++x) {
            writeMean(result.at(x, y), *this, spanOf(x, width_, width), rows);
        }
    }
    return result;
}

void Picture::paste(Picture const& other, std::uint32_t left, std::uint32_t top) {
    if (left >= width_ || top >= height_) {
        return;
    }
    std::uint32_t const columns = std::min(other.width(), width_ - left);
    std::uint32_t const rows = std::min(other.height(), height_ - top);
    for (std::uint32_t y = 0; y < rows; ++y) {
        std::memcpy(at(left, top + y), other.at(0, y), std::size_t(columns) * channels);
    }
}

bool isTransposed(Ox::Image::Orientation orientation) {
    return turnOf(orientation).isTransposed;
}

}  // namespace cli
