#pragma once

#include <cstdint>

#include "ole/Ox/OxString.h"
#include "toolkit/image/ShotVideoMetadata.h"

/// What pictures are and how they are to be compressed.
class VideoCompressionInfo : public ShotVideoMetadata {
public:
    /// The codec's name; empty for the source's own.
    LightweightString<char> codec;
    /// Bits a second; 0 for the codec's own choice.
    std::uint64_t bitRate = 0;
};
