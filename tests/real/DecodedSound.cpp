#include "tests/real/DecodedSound.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "tests/real/RealMedia.h"
#include "toolkit/sound/SampleFormat.h"

namespace test {
namespace {

template <typename T>
T sampleAt(std::string const& bytes, std::size_t number) {
    T value{};
    std::memcpy(&value, bytes.data() + number * sizeof value, sizeof value);
    return value;
}

/// A sample as a part of full scale.
double valueOf(std::string const& bytes, std::size_t number, std::uint32_t format) {
    switch (format) {
        case Aud::sampleU8:
            return (sampleAt<std::uint8_t>(bytes, number) - 128) / 128.0;
        case Aud::sampleS16:
            return sampleAt<std::int16_t>(bytes, number) / 32768.0;
        case Aud::sampleS24: {
            std::int32_t value = 0;
            std::memcpy(reinterpret_cast<char*>(&value) + 1, bytes.data() + number * 3, 3);
            return value / 2147483648.0;
        }
        case Aud::sampleS32:
            return sampleAt<std::int32_t>(bytes, number) / 2147483648.0;
        case Aud::sampleF32:
            return static_cast<double>(sampleAt<float>(bytes, number));
        default:
            return sampleAt<double>(bytes, number);
    }
}

}  // namespace

DecodedSound::DecodedSound(std::string const& path, std::uint32_t stream, Aud::Metadata const& format)
    : bytesPerSample_(format.bytesPerSample), channels_(format.channels) {
    std::string const all = decodedSamples(path, rawFormName(format.sampleFormat), stream);
    std::size_t const step = std::size_t{bytesPerSample_} * format.channels;
    for (std::uint32_t channel = 0; channel < format.channels; ++channel) {
        std::string& samples = channels_[channel];
        samples.reserve(all.size() / format.channels);
        for (std::size_t at = channel * bytesPerSample_; at + bytesPerSample_ <= all.size(); at += step) {
            samples.append(all, at, bytesPerSample_);
        }
    }
}

std::uint64_t DecodedSound::sampleCount() const {
    return channels_.empty() ? 0 : channels_.back().size() / bytesPerSample_;
}

std::string DecodedSound::samples(std::uint32_t channel, std::uint64_t first, std::uint32_t count) const {
    std::string const& all = channels_[channel];
    std::size_t const from = std::min<std::size_t>(first * bytesPerSample_, all.size());
    return all.substr(from, std::size_t{count} * bytesPerSample_);
}

double Deviation::rootMeanSquare() const {
    return count == 0 ? 0.0 : std::sqrt(sumOfSquares / static_cast<double>(count));
}

void Deviation::add(Deviation const& other) {
    largest = std::max(largest, other.largest);
    sumOfSquares += other.sumOfSquares;
    count += other.count;
}

Deviation deviationOf(std::string const& samples, std::string const& expected, std::uint32_t format) {
    constexpr double farOff = 1000.0;
    Deviation deviation;
    if (samples.size() != expected.size()) {
        return {farOff, farOff * farOff, 1};
    }
    deviation.count = expected.size() / Aud::bytesPerSampleOf(format);
    for (std::size_t number = 0; number < deviation.count; ++number) {
        double const off = std::abs(valueOf(samples, number, format) - valueOf(expected, number, format));
        deviation.largest = std::max(deviation.largest, off);
        deviation.sumOfSquares += off * off;
    }
    return deviation;
}

std::string rawFormName(std::uint32_t format) {
    std::string const name = Aud::nameOf(static_cast<Aud::eSampleFormat>(format));
    return format == Aud::sampleU8 ? name : name + "le";
}

}  // namespace test
