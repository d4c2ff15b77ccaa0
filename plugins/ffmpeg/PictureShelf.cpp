#include "plugins/ffmpeg/PictureShelf.h"

#include <algorithm>

namespace playfile_ffmpeg {
namespace {

uint32_t distance(uint32_t a, uint32_t b) {
    return a < b ? b - a : a - b;
}

}  // namespace

PicturePtr PictureShelf::find(uint32_t frame) const {
    auto const found = std::find_if(pictures_.begin(), pictures_.end(),
                                    [frame](auto const& picture) { return picture.first == frame; });
    return found == pictures_.end() ? nullptr : found->second;
}

void PictureShelf::put(uint32_t frame, PicturePtr picture, uint32_t wanted) {
    if (find(frame)) {
        return;
    }
    size_t const bytes = std::max<size_t>(byteCountOf(*picture), 1);
    capacity_ = std::clamp(mostBytes / bytes, fewestPictures, mostPictures);
    pictures_.emplace_back(frame, std::move(picture));
    while (pictures_.size() > capacity_) {
        pictures_.erase(
            std::max_element(pictures_.begin(), pictures_.end(), [&](auto const& a, auto const& b) {
                return distance(a.first, wanted) < distance(b.first, wanted);
            }));
    }
}

void PictureShelf::dropBefore(uint32_t frame) {
    std::erase_if(pictures_, [frame](auto const& picture) { return picture.first < frame; });
}

size_t byteCountOf(AVFrame const& frame) {
    size_t bytes = 0;
    for (AVBufferRef const* buffer : frame.buf) {
        bytes += buffer != nullptr ? static_cast<size_t>(buffer->size) : 0;
    }
    return bytes;
}

}  // namespace playfile_ffmpeg
