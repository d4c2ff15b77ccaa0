#pragma once

#include <string>

#include "plugins/wave/Bytes.h"
#include "toolkit/sound/AudioMetadata.h"

namespace playfile_wave {

/// How the samples of a file lie in its data.
struct WaveFormat {
    Aud::Metadata stream;
    /// Bytes of one sample of every channel; not 0.
    std::uint32_t blockAlign = 0;
};

/// What came of a "fmt " chunk.
enum class eFormatResult {
    isRead,
    isForeign,  ///< another reader's affair: compressed, or of a form that isn't known here
    isBad,
};

/// Reads the contents of a "fmt " chunk: whole numbers of up to 32 bits, and floating-point numbers.
///
/// @param why  set to what is amiss with any answer but `isRead`
[[nodiscard]] eFormatResult parseFormat(Bytes bytes, WaveFormat& format, std::string& why);

/// True for the codec of a stream that `parseFormat` reads.
[[nodiscard]] bool isReadCodec(LightweightString<char> const& codec);

}  // namespace playfile_wave
