#include "plugins/ffmpeg/FrameMemory.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {
namespace {

constexpr size_t mostFree = 192;

}  // namespace

bool FrameMemory::giveTo(AVFrame& frame) {
    auto const format = static_cast<AVSampleFormat>(frame.format);
    int const channels = frame.ch_layout.nb_channels;
    int const byteCount = av_samples_get_buffer_size(nullptr, channels, frame.nb_samples, format, 0);
    if (byteCount < 0) {
        return false;
    }
    if (static_cast<size_t>(byteCount) != byteCount_) {
        free_.clear();
        byteCount_ = static_cast<size_t>(byteCount);
    }
    frame.buf[0] = takeNext().release();
    frame.extended_data = frame.data;
    return frame.buf[0] != nullptr && av_samples_fill_arrays(frame.data, frame.linesize, frame.buf[0]->data,
                                                             channels, frame.nb_samples, format, 0) >= 0;
}

AvPtr<AVBufferRef> FrameMemory::takeNext() {
    if (free_.empty()) {
        return AvPtr<AVBufferRef>(av_buffer_allocz(byteCount_));
    }
    AvPtr<AVBufferRef> next = std::move(free_.front());
    free_.pop_front();
    return next;
}

void FrameMemory::takeBack(AvPtr<AVBufferRef> piece) {
    bool const isOurs = piece && piece->size == byteCount_ && av_buffer_is_writable(piece.get()) == 1;
    if (isOurs && free_.size() < mostFree) {
        free_.push_back(std::move(piece));
    }
}

}  // namespace playfile_ffmpeg
