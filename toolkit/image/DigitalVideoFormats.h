#pragma once

#include <cstdint>

#include "toolkit/image/VideoDescription.h"

namespace Ox {

/// The video formats in which material is recorded. The identity of a format holds its size, so that every
/// size has one and no table must know it.
///
/// Threads  Any.
class DigitalVideoFormats {
public:
    /// Sizes are in units of which `divisor`, never 0, make a pixel.
    struct Format {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        std::uint32_t divisor = 1;
    };

    /// The format of an identity; one without size for 0, which is none.
    [[nodiscard]] static Format findByUID(Image::FormatUID const& uid);

    /// The identity of a format; 0 for one without size.
    ///
    /// @param format  sizes below 2 to the power of 24, a divisor below 2 to the power of 16
    [[nodiscard]] static Image::FormatUID uidOf(Format const& format);
};

}  // namespace Ox
