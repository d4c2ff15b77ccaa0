#pragma once

#include <cstdint>
#include <memory>

#include "plugins/ffmpeg/FrameDurations.h"
#include "plugins/ffmpeg/StreamFacts.h"

namespace playfile_ffmpeg {

/// Which stored frame is on show at each frame of a time line of a constant rate, for a file that keeps each
/// frame for its own length of time.
///
/// Threads  Any.
class FrameRateMap {
public:
    FrameRateMap(FrameDurations const& durations, AVRational rate, std::uint32_t storedCount);

    /// Empty for a file of a constant rate, and with the setting `useFrameRateMap` at 0 for any: then the
    /// frames of the file are its stored ones.
    [[nodiscard]] static std::unique_ptr<FrameRateMap> of(FrameIndex const& index, StreamFacts const& facts);

    /// Frames of the time line: those that begin before the last stored frame ends.
    [[nodiscard]] std::uint32_t timelineCount() const { return timelineCount_; }

    /// A frame behind the time line's end shows what its last one shows, and so does one before its
    /// beginning, whose number comes here as a very large one.
    [[nodiscard]] std::uint32_t storedFrame(std::uint32_t frame) const;

    /// What the file's description bears.
    [[nodiscard]] Ox::Ptr<iVariableFrameRateHandler> const& handler() const { return handler_; }

private:
    Ox::Ptr<iVariableFrameRateHandler> const handler_;
    std::uint32_t const storedCount_;
    std::uint32_t const timelineCount_;
};

}  // namespace playfile_ffmpeg
