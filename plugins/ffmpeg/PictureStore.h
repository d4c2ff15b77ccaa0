#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// Decoded pictures that are likely to be asked for next.
///
/// Ownership    Holds references to decoded pictures, up to a bound in bytes.
/// Threads      One at a time.
class PictureStore {
public:
    /// As many pictures as take `bytes`, but no fewer than `fewest` and no more than `most`.
    struct Limits {
        size_t bytes = size_t{32} << 20;
        size_t fewest = 4;
        size_t most = 32;
    };
    static constexpr size_t unlimited = std::numeric_limits<size_t>::max();

    PictureStore() = default;
    explicit PictureStore(Limits const& limits) { setLimits(limits); }

    /// What is too much by the new limits goes with the next `put` or `shrink`.
    void setLimits(Limits const& limits);

    PicturePtr find(uint32_t frame) const;

    /// Takes a picture, unless one of that frame is there; of too many, those farthest from frame `wanted`
    /// go, which may be this one.
    void put(uint32_t frame, PicturePtr picture, uint32_t wanted);
    /// Lets go of what is too much, what is farthest from frame `wanted` first.
    void shrink(uint32_t wanted);

    /// Lets go of all frames but those from `first` to `last`.
    void keepOnly(uint32_t first, uint32_t last);
    void clear() { pictures_.clear(); }

    /// How many pictures it holds if they are like the largest that it has seen.
    size_t capacity() const { return capacity_; }
    /// Bytes of the largest picture that it has seen; 0 before the first one.
    size_t largestPicture() const { return largestPicture_; }
    size_t count() const { return pictures_.size(); }

private:
    void measureCapacity();
    void dropFarthest(uint32_t wanted);

    Limits limits_;
    std::map<uint32_t, PicturePtr> pictures_;
    size_t largestPicture_ = 0;
    size_t capacity_ = limits_.fewest;
};

/// Bytes of all planes.
size_t byteCountOf(AVFrame const& frame);

}  // namespace playfile_ffmpeg
