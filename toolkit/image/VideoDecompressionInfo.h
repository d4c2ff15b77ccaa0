#pragma once

#include <cstdint>

/// How the stored frames of a file are to be read and decompressed.
class VideoDecompressionInfo {
public:
    /// The codec of pixels that need no decompression.
    static constexpr std::uint32_t rawPixels = 0;

    /// True if the file must be decoded in runs, so that a read yields its own frame only.
    [[nodiscard]] bool readStreaming() const { return isStreaming_; }
    /// Said once, while the file is opened.
    void setReadStreaming(bool isStreaming) { isStreaming_ = isStreaming; }

    /// Replaces the flags.
    void setFlags(std::uint32_t flags) { compressionFlags = flags; }

    /// True if frames are stored in groups of `framesPerGroup` of which each can only be read whole.
    bool frameGrouped = false;
    /// 0 counts as not grouped.
    std::uint16_t framesPerGroup = 0;
    /// For decoders; 0 for none.
    std::uint32_t compressionFlags = 0;
    /// Which decoder is needed, `rawPixels` for none.
    std::uint32_t codec = rawPixels;

private:
    bool isStreaming_ = false;
};
