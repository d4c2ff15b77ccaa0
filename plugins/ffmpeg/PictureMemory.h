#pragma once

#include <cstddef>
#include <mutex>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// Memory for the pictures that a decoder makes, all planes of a picture in one piece, which is used again and
/// again.
///
/// libavcodec's own writes zeros over every new piece on the thread that sends the packet. Here large pieces come
/// from the system, as zeros too, but page by page when they are first written: by the threads that decode, in
/// parallel, and once.
///
/// Ownership    Pieces that are free are held by the pool, those in use by their pictures, which may outlive this.
/// Threads      Any: a decoder asks from each of its threads.
class PictureMemory {
public:
    /// True for a decoder that decodes into memory that it is given.
    [[nodiscard]] static bool isFor(AVCodecContext const& context) {
        return (context.codec->capabilities & AV_CODEC_CAP_DR1) != 0;
    }

    /// Gives a piece to a picture whose format and size are set. Of what a decoder can't decode into directly, or
    /// a format that has no planes in memory, libavcodec takes care itself.
    ///
    /// @param flags  as libavcodec's `get_buffer2` has them, whose answer is this one's
    int giveTo(AVCodecContext& context, AVFrame& picture, int flags);

private:
    [[nodiscard]] AvPtr<AVBufferRef> take(size_t byteCount);

    std::mutex lock_;  ///< Of the next two.
    AvPtr<AVBufferPool> pool_;
    size_t byteCount_ = 0;  ///< Of the pool's pieces.
};

}  // namespace playfile_ffmpeg
