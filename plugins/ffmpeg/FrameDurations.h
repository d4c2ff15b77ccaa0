#pragma once

#include <cstdint>
#include <vector>

#include "plugins/ffmpeg/FrameIndex.h"
#include "video/VariableFrameRateHandler.h"

namespace playfile_ffmpeg {

/// How long each stored frame is shown, as runs of frames of one duration.
///
/// No run is longer than 32 bits of units, and none has a length of nothing: of frames that bear the same
/// time, each but the last gets one unit.
///
/// Units  Times in units of a second's `timeScale`th part.
struct FrameDurations {
    std::vector<TimeToSampleItem> runs;
    std::uint32_t timeScale = 1;

    /// Requires a time of every frame, and two frames at least.
    ///
    /// @param end  where the last frame ends, in the stream's time base; not behind its beginning if that
    ///             isn't known, and then it is shown for as long as most others
    [[nodiscard]] static FrameDurations of(FrameIndex const& index, AVRational timeBase, std::int64_t end);

    [[nodiscard]] std::uint64_t total() const;
};

/// True if every frame has a time.
[[nodiscard]] bool hasAllTimes(FrameIndex const& index);

/// The gap between two frames that as many gaps exceed as fall short of. Requires two frames at least.
[[nodiscard]] std::int64_t usualGap(FrameIndex const& index);

/// So many frames are shown for so long.
struct DurationCount {
    double seconds = 0.0;
    std::uint32_t frames = 0;
};

/// The runs' durations from the shortest on, each once; to the millisecond if there are too many for a
/// person to read, else exact.
[[nodiscard]] std::vector<DurationCount> histogramOf(FrameDurations const& durations);

}  // namespace playfile_ffmpeg
