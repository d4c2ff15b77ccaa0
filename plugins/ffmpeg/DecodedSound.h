#pragma once

#include <array>
#include <cstdint>
#include <utility>

#include "plugins/ffmpeg/AvPointers.h"
#include "toolkit/sound/SampleFormat.h"

namespace playfile_ffmpeg {

/// Decoded samples that have their place in the stream.
///
/// What they are and where they lie is noted here, and their memory is taken over: the frame that they came in is
/// its decoder's again at once.
///
/// Units        Samples of each channel, as decoded.
class DecodedSound {
public:
    /// @param frame  of at least one channel; empty afterwards
    explicit DecodedSound(AVFrame& frame);

    void placeAt(int64_t firstSample) { firstSample_ = firstSample; }
    [[nodiscard]] int64_t firstSample() const { return firstSample_; }
    [[nodiscard]] int64_t endSample() const { return firstSample_ + sampleCount_; }
    [[nodiscard]] int sampleCount() const { return sampleCount_; }
    [[nodiscard]] int channels() const { return channels_; }

    /// Copies `count` samples of one channel, the first of which is `first` in the stream.
    ///
    /// @param form  in which they are delivered
    void copyChannel(int channel, int64_t first, uint32_t count, Aud::eSampleFormat form, uint8_t* to) const;

    /// Gives the memory away, if it is one piece: there is nothing to copy any more.
    [[nodiscard]] AvPtr<AVBufferRef> takeMemory() { return std::move(memory_); }

private:
    [[nodiscard]] uint8_t const* plane(size_t number) const {
        return number < planes_.size() ? planes_[number] : frame_->extended_data[number];
    }

    AvPtr<AVBufferRef> memory_;
    AvPtr<AVFrame> frame_;  ///< Of samples that lie in several pieces; else null.
    int64_t firstSample_ = 0;
    int sampleCount_;
    int channels_;
    AVSampleFormat format_;
    /// One for each channel, or one for all.
    std::array<uint8_t const*, AV_NUM_DATA_POINTERS> planes_;
};

}  // namespace playfile_ffmpeg
