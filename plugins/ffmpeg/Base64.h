#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace playfile_ffmpeg {

/// Bytes as text in base 64 (RFC 4648, with padding).
std::string toBase64(std::vector<std::uint8_t> const& bytes);

}  // namespace playfile_ffmpeg
