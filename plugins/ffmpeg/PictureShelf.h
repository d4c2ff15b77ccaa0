#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// The few pictures that were decoded last and are likely to be asked for next.
///
/// Ownership    Holds references to decoded pictures, up to a bound in bytes.
/// Threads      One at a time.
class PictureShelf {
public:
    static constexpr size_t mostBytes = size_t{32} << 20;
    static constexpr size_t fewestPictures = 4;
    static constexpr size_t mostPictures = 32;

    PicturePtr find(uint32_t frame) const;

    /// Puts a picture on the shelf; of too many, the one farthest from frame `wanted` goes.
    void put(uint32_t frame, PicturePtr picture, uint32_t wanted);

    void dropBefore(uint32_t frame);
    void clear() { pictures_.clear(); }

    /// How many pictures like those on the shelf it holds.
    size_t capacity() const { return capacity_; }

private:
    std::vector<std::pair<uint32_t, PicturePtr>> pictures_;
    size_t capacity_ = fewestPictures;
};

/// Bytes of all planes.
size_t byteCountOf(AVFrame const& frame);

}  // namespace playfile_ffmpeg
