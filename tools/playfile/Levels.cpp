#include "tools/playfile/Levels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "toolkit/sound/SampleFormat.h"

namespace cli {
namespace {

constexpr std::uint32_t pictureColumns = 1200;
constexpr std::uint32_t pictureRows = 161;
constexpr double lowestDecibels = -144.0;
constexpr std::array<std::uint8_t, Picture::channels> background{24, 26, 30};
constexpr std::array<std::uint8_t, Picture::channels> middle{70, 74, 82};
constexpr std::array<std::uint8_t, Picture::channels> wave{110, 200, 140};

template <class Number>
Number read(std::uint8_t const* bytes) {
    Number number{};
    std::memcpy(&number, bytes, sizeof(number));
    return number;
}

/// The three bytes as the top of a number of 32 bits.
std::int32_t read24(std::uint8_t const* bytes) {
    std::uint32_t const top =
        std::uint32_t{bytes[0]} << 8U | std::uint32_t{bytes[1]} << 16U | std::uint32_t{bytes[2]} << 24U;
    return static_cast<std::int32_t>(top);
}

void add(ChannelLevels& levels, std::size_t column, double value) {
    levels.peak = std::max(levels.peak, std::abs(value));
    levels.sumOfSquares += value * value;
    ChannelLevels::Column& place = levels.columns[column];
    place.lowest = std::min(place.lowest, static_cast<float>(value));
    place.highest = std::max(place.highest, static_cast<float>(value));
}

void paint(Picture& picture, std::uint32_t x, std::uint32_t y,
           std::array<std::uint8_t, Picture::channels> const& colour) {
    std::copy(colour.begin(), colour.end(), picture.at(x, y));
}

/// The row of a level: the top is full scale, the bottom full scale below 0.
std::uint32_t rowOf(float level) {
    double const fromTop = (1.0 - std::clamp<double>(level, -1.0, 1.0)) / 2.0;
    return static_cast<std::uint32_t>(std::lround(fromTop * (pictureRows - 1)));
}

}  // namespace

double ChannelLevels::rms() const {
    return samples == 0 ? 0.0 : std::sqrt(sumOfSquares / static_cast<double>(samples));
}

LevelSink::LevelSink(std::vector<ChannelRange> const& ranges) : ranges_(ranges), channels_(ranges.size()) {
    for (ChannelLevels& levels : channels_) {
        levels.columns.resize(pictureColumns);
    }
}

void LevelSink::take(SampleFetcher::Samples const& samples) {
    ChannelRange const& range = ranges_[samples.channelIndex];
    ChannelLevels& levels = channels_[samples.channelIndex];
    std::uint32_t const bytes = range.format.bytesPerSample;
    auto const* const from = static_cast<std::uint8_t const*>(samples.bytes);
    std::size_t const count = bytes == 0 ? 0 : samples.byteCount / bytes;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint64_t const column = (samples.offset + i) * pictureColumns / range.count;
        add(levels, column, sampleValue(from + i * bytes, range.format.sampleFormat));
    }
    levels.samples += count;
}

double sampleValue(std::uint8_t const* sample, std::uint32_t format) {
    constexpr double fullScale8 = 128.0;
    constexpr double fullScale16 = 32768.0;
    constexpr double fullScale32 = 2147483648.0;
    switch (format) {
        case Aud::sampleU8:
            return (*sample - fullScale8) / fullScale8;
        case Aud::sampleS16:
            return read<std::int16_t>(sample) / fullScale16;
        case Aud::sampleS24:
            return read24(sample) / fullScale32;
        case Aud::sampleS32:
            return read<std::int32_t>(sample) / fullScale32;
        case Aud::sampleF32:
            return static_cast<double>(read<float>(sample));
        case Aud::sampleF64:
            return read<double>(sample);
        default:
            return 0.0;
    }
}

double asDecibels(double level) {
    return level > 0.0 ? std::max(lowestDecibels, 20.0 * std::log10(level)) : lowestDecibels;
}

Picture drawWaveform(ChannelLevels const& levels) {
    auto const columns = static_cast<std::uint32_t>(levels.columns.size());
    Picture picture(columns, pictureRows);
    for (std::uint32_t x = 0; x < columns; ++x) {
        ChannelLevels::Column const& column = levels.columns[x];
        std::uint32_t const top = rowOf(column.highest);
        std::uint32_t const bottom = rowOf(column.lowest);
        for (std::uint32_t y = 0; y < pictureRows; ++y) {
            bool const isWave = y >= top && y <= bottom;
            paint(picture, x, y, isWave ? wave : (y == pictureRows / 2 ? middle : background));
        }
    }
    return picture;
}

}  // namespace cli
