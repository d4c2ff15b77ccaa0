#pragma once

#include <cstdint>

namespace Aud {

/// The form of one sample of one channel. All of them are little-endian; whole numbers are signed,
/// but those of 8 bits, which are unsigned with silence at 128. Floating-point full scale is 1.0.
enum eSampleFormat : std::uint32_t {
    sampleUnknown = 0,
    sampleU8 = 1,
    sampleS16 = 2,
    sampleS24 = 3,  ///< packed, 3 bytes
    sampleS32 = 4,
    sampleF32 = 5,
    sampleF64 = 6,
};

/// The bytes of one sample; 0 for an unknown form.
[[nodiscard]] constexpr std::uint32_t bytesPerSampleOf(std::uint32_t format) {
    constexpr std::uint32_t bytes[] = {0, 1, 2, 3, 4, 4, 8};
    return format <= sampleF64 ? bytes[format] : 0;
}

/// A short name for people and programs ("s16"); "unknown" for an unknown form.
[[nodiscard]] constexpr char const* nameOf(eSampleFormat format) {
    constexpr char const* names[] = {"unknown", "u8", "s16", "s24", "s32", "f32", "f64"};
    return format <= sampleF64 ? names[format] : names[sampleUnknown];
}

}  // namespace Aud
