#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "plugins/ffmpeg/Bundle.h"
#include "plugins/ffmpeg/DecodedSound.h"
#include "plugins/ffmpeg/SoundDecoder.h"
#include "plugins/ffmpeg/SoundForm.h"

namespace playfile_ffmpeg {

/// Decodes bundles: feeds the packets that are new, keeps what comes out as long as it may be wanted
/// again, and gives the samples that a bundle asks for.
///
/// Every sample keeps its number: what a damaged packet doesn't give is silence of its length.
///
/// Threads      One at a time; but `feed` may run on another thread beside `take` and `write`, while they
///              get bundles that begin nowhere anew and bring no packets.
/// Units        Samples of each channel, as decoded.
class BundleDecoder {
public:
    BundleDecoder(std::unique_ptr<SoundDecoder> decoder, SoundForm form);

    SoundForm const& form() const { return form_; }
    /// Packets that the decoder has had so far, those before a jump included.
    uint64_t packetsFed() const { return packetsFed_.load(std::memory_order_relaxed); }
    /// Forgets all that it has been given.
    void reset();

    /// Feeds a packet before the bundle comes that would bring it.
    void feed(Bundle::Packet const& packet);
    /// Feeds the packets of a bundle.
    void take(Bundle const& bundle);
    /// Writes one channel of the bundle's samples, which it has just taken.
    void write(Bundle const& bundle, int channel, uint8_t* to) const;

private:
    void startAnew(Bundle const& bundle);
    void forgetAll();
    void drain();
    void place(Bundle::Packet const& packet);
    void collect();
    void number(int64_t at);
    void keepFresh();
    bool isUsable(AVFrame const& frame) const;
    void forgetBefore(int64_t sample);
    void reuseForgotten();
    void lookAtAll();
    uint8_t* writeRun(SampleRun const& run, int channel, uint8_t* to) const;

    std::unique_ptr<SoundDecoder> const decoder_;
    SoundForm const form_;
    bool const isDelayed_;
    std::vector<DecodedSound> fresh_;  ///< What the packet gave that is being fed.
    int64_t next_ = 0;                 ///< Where the next frame of a decoder that holds back samples stands.
    bool isAtStart_ = true;            ///< Nothing has come out since the decoder began.
    bool isDrained_ = false;

    std::atomic<uint64_t> packetsFed_{0};

    std::mutex lock_;                            ///< Of the next two.
    std::deque<DecodedSound> decoded_;           ///< In ascending order.
    std::vector<AvPtr<AVBufferRef>> forgotten_;  ///< Memory for the decoder, which uses it again.
    /// Those of `decoded_` that a bundle may find its samples in: they stay where they are while more come.
    std::vector<DecodedSound const*> inReach_;
};

}  // namespace playfile_ffmpeg
