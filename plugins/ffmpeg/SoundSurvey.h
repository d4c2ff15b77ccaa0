#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "plugins/ffmpeg/FirstLook.h"
#include "plugins/ffmpeg/LeadIn.h"
#include "plugins/ffmpeg/PacketLengths.h"
#include "plugins/ffmpeg/PcmTrack.h"
#include "plugins/ffmpeg/PlaceFinder.h"
#include "plugins/ffmpeg/SoundIndex.h"

namespace playfile_ffmpeg {

/// By which a packet is known again when the container brings it.
struct PacketTrace {
    int64_t position = -1;
    int64_t pts = AV_NOPTS_VALUE;
    uint32_t byteCount = 0;
    uint32_t fingerprint = 0;
};

/// All that is known of a stream of sound when its file has been opened.
struct SoundPlan {
    SoundForm form;
    AvPtr<AVCodecParameters> parameters;
    KeptSamples kept;
    /// Where the samples lie, if they can be read without a decoder; else the packets do it.
    std::optional<PcmForm> pcm;
    std::vector<PcmExtent> extents;
    std::vector<SoundPacket> packets;
    std::vector<bool> isStart;
    LeadIn leadIn;
    /// The samples are those of another file, which isn't read.
    bool liesElsewhere = false;
    /// Empty if the packets lie in the file in one piece each.
    std::vector<PacketTrace> traces;
};

/// Takes the packets of one stream, all of them and in order, and finds out what they are.
///
/// Threads      One at a time.
class SoundSurvey {
public:
    SoundSurvey(AVStream const& stream, ByteFile const& file);

    /// Takes the next packet.
    void take(AVPacket const& packet);
    /// Takes one that the container's index tells of, unread. `look` must have had the first ones.
    void takeListed(AVIndexEntry const& entry);
    /// For streams that are listed: decodes first packets until enough is known.
    void look(AVPacket const& packet);
    bool hasLooked() const { return look_.isOver(); }

    uint32_t packetCount() const { return static_cast<uint32_t>(packets_.size()); }
    /// Leaves this object without packets.
    SoundPlan finish();

private:
    void measure(AVPacket const& packet, SoundPacket& entry);
    void place(AVPacket const& packet, SoundPacket& entry);
    void markStart(AVPacket const& packet, SoundPacket const& entry);
    void measureLengths();
    uint32_t fixedLength(uint32_t byteCount) const;
    AvPtr<AVPacket> lastPacket();
    KeptSamples trim();
    uint32_t frameSamples() const;
    uint32_t bytesOfAllChannels() const;

    AVStream const& stream_;
    ByteFile const& file_;
    AvPtr<AVCodecParameters> parameters_;
    std::optional<PcmForm> const pcm_;
    eLengthRule const rule_;
    FirstLook look_;
    PacketLengths lengths_;
    PlaceFinder places_;
    bool liesInFile_ = true;
    bool isListed_ = false;
    std::optional<int64_t> listedSkip_;
    int64_t carriedBits_ = 0;  ///< Of a block that a packet begins and the next one ends.
    std::vector<SoundPacket> packets_;
    std::vector<bool> isStart_;
    std::vector<PacketTrace> traces_;
    std::vector<std::pair<uint32_t, TrimMark>> marks_;
    AvPtr<AVPacket> last_;
    LeadIn leadIn_;
};

}  // namespace playfile_ffmpeg
