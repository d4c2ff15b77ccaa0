#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "plugins/ffmpeg/ByteFile.h"

namespace playfile_ffmpeg {

/// The sample tables of one track of a QuickTime or MP4 file, as far as libavformat keeps them to
/// itself: it gives away where each sample lies and when it is decoded, but not when it is shown.
///
/// Knowing that from the tables, nothing of the media data needs to be read at open.
class MovSampleTables {
public:
    /// Nothing when there is no such track or its tables aren't whole. Reads the movie box.
    static std::optional<MovSampleTables> read(ByteFile const& file, uint32_t trackId);

    /// True if the movie says that some of the track's samples lie in another file, so that its tables tell
    /// nothing of this one. Reads the movie box.
    static bool lieElsewhere(ByteFile const& file, uint32_t trackId);

    /// True if more samples may follow in fragments, of which the tables know nothing.
    bool isFragmented() const { return isFragmented_; }
    uint32_t descriptionCount() const { return descriptionCount_; }
    uint32_t sampleCount() const { return static_cast<uint32_t>(sizes_.size()); }
    uint32_t sizeOf(uint32_t sample) const { return sizes_[sample]; }
    int64_t positionOf(uint32_t sample) const { return positions_[sample]; }

    /// From decoding to showing, in the track's time scale; 0 for tracks without reordering.
    int32_t offsetOf(uint32_t sample) const { return offsets_.empty() ? 0 : offsets_[sample]; }

    /// What must be added so that nothing is shown before it is decoded.
    int64_t decodeShift() const { return decodeShift_; }

private:
    friend class MovTrackParser;

    bool isFragmented_ = false;
    uint32_t descriptionCount_ = 0;
    int64_t decodeShift_ = 0;
    std::vector<uint32_t> sizes_;
    std::vector<int64_t> positions_;
    std::vector<int32_t> offsets_;
};

}  // namespace playfile_ffmpeg
