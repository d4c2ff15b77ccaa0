#pragma once

#include <cstdint>

namespace Ox {

/// Frames a second as an exact fraction; 0/1 means not known.
struct FrameRate {
    std::uint32_t numerator = 0;
    std::uint32_t denominator = 1;
    bool operator==(FrameRate const& other) const {
        return std::uint64_t(numerator) * other.denominator == std::uint64_t(other.numerator) * denominator;
    }
};

/// 0.0 for a rate that isn't known.
[[nodiscard]] double getFramesPerSecond(FrameRate rate);

/// True for the rates of film and television: 24, 25, 30, 48, 50, 60, 100 and 120 and those of them
/// that have a 1000/1001 form.
[[nodiscard]] bool isStandardFrameRate(FrameRate rate);

namespace Image {

/// Names a stored video format for those who keep a table of them; 0 for none.
using FormatUID = std::uint64_t;

/// Colour as the code points of ITU-T H.273; 2 means not stated.
struct ColourDescription {
    std::uint8_t primaries = 2;
    std::uint8_t transfer = 2;
    std::uint8_t matrix = 2;
    /// False if `isFullRange` is only what such a picture is usually taken for.
    bool isRangeStated = false;
    bool isFullRange = false;
    /// 0 not stated, then left, centre, top left, top, bottom left, bottom as in H.273 plus 1.
    std::uint8_t chromaLocation = 0;
    bool operator==(ColourDescription const&) const = default;
};

/// How a frame is made of fields.
enum class eFieldOrder : std::uint8_t { unknown, progressive, topFirst, bottomFirst };

/// What a picture says of itself beside its memory layout.
struct VideoData {
    ColourDescription colour;
    /// Shape of a pixel as width to height; 0/1 means not stated.
    std::uint32_t pixelAspectNumerator = 0;
    std::uint32_t pixelAspectDenominator = 1;
};

/// What a picture says of its place in the stream.
struct SampleData {
    eFieldOrder fieldOrder = eFieldOrder::unknown;
    /// Seconds from the stream's start; negative if not known.
    double timeSeconds = -1.0;
};

/// How a picture must be turned to be seen upright: the code of the Exif orientation tag, 1 for none.
using Orientation = std::uint8_t;
inline constexpr Orientation orientationUpright = 1;

}  // namespace Image
}  // namespace Ox
