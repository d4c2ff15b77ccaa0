#pragma once

#include <cstddef>
#include <deque>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// Memory for the samples of decoded frames, all channels of a frame in one piece, which is used again and again.
///
/// Who reads the samples does it on another processor, and what that has read must be fetched back before it is written
/// anew: `fetchPart` does so bit by bit beside the decoding, for the piece that comes next.
///
/// Ownership    Holds the pieces that are free; those in use belong to their frames, and may outlive this.
/// Threads      One at a time.
class FrameMemory {
public:
    /// Gives a piece to a frame whose format, number of samples and channel layout are set; false if there is no memory.
    bool giveTo(AVFrame& frame);
    /// Takes back the piece that a frame had, if nobody else holds it.
    void takeBack(AvPtr<AVBufferRef> piece);
    /// The next part of the next piece: few lines, as more than a processor fetches at once would make it wait.
    void fetchPart();

private:
    [[nodiscard]] AvPtr<AVBufferRef> takeNext();

    std::deque<AvPtr<AVBufferRef>> free_;  ///< The longest free first.
    size_t byteCount_ = 0;                 ///< Of each of them.
    size_t fetched_ = 0;                   ///< Bytes of the next piece.
};

}  // namespace playfile_ffmpeg
