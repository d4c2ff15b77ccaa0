#pragma once

#include <cstdint>

/// Why a file is opened: a number, and for the known values a mask of media.
class OpenType {
public:
    enum : std::int32_t { unknown = 0, video = 1, audio = 2, both = 3 };

    constexpr OpenType(std::int32_t value = unknown) : value_(value) {}
    constexpr operator std::int32_t() const { return value_; }

    /// The bits of the value, for masks.
    [[nodiscard]] constexpr std::uint32_t mask() const { return static_cast<std::uint32_t>(value_); }

    /// For the log: "video", "audio", "video and audio", "unknown", and "other" for any other value.
    [[nodiscard]] char const* asString() const;

private:
    std::int32_t value_;
};

/// Mask: 1 the original high-resolution files, 2 the proxy files.
using eMediaTypes = std::uint32_t;
inline constexpr eMediaTypes mediaOriginal = 1;
inline constexpr eMediaTypes mediaProxy = 2;
inline constexpr eMediaTypes mediaAll = 3;
