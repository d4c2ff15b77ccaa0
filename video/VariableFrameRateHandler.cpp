#include "video/VariableFrameRateHandler.h"

#include <cmath>

#include "toolkit/services/Rational.h"
#include "toolkit/services/TimedTask.h"

namespace {

/// The product wraps at 32 bits.
std::uint32_t lengthOf(TimeToSampleItem const& run) {
    return run.sampleCount * run.sampleDuration;
}

/// The nearest number, halves away from zero, cut to 32 bits.
std::uint32_t rounded(double number) {
    return static_cast<std::uint32_t>(std::llround(number));
}

}  // namespace

VariableFrameRateHandler::VariableFrameRateHandler(std::vector<TimeToSampleItem> const& table, int,
                                                   unsigned int timeScale, unsigned int nominalDuration,
                                                   double frameRate)
    : table_(table), timeScale_(timeScale), nominalDuration_(nominalDuration) {
    Ox::Rational::toRational(rateNumerator_, rateDenominator_, frameRate);
    if (!table_.empty()) {
        entryLength_ = lengthOf(table_.front());
        entryEndTime_ = entryLength_;
    }
}

unsigned int VariableFrameRateHandler::mapVFRSample(unsigned int frame) {
    ScopedLock const scope(lock_);
    static TimedSection const record(TimedTaskManager::getTimedTask("MapVFR"), "new");
    if (table_.empty() || rateNumerator_ == 0) {
        return 0;
    }
    return table_.size() == 1 ? mapByDuration(frame) : mapByTable(frame);
}

unsigned int VariableFrameRateHandler::mapByDuration(unsigned int frame) const {
    if (nominalDuration_ == 0) {
        return 0;
    }
    double const units = static_cast<double>(frame) * timeScale_ * static_cast<double>(rateDenominator_);
    return rounded(units / nominalDuration_ / static_cast<double>(rateNumerator_));
}

/// A run without length, in which a time can stop only if no run has one there, gives its first sample.
unsigned int VariableFrameRateHandler::mapByTable(unsigned int frame) {
    std::uint64_t const time = std::uint64_t{frame} * rateDenominator_ * timeScale_ / rateNumerator_;
    stepBackTo(time);
    stepForwardTo(time);
    if (entryLength_ == 0) {
        return entryFirstSample_;
    }
    auto const inside = static_cast<std::uint32_t>(time - entryStartTime_);
    double const part = static_cast<double>(inside) / static_cast<double>(entryLength_);
    return entryFirstSample_ + rounded(part * table_[entryIndex_].sampleCount);
}

void VariableFrameRateHandler::stepBackTo(std::uint64_t time) {
    while (time < entryStartTime_ && entryIndex_ != 0) {
        --entryIndex_;
        TimeToSampleItem const& run = table_[entryIndex_];
        entryEndTime_ = entryStartTime_;
        entryFirstSample_ -= run.sampleCount;
        entryLength_ = lengthOf(run);
        entryStartTime_ -= entryLength_;
    }
}

/// A time exactly at a run's end stays in that run.
void VariableFrameRateHandler::stepForwardTo(std::uint64_t time) {
    while (entryEndTime_ < time && entryIndex_ + 1 < table_.size()) {
        entryFirstSample_ += table_[entryIndex_].sampleCount;
        entryStartTime_ = entryEndTime_;
        ++entryIndex_;
        entryLength_ = lengthOf(table_[entryIndex_]);
        entryEndTime_ = entryStartTime_ + entryLength_;
    }
}

std::uint64_t VariableFrameRateHandler::getDuration() const {
    std::uint64_t duration = 0;
    for (TimeToSampleItem const& run : table_) {
        duration += lengthOf(run);
    }
    return duration;
}
