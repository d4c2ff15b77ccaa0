#pragma once

#include <cstdint>

#include "toolkit/sound/SampleFormat.h"

/// The tones of made sound: a sawtooth of half the full scale for each channel, 110 Hz for the first, 220 Hz
/// for the second and so on. It is made of whole numbers alone, so that every machine makes the same.
namespace SynthTone {

inline constexpr std::uint64_t hertzOfFirstChannel = 110;

/// A sample as a number of 32 bits.
///
/// @param channel  in the file, from 0
/// @param sample   from 0
[[nodiscard]] inline std::int32_t valueOf(std::uint32_t channel, std::uint64_t sample,
                                          std::uint32_t samplesPerSecond) {
    std::uint64_t const step = (hertzOfFirstChannel * (channel + 1) << 32U) / samplesPerSecond;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(sample * step)) / 2;
}

/// Writes a sample in a form; true if the form is one that is made.
[[nodiscard]] inline bool put(std::int32_t value, Aud::eSampleFormat format, std::uint8_t* to) {
    auto const putTop = [&](unsigned bytes) {
        auto const bits = static_cast<std::uint32_t>(value);
        for (unsigned i = 0; i < bytes; ++i) {
            to[i] = static_cast<std::uint8_t>(bits >> (8 * (4 - bytes + i)));
        }
        return true;
    };
    switch (format) {
        case Aud::sampleS16:
            return putTop(2);
        case Aud::sampleS24:
            return putTop(3);
        case Aud::sampleS32:
            return putTop(4);
        default:
            return false;
    }
}

}  // namespace SynthTone
