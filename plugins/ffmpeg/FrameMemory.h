#pragma once

#include <cstddef>
#include <deque>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// Memory for the samples of decoded frames, all channels of a frame in one piece, which is used again and again.
///
/// Ownership    Holds the pieces that are free; those in use belong to their frames, and may outlive this.
/// Threads      One at a time.
class FrameMemory {
public:
    /// Gives a piece to a frame whose format, number of samples and channel layout are set; false if there is no memory.
    bool giveTo(AVFrame& frame);
    /// Takes back the piece that a frame had, if nobody else holds it.
    void takeBack(AvPtr<AVBufferRef> piece);

private:
    [[nodiscard]] AvPtr<AVBufferRef> takeNext();

    std::deque<AvPtr<AVBufferRef>> free_;  ///< The longest free first.
    size_t byteCount_ = 0;                 ///< Of each of them.
};

}  // namespace playfile_ffmpeg
