#pragma once

#include <cstdint>
#include <optional>

#include "toolkit/image/Format.h"
#include "toolkit/image/Surface.h"

/// The number that every made picture bears: 32 blocks side by side in its top rows, dark for 0 and light
/// for 1, the highest bit on the left. It survives scaling, and conversion to another format.
namespace SynthCode {

inline constexpr std::uint32_t blockCount = 32;
inline constexpr std::uint8_t dark = 16;
inline constexpr std::uint8_t light = 235;
/// Values up to this one count as dark.
inline constexpr std::uint8_t threshold = 125;
/// The smallest picture that has room for the blocks.
inline constexpr std::uint32_t smallestWidth = blockCount;
inline constexpr std::uint32_t smallestHeight = 2;

/// How many of the top rows the blocks fill.
[[nodiscard]] inline std::uint32_t rowsOf(std::uint32_t height) {
    return height < 16 ? 1 : height / 8;
}

/// True if a picture of number `frame` is light in that column of the top rows.
[[nodiscard]] inline bool isLight(std::uint32_t frame, std::uint32_t column, std::uint32_t width) {
    auto const block = static_cast<std::uint32_t>(std::uint64_t(column) * blockCount / width);
    return ((frame >> (blockCount - 1 - block)) & 1U) != 0;
}

/// The number that a picture bears, read in the middle of each block; nothing if the picture has no
/// pixels, is too narrow, or is of a format whose first byte of a pixel isn't brightness or a colour.
[[nodiscard]] inline std::optional<std::uint32_t> read(Ox::Image::Surface const& picture) {
    Ox::Image::FormatDescription const* const format = Ox::Image::describeFormat(picture.getDataFormat());
    Ox::Image::Plane const plane = picture.getPlane(0);
    if (!format || !plane.data || picture.getWidth() < smallestWidth || format->bitsPerComponent != 8) {
        return std::nullopt;
    }
    std::uint8_t const* const row = plane.data + plane.stride * (rowsOf(picture.getHeight()) / 2);
    std::uint32_t frame = 0;
    for (std::uint32_t block = 0; block < blockCount; ++block) {
        auto const column =
            static_cast<std::uint32_t>((2ULL * block + 1) * picture.getWidth() / (2 * blockCount));
        frame =
            (frame << 1U) | (row[std::uint64_t(column) * format->sampleBits[0] / 8] > threshold ? 1U : 0U);
    }
    return frame;
}

}  // namespace SynthCode
