#include "plugins/ffmpeg/CodedTrack.h"

#include <algorithm>
#include <utility>

#include "plugins/ffmpeg/Bundle.h"

namespace playfile_ffmpeg {
namespace {

/// A reader that asks for blocks may come back by one, if its block begins in what was decoded ahead and
/// ends behind it.
constexpr int64_t heldSamples = 8192;

}  // namespace

CodedTrack::CodedTrack(SoundIndex index, LeadIn leadIn, AVCodecID codec)
    : index_(std::move(index)), leadIn_(leadIn), isDelayed_(codec == AV_CODEC_ID_OPUS) {}

void CodedTrack::readFrom(std::shared_ptr<ByteFile const> file) {
    packets_ = std::make_unique<DirectSoundPackets>(std::move(file), index_);
}

void CodedTrack::readFrom(std::string const& path, size_t stream, std::vector<PacketTrace> traces) {
    packets_ = std::make_unique<DemuxedSoundPackets>(path, stream, std::move(traces));
}

bool CodedTrack::goesOnAt(int64_t first) {
    index_.kept().find(first, first + 1, runs_);
    if (runs_.empty() || first == 0) {
        return false;
    }
    uint32_t const wanted = index_.packetWith(runs_.front().decoded, nextWanted());
    return canGoOnTo(runs_.front(), leadOf(runs_.front(), wanted));
}

bool CodedTrack::canGoOnTo(SampleRun const& run, uint32_t lead) const {
    uint32_t const given = given_;
    return given != nothing && run.decoded >= heldFrom_ && lead <= given;
}

/// The packet to begin with for a run whose first sample lies in packet `wanted`.
uint32_t CodedTrack::leadOf(SampleRun const& run, uint32_t wanted) const {
    return leadIn_.startFor(wanted, index_, offsetIn(wanted, run));
}

uint32_t CodedTrack::offsetIn(uint32_t packet, SampleRun const& run) const {
    return static_cast<uint32_t>(std::max<int64_t>(run.decoded - index_.packet(packet).firstSample, 0));
}

/// The packet that a read in order begins with, or the one before.
uint32_t CodedTrack::nextWanted() const {
    uint32_t const given = given_;
    return given == nothing || given < 2 ? 0 : given - 2;
}

uint32_t CodedTrack::packetsFor(int64_t first, int64_t end) {
    index_.kept().find(first, end, runs_);
    return runs_.empty() ? 0 : endPacketFor(runs_.back(), nextWanted());
}

bool CodedTrack::giveNext(Bundle::Packet& packet, std::vector<uint8_t>& bytes) {
    uint32_t const number = given_;
    if (number >= index_.packetCount()) {
        return false;
    }
    bytes.clear();
    static_cast<void>(packets_->read(number, bytes));
    SoundPacket const& next = index_.packet(number);
    packet = {next.firstSample, next.sampleCount, number == 0, bytes};
    given_ = number + 1;
    return true;
}

/// The first sample is reached from the first packet on, as one who plays the file from its start does.
void CodedTrack::bundle(int64_t first, int64_t end, std::vector<uint8_t>& bytes) {
    BundleWriter writer(bytes);
    index_.kept().find(first, end, runs_);
    for (SampleRun const& run : runs_) {
        writer.addRun(run);
    }
    uint32_t const wanted = index_.packetWith(runs_.front().decoded, nextWanted());
    uint32_t const endPacket = endPacketFor(runs_.back(), wanted);
    uint32_t const lead = first == 0 ? 0 : leadOf(runs_.front(), wanted);
    bool const startsAnew = first == 0 || !canGoOnTo(runs_.front(), lead);
    uint32_t const from = startsAnew ? lead : given_.load();
    for (uint32_t number = from; number < endPacket; ++number) {
        SoundPacket const& packet = index_.packet(number);
        writer.beginPacket(packet.firstSample, packet.sampleCount, number == 0);
        static_cast<void>(packets_->read(number, bytes));
        writer.endPacket();
    }
    // Unless packets came along, another thread may be giving more at this moment.
    if (from < endPacket) {
        given_ = endPacket;
    }
    hold(startsAnew, wanted, runs_.front());
    writer.finish(startsAnew, endPacket == index_.packetCount(), heldFrom_);
}

/// What comes before the wanted sample after a start isn't right yet.
void CodedTrack::hold(bool startsAnew, uint32_t wanted, SampleRun const& first) {
    if (startsAnew) {
        heldFrom_ = index_.packet(wanted).firstSample + leadIn_.rightFrom(offsetIn(wanted, first));
    }
    heldFrom_ = std::max(heldFrom_, first.decoded - heldSamples);
}

/// One past the last packet that is needed; a decoder that holds back samples needs one more.
uint32_t CodedTrack::endPacketFor(SampleRun const& last, uint32_t wanted) const {
    uint32_t const end = index_.packetWith(last.decoded + last.count - 1, wanted) + 1;
    return std::min(isDelayed_ ? end + 1 : end, index_.packetCount());
}

}  // namespace playfile_ffmpeg
