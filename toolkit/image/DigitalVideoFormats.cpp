#include "toolkit/image/DigitalVideoFormats.h"

namespace Ox {
namespace {

constexpr unsigned sizeBits = 24;
constexpr Image::FormatUID sizeMask = (Image::FormatUID{1} << sizeBits) - 1;

}  // namespace

DigitalVideoFormats::Format DigitalVideoFormats::findByUID(Image::FormatUID const& uid) {
    Format format;
    format.width = static_cast<std::uint32_t>(uid & sizeMask);
    format.height = static_cast<std::uint32_t>((uid >> sizeBits) & sizeMask);
    auto const divisor = static_cast<std::uint32_t>(uid >> (2 * sizeBits));
    format.divisor = divisor == 0 ? 1 : divisor;
    return format;
}

Image::FormatUID DigitalVideoFormats::uidOf(Format const& format) {
    if (format.width == 0 && format.height == 0) {
        return 0;
    }
    return (format.width & sizeMask) | (format.height & sizeMask) << sizeBits |
           Image::FormatUID{format.divisor} << (2 * sizeBits);
}

}  // namespace Ox
