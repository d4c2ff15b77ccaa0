#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "plugins/ffmpeg/ByteFile.h"
#include "plugins/ffmpeg/KeptSamples.h"
#include "plugins/ffmpeg/PcmForm.h"

namespace playfile_ffmpeg {

/// Samples of all channels that lie in the file one behind the other.
struct PcmExtent {
    int64_t position = 0;
    int64_t firstSample = 0;
    int64_t sampleCount = 0;

    int64_t endSample() const { return firstSample + sampleCount; }
};

/// A stream whose samples are read straight from the file.
///
/// Threads      One at a time.
/// Units        Samples of every channel.
/// Errors       What the file doesn't hold, though its index says so, is silence.
class PcmTrack {
public:
    /// @param extents  ascending and without holes from sample 0 on
    PcmTrack(std::shared_ptr<ByteFile const> file, PcmForm form, int channels, std::vector<PcmExtent> extents,
             KeptSamples kept);

    int64_t sampleCount() const { return kept_.count(); }
    /// Writes the samples from `first` on, all channels interleaved. Requires that the stream has them.
    void read(int64_t first, uint32_t count, uint8_t* to);

private:
    void readRun(int64_t decoded, int64_t count, uint8_t* to);
    void readExtent(int64_t position, int64_t count, uint8_t* to);

    std::shared_ptr<ByteFile const> const file_;
    PcmForm const form_;
    size_t const channels_;
    std::vector<PcmExtent> const extents_;
    KeptSamples const kept_;
    std::vector<SampleRun> runs_;
    std::vector<uint8_t> stored_;  ///< Samples whose size changes, before they are converted.
};

/// Puts a packet's samples behind those of the extents, into the last one if they follow it in the file.
void appendExtent(std::vector<PcmExtent>& extents, int64_t position, int64_t sampleCount,
                  uint32_t bytesOfAllChannels);

}  // namespace playfile_ffmpeg
