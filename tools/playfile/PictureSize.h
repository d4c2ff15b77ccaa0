#pragma once

#include <cstdint>
#include <string>

#include "toolkit/image/PlayFileMetadataRep.h"

namespace cli {

/// Width and height of a picture as it is looked at, in pixels; 0 for the file's own.
struct PictureSize {
    /// Most pixels of a side.
    static constexpr std::uint32_t maxSide = 16384;

    std::uint32_t width = 0;
    std::uint32_t height = 0;

    /// Reads "WxH".
    ///
    /// @throws CommandError  for a text of another form, or a side that is 0, negative or too long
    [[nodiscard]] static PictureSize parse(std::string const& text);

    /// The size with width and height exchanged if a picture of this orientation is stored on its side.
    [[nodiscard]] PictureSize stored(Ox::Image::Orientation orientation) const;

    /// The largest size within `limit` that has the shape which the file's picture has on a screen.
    [[nodiscard]] static PictureSize within(PictureSize limit, PlayFileMetadataRep const& metadata);
};

}  // namespace cli
