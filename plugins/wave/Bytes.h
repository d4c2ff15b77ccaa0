#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

namespace playfile_wave {

/// Bytes as they lie in a file.
using Bytes = std::span<std::uint8_t const>;

/// A little-endian number that begins at `offset`.
///
/// Requires that all of its bytes are there.
template <class Number>
[[nodiscard]] Number numberAt(Bytes bytes, std::size_t offset) {
    Number number{};
    std::memcpy(&number, bytes.data() + offset, sizeof(number));
    return number;
}

/// A four-character code as `MaterialFile` reads it.
[[nodiscard]] constexpr std::uint32_t codeOf(char const (&text)[5]) {
    std::uint32_t code = 0;
    for (unsigned i = 0; i < 4; ++i) {
        code |= std::uint32_t{static_cast<unsigned char>(text[i])} << (8 * i);
    }
    return code;
}

/// The bytes as characters.
[[nodiscard]] inline std::string_view charactersOf(Bytes bytes) {
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

}  // namespace playfile_wave
