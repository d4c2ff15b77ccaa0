#include "bench/soak/Sightings.h"

#include <algorithm>
#include <cstring>

#include "toolkit/image/Format.h"

namespace soak {
namespace {

constexpr std::uint64_t startValue = 0x9E3779B97F4A7C15ULL;
constexpr std::uint64_t factor = 0xFF51AFD7ED558CCDULL;
constexpr unsigned foldedBits = 32;

void mix(std::uint64_t& sum, std::uint64_t value) {
    sum = (sum ^ value) * factor;
    sum ^= sum >> foldedBits;
}

void mix(std::uint64_t& sum, std::uint8_t const* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; i += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes + i, std::min(sizeof word, count - i));
        mix(sum, word);
    }
}

std::uint64_t finished(std::uint64_t sum) {
    return std::max(sum, sumOfNothing + 1);
}

}  // namespace

std::uint64_t sumOf(Ox::Image::Surface const& surface) {
    auto const* const format = Ox::Image::describeFormat(surface.getDataFormat());
    if (!format || !surface.valid()) {
        return sumOfNothing;
    }
    std::uint64_t sum = startValue;
    mix(sum, surface.getWidth());
    mix(sum, surface.getHeight());
    unsigned const planes = format->paletteBytes != 0 ? 1 : format->planeCount;
    for (unsigned index = 0; index < planes; ++index) {
        Ox::Image::Plane const plane = surface.getPlane(index);
        std::uint32_t const rows = planeRows(*format, index, surface.getHeight());
        for (std::uint32_t y = 0; plane.data && y < rows; ++y) {
            mix(sum, plane.data + y * plane.stride, planeRowBytes(*format, index, surface.getWidth()));
        }
    }
    return finished(sum);
}

std::uint64_t sumOf(void const* bytes, std::size_t count) {
    std::uint64_t sum = startValue;
    mix(sum, count);
    mix(sum, static_cast<std::uint8_t const*>(bytes), count);
    return finished(sum);
}

}  // namespace soak
