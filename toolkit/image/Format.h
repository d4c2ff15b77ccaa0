#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "ole/Ox/OxString.h"

namespace Ox::Image {

/// How pixels lie in memory, as a number made of the format's name (FNV-1a, 32 bit, of its bytes).
/// Two readers that know a format by the same name so agree on its number.
enum class Format : std::uint32_t { unknown = 0 };

/// The number of a format's name; the empty name gives `unknown`.
[[nodiscard]] constexpr Format formatFor(std::string_view name) {
    std::uint32_t hash = 2166136261U;
    for (char const c : name) {
        hash = (hash ^ static_cast<std::uint8_t>(c)) * 16777619U;
    }
    return name.empty() ? Format::unknown : static_cast<Format>(hash);
}

inline constexpr Format rgb24 = formatFor("rgb24");
inline constexpr Format rgba = formatFor("rgba");
inline constexpr Format bgra = formatFor("bgra");
inline constexpr Format gray8 = formatFor("gray");
inline constexpr Format yuv420p = formatFor("yuv420p");
inline constexpr Format yuv422p = formatFor("yuv422p");
inline constexpr Format yuv422p10 = formatFor("yuv422p10le");
inline constexpr Format yuv444p = formatFor("yuv444p");

/// What is needed to walk the pixels of a format.
///
/// Units  Bits and powers of two of pixels.
struct FormatDescription {
    static constexpr unsigned maxPlanes = 4;

    LightweightString<char> name;
    std::uint16_t bitsPerComponent = 0;
    /// Average over all planes, padding not counted.
    std::uint16_t bitsPerPixel = 0;
    /// A palette counts as one.
    unsigned planeCount = 0;
    /// Bits from one sample of a plane to the next in the same row.
    std::array<std::uint8_t, maxPlanes> sampleBits{};
    /// A plane has one sample for 2^x pixels of a row, and one row for 2^y rows of pixels.
    std::array<std::uint8_t, maxPlanes> log2Width{};
    std::array<std::uint8_t, maxPlanes> log2Height{};
    /// Bytes of a palette that follows plane 0 as plane 1, else 0.
    std::uint32_t paletteBytes = 0;
};

/// Makes a format known; a name that is known already keeps its description. One without a name is
/// passed over.
///
/// Threads  Any, like the two queries below.
void registerFormat(FormatDescription const& description);

/// The description of a format, null if it isn't known. It lives for ever. The usual 8 to 16 bit
/// formats are known from the start, plug-ins add others.
[[nodiscard]] FormatDescription const* describeFormat(Format format);

/// Bytes of one row of a plane without padding, and rows of a plane; 0 for a plane that isn't there.
[[nodiscard]] std::uint32_t planeRowBytes(FormatDescription const& description, unsigned plane,
                                          std::uint32_t width);
[[nodiscard]] std::uint32_t planeRows(FormatDescription const& description, unsigned plane,
                                      std::uint32_t height);

}  // namespace Ox::Image
