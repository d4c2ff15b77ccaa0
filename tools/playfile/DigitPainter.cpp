#include "tools/playfile/DigitPainter.h"

#include <algorithm>
#include <array>

namespace cli {
namespace {

constexpr std::uint32_t columns = 3;
constexpr std::uint32_t rows = 5;
/// Pixels of the picture for one dot of a digit.
constexpr std::uint32_t dotSize = digitHeight / rows;
constexpr std::uint32_t advance = (columns + 1) * dotSize;
constexpr std::uint8_t lightGrey = 0xC8;

/// Five rows of three dots each, the top row in the highest bits.
constexpr std::array<std::uint16_t, 10> digits{
    0b111101101101111, 0b010110010010111, 0b111001111100111, 0b111001111001111, 0b101101111001001,
    0b111100111001111, 0b111100111101111, 0b111001001010010, 0b111101111101111, 0b111101111001111};

void paintDot(Picture& picture, std::uint32_t left, std::uint32_t top) {
    for (std::uint32_t y = top; y < std::min(top + dotSize, picture.height()); ++y) {
        for (std::uint32_t x = left; x < std::min(left + dotSize, picture.width()); ++x) {
            std::fill_n(picture.at(x, y), Picture::channels, lightGrey);
        }
    }
}

void paintDigit(Picture& picture, std::uint16_t dots, std::uint32_t left, std::uint32_t top) {
    for (std::uint32_t dot = 0; dot < rows * columns; ++dot) {
        if ((dots >> (rows * columns - 1 - dot) & 1U) != 0) {
            paintDot(picture, left + dot % columns * dotSize, top + dot / columns * dotSize);
        }
    }
}

}  // namespace

void paintNumber(Picture& picture, std::uint32_t number, std::uint32_t left, std::uint32_t top) {
    for (char const digit : std::to_string(number)) {
        paintDigit(picture, digits[static_cast<std::size_t>(digit - '0')], left, top);
        left += advance;
    }
}

}  // namespace cli
