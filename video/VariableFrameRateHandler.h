#pragma once

#include <cstdint>
#include <vector>

#include "ole/os/Locks.h"
#include "video/iVariableFrameRateHandler.h"

/// A run of samples of one duration, as in the time-to-sample table of ISO/IEC 14496-12.
struct TimeToSampleItem {
    std::uint32_t sampleCount = 0;
    /// Of each, in units of the table's time scale.
    std::uint32_t sampleDuration = 0;
};

/// Maps frames of a constant rate by a file's table of sample durations.
///
/// A player asks about neighbouring frames over and over, so a cursor stays at the run that answered last:
/// a call moves it by a step or none. Where it stands changes the cost of a call, never its result.
///
/// Threads    Any; `lock_` is held for the whole of a call.
/// Units      Times in units of the time scale.
/// Deliberate A run's length is a 32-bit product: one that is longer wraps. Behind the last run its rate goes
///            on, to samples that the table doesn't have. At the end of a run the next run's first sample is
///            answered, from whichever side the cursor came.
class VariableFrameRateHandler : public iVariableFrameRateHandler {
public:
    /// @param table            of which a copy is kept; not empty
    /// @param ignored          has no effect
    /// @param timeScale        units a second
    /// @param nominalDuration  of a sample, used with a table of one run
    /// @param frameRate        of the time line, frames a second
    VariableFrameRateHandler(std::vector<TimeToSampleItem> const& table, int ignored, unsigned int timeScale,
                             unsigned int nominalDuration, double frameRate);

    /// A table, rate or duration of nothing, which is a caller's fault, maps every frame to sample 0.
    [[nodiscard]] unsigned int mapVFRSample(unsigned int frame) override;

    /// The length of the whole table.
    [[nodiscard]] std::uint64_t getDuration() const;

private:
    [[nodiscard]] unsigned int mapByDuration(unsigned int frame) const;
    [[nodiscard]] unsigned int mapByTable(unsigned int frame) PLAYFILE_REQUIRES(lock_);
    void stepBackTo(std::uint64_t time) PLAYFILE_REQUIRES(lock_);
    void stepForwardTo(std::uint64_t time) PLAYFILE_REQUIRES(lock_);

    std::vector<TimeToSampleItem> const table_;
    std::uint32_t const timeScale_;
    std::uint32_t const nominalDuration_;
    unsigned long rateNumerator_ = 0;
    unsigned long rateDenominator_ = 1;

    CriticalSection lock_;
    // The cursor: the run under it, and where that lies.
    std::uint64_t entryStartTime_ PLAYFILE_GUARDED_BY(lock_) = 0;
    std::uint64_t entryLength_ PLAYFILE_GUARDED_BY(lock_) = 0;
    std::uint64_t entryEndTime_ PLAYFILE_GUARDED_BY(lock_) = 0;
    std::uint32_t entryIndex_ PLAYFILE_GUARDED_BY(lock_) = 0;
    std::uint32_t entryFirstSample_ PLAYFILE_GUARDED_BY(lock_) = 0;
};
