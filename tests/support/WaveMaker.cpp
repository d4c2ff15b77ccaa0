#include "tests/support/WaveMaker.h"

namespace test::wave {
namespace {

std::string bytesOf(std::uint64_t number, std::uint32_t byteCount) {
    std::string bytes;
    for (std::uint32_t i = 0; i < byteCount; ++i) {
        bytes.push_back(static_cast<char>(number >> (8 * i) & 0xFF));
    }
    return bytes;
}

/// Spreads the number over all bits, so that neighbours differ in every byte.
std::uint64_t spread(std::uint64_t number) {
    number = (number ^ number >> 31) * 0x9E3779B97F4A7C15;
    return number ^ number >> 29;
}

std::string guidOf(std::uint32_t tag) {
    return number16(tag) + std::string("\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71", 14);
}

}  // namespace

std::string number16(std::uint32_t number) {
    return bytesOf(number, 2);
}

std::string number32(std::uint64_t number) {
    return bytesOf(number, 4);
}

std::string number64(std::uint64_t number) {
    return bytesOf(number, 8);
}

std::string sample(Shape const& shape, std::uint32_t channel, std::uint64_t number) {
    return bytesOf(spread(number * 65537 + channel + 1), shape.sampleBytes());
}

std::string samples(Shape const& shape, std::uint64_t first, std::uint64_t count) {
    std::string bytes;
    for (std::uint64_t number = first; number < first + count; ++number) {
        for (std::uint32_t channel = 0; channel < shape.channels; ++channel) {
            bytes += sample(shape, channel, number);
        }
    }
    return bytes;
}

std::string channel(Shape const& shape, std::uint32_t channel, std::uint64_t first, std::uint64_t count) {
    std::string bytes;
    for (std::uint64_t number = first; number < first + count; ++number) {
        bytes += sample(shape, channel, number);
    }
    return bytes;
}

std::string format(Shape const& shape) {
    return format(shape.tag(), shape.channels, shape.rate, shape.blockAlign(), shape.sampleBytes() * 8);
}

std::string format(std::uint32_t tag, std::uint32_t channels, std::uint32_t rate, std::uint32_t blockAlign,
                   std::uint32_t bits) {
    return number16(tag) + number16(channels) + number32(rate) + number32(std::uint64_t{rate} * blockAlign) +
           number16(blockAlign) + number16(bits);
}

std::string extensible(Shape const& shape, std::uint32_t bits, std::uint32_t validBits) {
    return format(0xFFFE, shape.channels, shape.rate, shape.blockAlign(), bits) + number16(22) +
           number16(validBits) + number32(0) + guidOf(shape.tag());
}

std::string chunk(std::string const& code, std::string const& contents) {
    return chunk(code, contents, static_cast<std::uint32_t>(contents.size())) +
           std::string(contents.size() % 2, '\0');
}

std::string chunk(std::string const& code, std::string const& contents, std::uint32_t statedLength) {
    return code + number32(statedLength) + contents;
}

std::string sizes64(std::uint64_t formLength, std::uint64_t dataLength, std::string const& table) {
    constexpr std::size_t entryBytes = 12;
    return chunk("ds64", number64(formLength) + number64(dataLength) + number64(0) +
                             number32(table.size() / entryBytes) + table);
}

std::string tableEntry(std::string const& code, std::uint64_t length) {
    return code + number64(length);
}

std::string file(std::string const& chunks) {
    return file("RIFF", chunks, static_cast<std::uint32_t>(chunks.size() + 4));
}

std::string file(std::string const& form, std::string const& chunks, std::uint32_t statedLength) {
    return form + number32(statedLength) + "WAVE" + chunks;
}

std::string plainFile(Shape const& shape, std::uint64_t count) {
    return file(chunk("fmt ", format(shape)) + chunk("data", samples(shape, 0, count)));
}

}  // namespace test::wave
