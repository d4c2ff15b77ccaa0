#pragma once

#include <cstdint>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// A run of samples that follow each other both as they are decoded and as they are heard.
struct SampleRun {
    int64_t heard = 0;    ///< The first one's number as heard.
    int64_t decoded = 0;  ///< The same one's number as decoded.
    int64_t count = 0;
};

/// Which of a stream's decoded samples are heard: priming, what an edit list hides and padding at the end
/// are left out by the numbering.
///
/// Threads      Constant once it is built.
/// Units        Samples of each channel, from 0.
class KeptSamples {
public:
    int64_t count() const { return runs_.empty() ? 0 : runs_.back().heard + runs_.back().count; }
    std::vector<SampleRun> const& runs() const { return runs_; }

    /// Puts the decoded samples behind the heard ones from `first` up to `end` into `found`, in ascending
    /// order.
    void find(int64_t first, int64_t end, std::vector<SampleRun>& found) const;

    /// Puts decoded samples behind those that are heard already.
    void append(int64_t decoded, int64_t count);

private:
    std::vector<SampleRun> runs_;
};

/// What a container says of a packet's samples.
struct TrimMark {
    static constexpr int64_t none = -1;

    int64_t skip = none;       ///< From here on so many samples are left out, whatever was said before.
    int64_t cutAtEnd = 0;      ///< So many of this packet's last samples are left out.
    bool isDiscarded = false;  ///< The whole packet is only there for the decoder.
    bool isEmpty() const { return skip == none && cutAtEnd == 0 && !isDiscarded; }
};

/// What the container says beside the packet itself.
TrimMark trimMarkOf(AVPacket const& packet);

/// Takes packet after packet, and keeps of their samples what is heard, in the way libavcodec does.
class Trimmer {
public:
    /// @param skip  samples that the decoder itself wants left out at the start
    explicit Trimmer(int64_t skip) : skip_(skip) {}

    void take(int64_t sampleCount, TrimMark const& mark);
    KeptSamples const& kept() const { return kept_; }

private:
    int64_t skip_;
    int64_t decoded_ = 0;
    KeptSamples kept_;
};

}  // namespace playfile_ffmpeg
