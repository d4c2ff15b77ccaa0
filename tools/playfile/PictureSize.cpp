#include "tools/playfile/PictureSize.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Picture.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

std::uint32_t parseSide(std::string const& text, std::string const& whole) {
    std::uint32_t side = 0;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, side);
    if (error != std::errc() || stop != end || side == 0 || side > PictureSize::maxSide) {
        throw CommandError("--size " + inQuotes(whole) + " is no size; write WIDTHxHEIGHT, each from 1 to " +
                               std::to_string(PictureSize::maxSide),
                           exitUsage);
    }
    return side;
}

std::uint32_t rounded(double side) {
    return static_cast<std::uint32_t>(std::max(1L, std::lround(side)));
}

}  // namespace

PictureSize PictureSize::parse(std::string const& text) {
    std::size_t const cross = text.find('x');
    std::string const height = cross == std::string::npos ? "" : text.substr(cross + 1);
    return {parseSide(text.substr(0, cross), text), parseSide(height, text)};
}

PictureSize PictureSize::stored(Ox::Image::Orientation orientation) const {
    return isTransposed(orientation) ? PictureSize{height, width} : *this;
}

PictureSize PictureSize::within(PictureSize limit, PlayFileMetadataRep const& metadata) {
    Ox::Image::VideoData const& data = metadata.videoData;
    bool const hasAspect = data.pixelAspectNumerator != 0 && data.pixelAspectDenominator != 0;
    double const pixelWidth =
        hasAspect ? double(data.pixelAspectNumerator) / double(data.pixelAspectDenominator) : 1.0;
    double width = std::max(1.0, metadata.image.getWidth() * pixelWidth);
    double height = std::max<double>(1.0, metadata.image.getHeight());
    if (isTransposed(metadata.orientation)) {
        std::swap(width, height);
    }
    double const scale = std::min(limit.width / width, limit.height / height);
    return {rounded(width * scale), rounded(height * scale)};
}

}  // namespace cli
