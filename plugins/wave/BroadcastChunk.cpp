#include "plugins/wave/BroadcastChunk.h"

#include <charconv>
#include <ctime>
#include <string>
#include <string_view>

namespace playfile_wave {
namespace {

constexpr std::size_t descriptionBytes = 256;
constexpr std::size_t originatorBytes = 32;
constexpr std::size_t dateBytes = 10;
constexpr std::size_t timeBytes = 8;
constexpr std::uint16_t version = 1;
/// An identifier of the material and what is kept for later versions.
constexpr std::size_t unusedBytes = 64 + 190;

std::string valueOf(configb const& options, char const* key, std::string const& otherwise = {}) {
    LightweightString<char> value;
    return options.in(key, value) == 0 ? value.str() : otherwise;
}

std::tm now() {
    std::time_t const seconds = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    return local;
}

std::string today() {
    std::tm const local = now();
    char text[16];
    return {text, std::strftime(text, sizeof(text), "%Y-%m-%d", &local)};
}

std::string timeOfDay() {
    std::tm const local = now();
    char text[16];
    return {text, std::strftime(text, sizeof(text), "%H:%M:%S", &local)};
}

/// A text in a field of its own length.
std::string field(std::string text, std::size_t byteCount) {
    text.resize(byteCount, '\0');
    return text;
}

template <class Number>
std::string number(Number value) {
    std::string bytes;
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        bytes += static_cast<char>(std::uint64_t{value} >> (8 * i) & 0xFF);
    }
    return bytes;
}

std::uint64_t timeReference(configb const& options) {
    std::string const text = valueOf(options, "timeReference");
    std::uint64_t samples = 0;
    std::from_chars(text.data(), text.data() + text.size(), samples);
    return samples;
}

}  // namespace

std::vector<std::uint8_t> makeBroadcastChunk(configb const& options) {
    std::string contents = field(valueOf(options, "description"), descriptionBytes);
    contents += field(valueOf(options, "originator", "playfile"), originatorBytes);
    contents += field(valueOf(options, "originatorReference"), originatorBytes);
    contents += field(valueOf(options, "originationDate", today()), dateBytes);
    contents += field(valueOf(options, "originationTime", timeOfDay()), timeBytes);
    contents += number(timeReference(options)) + number(version) + std::string(unusedBytes, '\0');
    contents += valueOf(options, "codingHistory");
    contents.resize(contents.size() + contents.size() % 2, '\0');
    std::string const chunk = "bext" + number(static_cast<std::uint32_t>(contents.size())) + contents;
    return {chunk.begin(), chunk.end()};
}

}  // namespace playfile_wave
