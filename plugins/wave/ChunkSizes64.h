#pragma once

#include <vector>

#include "plugins/wave/Bytes.h"

namespace playfile_wave {

/// The contents of a "ds64" chunk: the lengths of the chunks for which 32 bits are too few.
///
/// Units  Bytes.
class ChunkSizes64 {
public:
    /// What a length of 32 or 64 bits holds where it isn't known.
    static constexpr std::uint32_t elsewhere = 0xFFFFFFFF;
    static constexpr std::uint64_t unknown = ~std::uint64_t{0};

    ChunkSizes64() = default;
    /// What is missing of a chunk that is too short counts as not stated.
    explicit ChunkSizes64(Bytes chunk);

    /// The length of the next chunk with this code; `unknown` if none is stated. Of several with one code
    /// each is given once, in their order.
    [[nodiscard]] std::uint64_t takeLength(std::uint32_t code);

    /// What follows the first 8 bytes of the file; `unknown` if it isn't stated.
    [[nodiscard]] std::uint64_t formLength() const { return formLength_; }

private:
    struct Entry {
        std::uint32_t code;
        std::uint64_t length;
    };

    std::uint64_t formLength_ = unknown;
    std::vector<Entry> entries_;
};

}  // namespace playfile_wave
