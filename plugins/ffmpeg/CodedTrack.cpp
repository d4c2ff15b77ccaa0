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

bool CodedTrack::goesOnAt(int64_t first) const {
    std::vector<SampleRun> const runs = index_.kept().within(first, first + 1);
    if (given_ == nothing || first == 0 || runs.empty() || runs.front().decoded < heldFrom_) {
        return false;
    }
    return leadIn_.startFor(index_.packetWith(runs.front().decoded), index_) <= given_;
}

void CodedTrack::bundle(int64_t first, int64_t end, std::vector<uint8_t>& bytes) {
    BundleWriter writer(bytes);
    bool const startsAnew = !goesOnAt(first);
    std::vector<SampleRun> const runs = index_.kept().within(first, end);
    for (SampleRun const& run : runs) {
        writer.addRun(run);
    }
    uint32_t const wanted = runs.empty() ? 0 : index_.packetWith(runs.front().decoded);
    uint32_t const endPacket = runs.empty() ? 0 : endPacketFor(runs.back().decoded + runs.back().count);
    uint32_t const lead = first == 0 ? 0 : leadIn_.startFor(wanted, index_);
    for (uint32_t number = startsAnew ? lead : given_; number < endPacket; ++number) {
        SoundPacket const& packet = index_.packet(number);
        writer.beginPacket(packet.firstSample, packet.sampleCount, number == 0);
        static_cast<void>(packets_->read(number, bytes));
        writer.endPacket();
    }
    given_ = startsAnew ? endPacket : std::max(given_, endPacket);
    hold(startsAnew, wanted, runs);
    writer.finish(startsAnew, endPacket == index_.packetCount(), heldFrom_);
}

/// What the packets before the wanted one give after a start isn't right yet.
void CodedTrack::hold(bool startsAnew, uint32_t wanted, std::vector<SampleRun> const& runs) {
    if (startsAnew) {
        heldFrom_ = index_.packet(wanted).firstSample;
    }
    if (!runs.empty()) {
        heldFrom_ = std::max(heldFrom_, runs.front().decoded - heldSamples);
    }
}

/// One past the last packet that is needed; a decoder that holds back samples needs one more.
uint32_t CodedTrack::endPacketFor(int64_t decodedEnd) const {
    uint32_t const end = index_.packetWith(decodedEnd - 1) + 1;
    return std::min(isDelayed_ ? end + 1 : end, index_.packetCount());
}

}  // namespace playfile_ffmpeg
