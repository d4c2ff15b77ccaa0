#include "plugins/ffmpeg/PictureStore.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {

void PictureStore::setLimits(Limits const& limits) {
    limits_ = limits;
    measureCapacity();
}

PicturePtr PictureStore::find(uint32_t frame) const {
    auto const found = pictures_.find(frame);
    return found == pictures_.end() ? nullptr : found->second;
}

void PictureStore::put(uint32_t frame, PicturePtr picture, uint32_t wanted) {
    largestPicture_ = std::max(largestPicture_, std::max<size_t>(byteCountOf(*picture), 1));
    measureCapacity();
    pictures_.emplace(frame, std::move(picture));
    shrink(wanted);
}

void PictureStore::shrink(uint32_t wanted) {
    while (pictures_.size() > capacity_) {
        dropFarthest(wanted);
    }
}

void PictureStore::keepOnly(uint32_t first, uint32_t last) {
    pictures_.erase(pictures_.begin(), pictures_.lower_bound(first));
    pictures_.erase(pictures_.upper_bound(last), pictures_.end());
}

void PictureStore::measureCapacity() {
    if (largestPicture_ != 0) {
        capacity_ = std::clamp(limits_.bytes / largestPicture_, limits_.fewest, limits_.most);
    }
}

/// The farthest frame is the lowest or the highest one.
void PictureStore::dropFarthest(uint32_t wanted) {
    auto const lowest = pictures_.begin();
    auto const highest = std::prev(pictures_.end());
    int64_t const below = int64_t{wanted} - lowest->first;
    int64_t const above = int64_t{highest->first} - wanted;
    pictures_.erase(below >= above ? lowest : highest);
}

size_t byteCountOf(AVFrame const& frame) {
    size_t bytes = 0;
    for (AVBufferRef const* buffer : frame.buf) {
        bytes += buffer != nullptr ? static_cast<size_t>(buffer->size) : 0;
    }
    return bytes;
}

}  // namespace playfile_ffmpeg
