#pragma once

#include <cstdint>
#include <vector>

#include "toolkit/image/Surface.h"

namespace cli {

/// A picture of 8-bit red, green and blue, rows from the top, without padding.
///
/// Units  Pixels.
class Picture {
public:
    static constexpr unsigned channels = 3;

    Picture() = default;
    /// All black.
    Picture(std::uint32_t width, std::uint32_t height);

    /// A copy of a surface's pixels, in the order in which they are stored.
    ///
    /// @throws CommandError  if the surface has no pixels, or of a format that isn't 8-bit RGB or grey
    [[nodiscard]] static Picture of(Ox::Image::Surface const& surface);

    /// The picture turned so that it is seen as it was shot.
    [[nodiscard]] Picture upright(Ox::Image::Orientation orientation) const;

    /// The picture in another size, each pixel the mean of those it covers. For readers that deliver
    /// another size than was asked for.
    [[nodiscard]] Picture scaled(std::uint32_t width, std::uint32_t height) const;

    /// Copies another picture onto this one; what would lie outside is left away.
    void paste(Picture const& other, std::uint32_t left, std::uint32_t top);

    [[nodiscard]] std::uint32_t width() const { return width_; }
    [[nodiscard]] std::uint32_t height() const { return height_; }
    [[nodiscard]] bool empty() const { return pixels_.empty(); }
    [[nodiscard]] std::uint8_t* at(std::uint32_t x, std::uint32_t y) { return pixels_.data() + offset(x, y); }
    [[nodiscard]] std::uint8_t const* at(std::uint32_t x, std::uint32_t y) const {
        return pixels_.data() + offset(x, y);
    }

private:
    [[nodiscard]] std::size_t offset(std::uint32_t x, std::uint32_t y) const {
        return (std::size_t(y) * width_ + x) * channels;
    }

    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
    std::vector<std::uint8_t> pixels_;
};

/// True if a picture of this orientation lies on its side, so that width and height change places.
[[nodiscard]] bool isTransposed(Ox::Image::Orientation orientation);

}  // namespace cli
