/// A block of 64 bytes is stirred into the four state words in 64 steps: four rounds of 16, each with
/// a function of its own, an order in which it takes the block's words, and four rotations in turn.
#include "tools/playfile/Md5.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace cli {
namespace {

constexpr std::size_t stepCount = 64;
constexpr std::size_t lengthSize = 8;
constexpr std::uint8_t endMark = 0x80;

using Words = std::array<std::uint32_t, 16>;
using State = std::array<std::uint32_t, 4>;

/// The first 32 bits behind the point of the sines of 1 to 64.
std::array<std::uint32_t, stepCount> makeSines() {
    std::array<std::uint32_t, stepCount> sines{};
    for (std::size_t step = 0; step < stepCount; ++step) {
        double const sine = std::fabs(std::sin(static_cast<double>(step + 1)));
        sines[step] = static_cast<std::uint32_t>(std::floor(std::ldexp(sine, 32)));
    }
    return sines;
}

std::array<std::uint32_t, stepCount> const sines = makeSines();

std::uint32_t readWord(std::uint8_t const* bytes) {
    return std::uint32_t(bytes[0]) | std::uint32_t(bytes[1]) << 8 | std::uint32_t(bytes[2]) << 16 |
           std::uint32_t(bytes[3]) << 24;
}

void writeWord(std::uint8_t* bytes, std::uint32_t word) {
    for (unsigned i = 0; i < 4; ++i) {
        bytes[i] = static_cast<std::uint8_t>(word >> (8 * i));
    }
}

/// One round of 16 steps; `mix` is its function, step i takes the word (`first` + i * `stride`) mod 16.
template <unsigned round, unsigned first, unsigned stride, class Mix>
void stir(State& state, Words const& words, std::array<int, 4> const& rotations, Mix mix) {
    auto [a, b, c, d] = state;
#pragma GCC unroll 16
    for (unsigned i = 0; i < 16; ++i) {
        std::uint32_t const sum = a + mix(b, c, d) + words[(first + i * stride) % 16] + sines[round * 16 + i];
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, rotations[i % 4]);
    }
    state = {a, b, c, d};
}

}  // namespace

void Md5::add(void const* bytes, std::size_t byteCount) {
    auto const* from = static_cast<std::uint8_t const*>(bytes);
    byteCount_ += byteCount;
    while (byteCount != 0) {
        if (pendingCount_ == 0 && byteCount >= blockSize) {
            addBlock(from);
            from += blockSize;
            byteCount -= blockSize;
            continue;
        }
        std::size_t const part = std::min(byteCount, blockSize - pendingCount_);
        std::memcpy(pending_.data() + pendingCount_, from, part);
        pendingCount_ += part;
        from += part;
        byteCount -= part;
        if (pendingCount_ == blockSize) {
            addBlock(pending_.data());
            pendingCount_ = 0;
        }
    }
}

/// The end mark, zeros, and the length in bits fill up the last block.
Md5::Digest Md5::finish() {
    std::uint64_t const bitCount = byteCount_ * 8;
    add(&endMark, 1);
    static constexpr std::array<std::uint8_t, blockSize> zeros{};
    add(zeros.data(), (2 * blockSize - lengthSize - pendingCount_) % blockSize);
    std::array<std::uint8_t, lengthSize> length{};
    writeWord(length.data(), static_cast<std::uint32_t>(bitCount));
    writeWord(length.data() + 4, static_cast<std::uint32_t>(bitCount >> 32));
    add(length.data(), length.size());
    Digest digest{};
    for (std::size_t i = 0; i < state_.size(); ++i) {
        writeWord(digest.data() + 4 * i, state_[i]);
    }
    return digest;
}

Md5::Digest Md5::of(void const* bytes, std::size_t byteCount) {
    Md5 sum;
    sum.add(bytes, byteCount);
    return sum.finish();
}

void Md5::addBlock(std::uint8_t const* block) {
    using Word = std::uint32_t;
    Words words;
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = readWord(block + 4 * i);
    }
    State state = state_;
    stir<0, 0, 1>(state, words, {7, 12, 17, 22}, [](Word b, Word c, Word d) { return (b & c) | (~b & d); });
    stir<1, 1, 5>(state, words, {5, 9, 14, 20}, [](Word b, Word c, Word d) { return (d & b) | (~d & c); });
    stir<2, 5, 3>(state, words, {4, 11, 16, 23}, [](Word b, Word c, Word d) { return b ^ c ^ d; });
    stir<3, 0, 7>(state, words, {6, 10, 15, 21}, [](Word b, Word c, Word d) { return c ^ (b | ~d); });
    for (std::size_t i = 0; i < state_.size(); ++i) {
        state_[i] += state[i];
    }
}

std::string asHex(Md5::Digest const& digest) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (std::uint8_t const byte : digest) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

}  // namespace cli
