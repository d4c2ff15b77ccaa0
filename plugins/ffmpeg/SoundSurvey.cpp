#include "plugins/ffmpeg/SoundSurvey.h"

#include <algorithm>

#include "plugins/ffmpeg/PacketScan.h"

namespace playfile_ffmpeg {
namespace {

/// A codec's frames are handed over one by one, unless they are so short, so long or so uneven that this
/// many samples serve better.
constexpr uint32_t usualFrameSamples = 1024;
constexpr uint32_t longFrameSamples = 4096;
constexpr uint32_t shortestFrame = 120;
constexpr uint32_t longestFrame = 8192;

constexpr uint32_t mostPacketBytes = uint32_t{1} << 28;

/// The header of a packet of PCM on a DVD.
constexpr int dvdHeaderByteCount = 3;

/// Codecs whose decoders find their way only from some packets on.
bool marksStarts(AVCodecID codec) {
    return codec == AV_CODEC_ID_MLP || codec == AV_CODEC_ID_TRUEHD || codec == AV_CODEC_ID_PCM_DVD;
}

}  // namespace

SoundSurvey::SoundSurvey(AVStream const& stream, ByteFile const& file)
    : stream_(stream),
      file_(file),
      parameters_(copyOf(*stream.codecpar)),
      pcm_(PcmForm::of(*parameters_)),
      rule_(pcm_ ? eLengthRule::bySize : lengthRuleOf(parameters_->codec_id)),
      look_(*parameters_),
      lengths_(*parameters_),
      places_(file),
      leadIn_(parameters_->codec_id) {}

void SoundSurvey::take(AVPacket const& packet) {
    SoundPacket entry;
    entry.byteCount = static_cast<uint32_t>(packet.size);
    measure(packet, entry);
    place(packet, entry);
    markStart(packet, entry);
    leadIn_.take(packet);
    traces_.push_back({packet.pos, packet.pts, entry.byteCount, fingerprintOf(packet)});
    TrimMark const mark = trimMarkOf(packet);
    if (!mark.isEmpty()) {
        marks_.emplace_back(packetCount(), mark);
    }
    packets_.push_back(entry);
    if (rule_ == eLengthRule::fixedButLast) {
        last_.reset(av_packet_clone(&packet));
    }
}

void SoundSurvey::measure(AVPacket const& packet, SoundPacket& entry) {
    uint32_t decoded = 0;
    if (rule_ == eLengthRule::byDecoding || !look_.isOver()) {
        decoded = look_.take(packet);
    }
    if (pcm_) {
        entry.sampleCount = entry.byteCount / std::max(bytesOfAllChannels(), 1U);
    } else if (rule_ == eLengthRule::byDecoding) {
        entry.sampleCount = decoded;
    } else {
        entry.sampleCount = lengths_.of(packet);
    }
}

void SoundSurvey::place(AVPacket const& packet, SoundPacket& entry) {
    if (liesInFile_) {
        entry.position = places_.find(packet);
        liesInFile_ = entry.position != PlaceFinder::nowhere;
    }
}

void SoundSurvey::markStart(AVPacket const& packet, SoundPacket const& entry) {
    if (!marksStarts(parameters_->codec_id)) {
        return;
    }
    if (parameters_->codec_id != AV_CODEC_ID_PCM_DVD) {
        isStart_.push_back((packet.flags & AV_PKT_FLAG_KEY) != 0);
        return;
    }
    isStart_.push_back(carriedBits_ == 0);
    int64_t const bits = int64_t{look_.codedBits()} * look_.form().channels;
    carriedBits_ += int64_t{std::max(packet.size - dvdHeaderByteCount, 0)} * 8 - entry.sampleCount * bits;
}

void SoundSurvey::look(AVPacket const& packet) {
    if (!listedSkip_) {
        TrimMark const mark = trimMarkOf(packet);
        listedSkip_ = mark.skip;
    }
    look_.take(packet);
    leadIn_.take(packet);
}

void SoundSurvey::takeListed(AVIndexEntry const& entry) {
    isListed_ = true;
    SoundPacket packet;
    packet.position = entry.pos;
    packet.byteCount = static_cast<uint32_t>(entry.size);
    packet.sampleCount = pcm_ ? packet.byteCount / std::max(bytesOfAllChannels(), 1U) : 0;
    TrimMark mark;
    mark.isDiscarded = (entry.flags & AVINDEX_DISCARD_FRAME) != 0;
    if (!mark.isEmpty()) {
        marks_.emplace_back(packetCount(), mark);
    }
    packets_.push_back(packet);
}

/// Those lengths that can only be told when all packets are there.
void SoundSurvey::measureLengths() {
    if (packets_.empty() || pcm_) {
        return;
    }
    if (rule_ == eLengthRule::fixed || rule_ == eLengthRule::fixedButLast) {
        for (SoundPacket& packet : packets_) {
            packet.sampleCount = fixedLength(packet.byteCount);
        }
    }
    if (rule_ == eLengthRule::fixedButLast && look_.packetSamples() != 0) {
        AvPtr<AVPacket> const last = lastPacket();
        packets_.back().sampleCount = last ? look_.takeAlone(*last) : 0;
    }
    if (rule_ == eLengthRule::byDecoding) {
        packets_.back().sampleCount += look_.drain();
    }
}

/// Where no packet could be decoded, the codec's usual length must do.
uint32_t SoundSurvey::fixedLength(uint32_t byteCount) const {
    if (look_.packetSamples() != 0) {
        return look_.packetSamples();
    }
    int const usual = av_get_audio_frame_duration2(parameters_.get(), static_cast<int>(byteCount));
    return static_cast<uint32_t>(std::max(usual, 0));
}

AvPtr<AVPacket> SoundSurvey::lastPacket() {
    if (!isListed_) {
        return std::move(last_);
    }
    SoundPacket const& entry = packets_.back();
    AvPtr<AVPacket> packet = makePacket();
    bool const isThere = entry.position >= 0 && entry.byteCount <= mostPacketBytes &&
                         av_new_packet(packet.get(), static_cast<int>(entry.byteCount)) >= 0 &&
                         file_.readAt(entry.position, packet->data, entry.byteCount) == entry.byteCount;
    return isThere ? std::move(packet) : nullptr;
}

/// What is skipped at the start stands at the first packet; a container that lists its packets tells it
/// with the first one that is read.
KeptSamples SoundSurvey::trim() {
    int64_t const listedSkip = listedSkip_.value_or(TrimMark::none);
    Trimmer trimmer(isListed_ && listedSkip != TrimMark::none ? listedSkip : look_.skip());
    auto mark = marks_.begin();
    for (uint32_t number = 0; number < packetCount(); ++number) {
        bool const isMarked = mark != marks_.end() && mark->first == number;
        trimmer.take(packets_[number].sampleCount, isMarked ? mark->second : TrimMark());
        mark += isMarked ? 1 : 0;
    }
    return trimmer.kept();
}

uint32_t SoundSurvey::frameSamples() const {
    uint32_t const natural = look_.packetSamples();
    bool const isUneven = parameters_->codec_id == AV_CODEC_ID_VORBIS || natural < shortestFrame;
    if (isUneven) {
        return usualFrameSamples;
    }
    return natural <= longestFrame ? natural : longFrameSamples;
}

uint32_t SoundSurvey::bytesOfAllChannels() const {
    uint32_t const channels = static_cast<uint32_t>(std::max(parameters_->ch_layout.nb_channels, 0));
    return pcm_ ? pcm_->storedByteCount() * channels : 0;
}

SoundPlan SoundSurvey::finish() {
    measureLengths();
    SoundPlan plan;
    plan.form = look_.form();
    plan.form.frameSamples = frameSamples();
    plan.kept = trim();
    plan.isStart = std::move(isStart_);
    leadIn_.settle(look_.profile(), plan.form.sampleRate, look_.packetSamples());
    plan.leadIn = leadIn_;
    if (pcm_ && liesInFile_) {
        plan.pcm = pcm_;
        plan.form.form = pcm_->delivered();
        plan.form.frameSamples = 0;
        for (SoundPacket const& packet : packets_) {
            appendExtent(plan.extents, packet.position, packet.sampleCount, bytesOfAllChannels());
        }
    } else {
        plan.packets = std::move(packets_);
    }
    if (!liesInFile_) {
        plan.traces = std::move(traces_);
    }
    plan.parameters = std::move(parameters_);
    packets_.clear();
    return plan;
}

}  // namespace playfile_ffmpeg
