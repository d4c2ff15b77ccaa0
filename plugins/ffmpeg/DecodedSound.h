#pragma once

#include <array>
#include <cstdint>
#include <utility>

#include "plugins/ffmpeg/AvPointers.h"
#include "toolkit/sound/SampleFormat.h"

namespace playfile_ffmpeg {

/// A frame of decoded samples that has its place in the stream.
///
/// What its samples are and where they lie is noted here: who copies them on another thread touches nothing of the
/// frame itself, which its decoder is about to use again.
///
/// Units        Samples of each channel, as decoded.
class DecodedSound {
public:
    /// @param frame  of at least one channel
    explicit DecodedSound(AvPtr<AVFrame> frame);

    void placeAt(int64_t firstSample) { firstSample_ = firstSample; }
    [[nodiscard]] int64_t firstSample() const { return firstSample_; }
    [[nodiscard]] int64_t endSample() const { return firstSample_ + sampleCount_; }
    [[nodiscard]] int sampleCount() const { return sampleCount_; }
    [[nodiscard]] int channels() const { return channels_; }

    /// Copies `count` samples of one channel, the first of which is `first` in the stream.
    ///
    /// @param form  in which they are delivered
    void copyChannel(int channel, int64_t first, uint32_t count, Aud::eSampleFormat form, uint8_t* to) const;

    /// Gives the frame away: there is nothing to copy any more.
    [[nodiscard]] AvPtr<AVFrame> takeFrame() { return std::move(frame_); }

private:
    [[nodiscard]] uint8_t const* plane(size_t number) const {
        return number < planes_.size() ? planes_[number] : frame_->extended_data[number];
    }

    AvPtr<AVFrame> frame_;
    int64_t firstSample_ = 0;
    int sampleCount_;
    int channels_;
    AVSampleFormat format_;
    /// One for each channel, or one for all.
    std::array<uint8_t const*, AV_NUM_DATA_POINTERS> planes_;
};

}  // namespace playfile_ffmpeg
