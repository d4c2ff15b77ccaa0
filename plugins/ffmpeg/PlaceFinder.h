#pragma once

#include <cstdint>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/ByteFile.h"

namespace playfile_ffmpeg {

/// Finds where the bytes of a stream's packets lie in the file, so that they can be read without the
/// container's help: many containers hold them in one piece, at or shortly behind the place they state.
///
/// Threads      One at a time.
class PlaceFinder {
public:
    static constexpr int64_t nowhere = -1;

    explicit PlaceFinder(ByteFile const& file) : file_(file) {}

    /// Packets come in the stream's order. `nowhere` if its bytes don't lie there in one piece.
    int64_t find(AVPacket const& packet);

private:
    bool liesAt(int64_t position, AVPacket const& packet);
    int64_t search(int64_t from, AVPacket const& packet);

    ByteFile const& file_;
    std::vector<uint8_t> bytes_;
    int64_t lastStated_ = nowhere;
    int64_t lastEnd_ = nowhere;
};

}  // namespace playfile_ffmpeg
