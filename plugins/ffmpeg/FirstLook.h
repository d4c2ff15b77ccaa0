#pragma once

#include <memory>

#include "plugins/ffmpeg/SoundDecoder.h"
#include "plugins/ffmpeg/SoundForm.h"

namespace playfile_ffmpeg {

/// What only a decoder tells of a stream: the form of its samples, how many a packet gives, how many are
/// priming. The first packets of the stream are decoded for it.
///
/// Threads      One at a time.
class FirstLook {
public:
    /// With a codec that has no decoder it stays without a form.
    explicit FirstLook(AVCodecParameters const& parameters);

    /// True if a packet has given samples, or too many have given none.
    bool isOver() const { return isOver_; }
    /// Decodes the stream's next packet; the samples that it gives.
    uint32_t take(AVPacket const& packet);
    /// Decodes a packet by itself, wherever it stands in the stream; the samples that it gives.
    uint32_t takeAlone(AVPacket const& packet);
    /// The samples that come behind those of the last packet that was taken.
    uint32_t drain();

    /// As the first frame was, or as the container and the codec state it if there is none yet.
    SoundForm const& form() const { return form_; }
    /// Of the first packet that gave any; 0 if none has.
    uint32_t packetSamples() const { return packetSamples_; }
    /// Samples that are left out at the start, as the decoder or its first packets say.
    int64_t skip() const { return skip_; }
    int profile() const;
    /// Bits of a sample as it is stored; 0 where that has no meaning.
    int codedBits() const;

private:
    void learn(AVFrame const& frame);

    AvPtr<AVCodecParameters> const parameters_;
    std::unique_ptr<SoundDecoder> decoder_;
    SoundForm form_;
    uint32_t packetSamples_ = 0;
    int64_t skip_ = 0;
    int packetCount_ = 0;
    bool hasFrame_ = false;
    bool isOver_ = false;
};

}  // namespace playfile_ffmpeg
