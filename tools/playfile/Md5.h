#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace cli {

/// The MD5 sum of bytes that come piece by piece.
///
/// Threads  One at a time.
class Md5 {
public:
    using Digest = std::array<std::uint8_t, 16>;

    void add(void const* bytes, std::size_t byteCount);

    /// The sum of all that was added. Nothing may be added afterwards.
    [[nodiscard]] Digest finish();

    [[nodiscard]] static Digest of(void const* bytes, std::size_t byteCount);

private:
    static constexpr std::size_t blockSize = 64;

    void addBlock(std::uint8_t const* block);

    std::array<std::uint32_t, 4> state_{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    std::array<std::uint8_t, blockSize> pending_{};
    std::size_t pendingCount_ = 0;
    std::uint64_t byteCount_ = 0;
};

/// 32 lower-case hexadecimal digits.
[[nodiscard]] std::string asHex(Md5::Digest const& digest);

}  // namespace cli
