#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "toolkit/image/Surface.h"

namespace soak {

/// What each place of a medium, a frame or a block of sound, looked like when it was read first.
///
/// It takes its memory at the start, so that it has no part in the growth of the process.
///
/// Threads  Any.
class Sightings {
public:
    explicit Sightings(std::size_t count) : sums_(std::make_unique<std::atomic<std::uint64_t>[]>(count)) {}

    /// False if the place was seen before and looked otherwise. @param sum  not 0
    [[nodiscard]] bool isAsBefore(std::size_t place, std::uint64_t sum) {
        std::uint64_t first = 0;
        return sums_[place].compare_exchange_strong(first, sum) || first == sum;
    }

private:
    std::unique_ptr<std::atomic<std::uint64_t>[]> const sums_;
};

/// The sum of what couldn't be read.
constexpr std::uint64_t sumOfNothing = 1;

/// A sum of size and pixels, which two different pictures hardly share; that of nothing for a surface
/// without pixels.
[[nodiscard]] std::uint64_t sumOf(Ox::Image::Surface const& surface);

/// The same of bytes, also of none.
[[nodiscard]] std::uint64_t sumOf(void const* bytes, std::size_t count);

}  // namespace soak
