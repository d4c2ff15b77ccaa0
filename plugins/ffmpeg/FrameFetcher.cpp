#include "plugins/ffmpeg/FrameFetcher.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "plugins/ffmpeg/MovSampleTables.h"

namespace playfile_ffmpeg {
namespace {

/// So many frames asked for one after the other make a run, for which a decoder that works ahead pays.
constexpr uint32_t framesOfARun = 2;
/// Intra-coded frames of a damaged beginning that are tried for a first picture.
constexpr uint32_t mostLeadingFrames = 32;

/// Of the first picture of a file that nobody has read yet, to be kept without a decoder: hundreds of clips
/// may be opened ahead, and what they are opened for is that picture.
constexpr size_t mostFirstPictureBytes = size_t{1} << 20;

NalFraming framingOf(AVCodecParameters const& parameters) {
    return NalFraming::of(parameters.codec_id,
                          Bytes(parameters.extradata, static_cast<size_t>(parameters.extradata_size)));
}

/// A stream without container has no times; each frame gets the time that its number means.
void countTimes(std::vector<PacketEntry>& packets, StreamFacts& facts, AVRational rate) {
    facts.timeBase = av_inv_q(rate);
    for (PacketEntry& packet : packets) {
        packet.pts = packet.frame;
    }
}

}  // namespace

std::unique_ptr<FrameFetcher> FrameFetcher::open(std::string const& path, std::string& error) {
    std::unique_ptr<FrameFetcher> fetcher(new FrameFetcher);
    if (!fetcher->build(path, error) || !fetcher->showFirst(error)) {
        return nullptr;
    }
    return fetcher;
}

bool FrameFetcher::build(std::string const& path, std::string& error) {
    file_ = std::make_shared<ByteFile>();
    auto container = std::make_unique<OpenContainer>();
    if (!file_->open(path, error) || !container->open(path, error)) {
        return false;
    }
    parameters_.reset(avcodec_parameters_alloc());
    if (!parameters_ || avcodec_parameters_copy(parameters_.get(), &container->videoParameters()) < 0) {
        error = "no memory";
        return false;
    }
    facts_ = factsOf(container->format(), container->video());
    if (container->isFormat("mov") &&
        MovSampleTables::lieElsewhere(*file_, static_cast<uint32_t>(container->video().id))) {
        error = "names another file that holds its pictures";
        return false;
    }
    BuiltIndex const built = buildIndex(*container, *file_);
    std::vector<PacketEntry> packets = numberFrames(built.packets, parameters_->codec_id, built.timesAreTrue);
    bool const isRaw = container->isRawStream();
    AVStream const& video = container->video();
    AVRational const stated = isRaw ? video.r_frame_rate : video.avg_frame_rate;
    if (isRaw && stated.num > 0 && stated.den > 0) {
        countTimes(packets, facts_, stated);
    }
    index_ = FrameIndex(std::move(packets));
    if (index_.frameCount() == 0) {
        error = "holds no frames";
        return false;
    }
    wasScanned_ = built.isScanned;
    isIntraCoded_ = isIntraCoded(parameters_->codec_id);
    hasFrameThreads_ = FrameDecoder::hasFrameThreads(parameters_->codec_id);
    measureRates(facts_, index_, stated, container->keepsExactTimes());
    makeReader(std::move(container), built);
    return true;
}

void FrameFetcher::makeReader(std::unique_ptr<OpenContainer> container, BuiltIndex const& built) {
    if (built.liesInFile) {
        reader_ = std::make_unique<DirectPacketReader>(file_, index_);
    } else {
        reader_ = std::make_unique<DemuxedPacketReader>(std::move(container), index_);
    }
}

/// What is shown before the first picture that decodes isn't shown at all: pictures that lead a first
/// key and refer to what was cut off. If the key itself is damaged, its number stays, without a picture.
bool FrameFetcher::showFirst(std::string& error) {
    if (index_.isEveryPacketAKey()) {
        return showFirstIntra(error);
    }
    bool const beginsWithItsKey = index_.packet(0).isKey && index_.packet(0).frame == 0;
    DecodeLane* lane = linear(beginsWithItsKey ? FrameDecoder::eThreading::onePicture
                                               : FrameDecoder::eThreading::throughput);
    uint32_t frame = 0;
    PicturePtr picture;
    if (lane != nullptr && beginsWithItsKey) {
        picture = lane->fetchFirstAlone();
    }
    if (lane != nullptr && !picture) {
        picture = lane->fetchFirst(frame);
    }
    if (!picture) {
        error = std::string("no frame of its video can be decoded (") + facts_.codec + ")";
        return false;
    }
    if (frame > 0 && frame <= index_.firstKeyFrame()) {
        index_.hideFramesBefore(frame);
        frame = 0;
    }
    addPictureFacts(facts_, *picture, lane->decoder().context());
    store_.put(frame, std::move(picture), frame);
    return true;
}

bool FrameFetcher::showFirstIntra(std::string& error) {
    IntraLane* lane = intra();
    uint32_t const tried = lane != nullptr ? std::min(frameCount(), mostLeadingFrames) : 0;
    for (uint32_t frame = 0; frame < tried; ++frame) {
        if (PicturePtr picture = lane->fetch(frame)) {
            addPictureFacts(facts_, *picture, lane->decoder().context());
            store_.put(frame, std::move(picture), frame);
            return true;
        }
    }
    error = std::string("no frame of its video can be decoded (") + facts_.codec + ")";
    return false;
}

PicturePtr FrameFetcher::fetch(uint32_t frame) {
    uint32_t const from = keepFrom(frame);
    return fetch(frame, {from, from, UINT32_MAX});
}

PicturePtr FrameFetcher::fetch(uint32_t frame, Keep const& keep) {
    if (frame >= frameCount() || isMissing(frame)) {
        return nullptr;
    }
    onwardRun_ = frame == lastFrame_ + 1 ? onwardRun_ + 1 : 0;
    PicturePtr picture = obtain(frame, keep);
    lastFrame_ = frame;
    if (!picture) {
        isUndecodable_.resize(frameCount());
        isUndecodable_[frame] = true;
    }
    return picture;
}

PicturePtr FrameFetcher::obtain(uint32_t frame, Keep const& keep) {
    PicturePtr picture = store_.find(frame);
    storeHits_ += picture != nullptr;
    return picture ? picture : decode(frame, keep);
}

PicturePtr FrameFetcher::decode(uint32_t frame, Keep const& keep) {
    store_.keepOnly(keep.first, keep.last);
    PicturePtr picture;
    bool const isRun = onwardRun_ >= framesOfARun && hasFrameThreads_;
    if (index_.isEveryPacketAKey() && !isRun) {
        picture = decodeAlone(frame);
    }
    bool const mayNeedOthers = !(isIntraCoded_ && index_.isEveryPacketAKey());
    if (!picture && (isRun || mayNeedOthers)) {
        DecodeLane* lane = linear();
        if (lane == nullptr) {
            throw std::runtime_error("its decoder can't be opened");
        }
        picture = lane->fetch(frame, keep, store_);
    }
    if (picture) {
        store_.put(frame, picture, frame);
    }
    return picture;
}

/// A container may mark every packet as a key though many aren't: a picture that is predicted from others
/// gives that away, and isn't one to be shown.
PicturePtr FrameFetcher::decodeAlone(uint32_t frame) {
    IntraLane* lane = intra();
    PicturePtr picture = lane != nullptr ? lane->fetch(frame) : nullptr;
    if (picture && isPredicted(*picture)) {
        index_.takeKeyMark(index_.packetOf(frame));
        return nullptr;
    }
    return picture;
}

/// Somebody who steps back will ask for the frames before next; they come out on the way anyhow.
uint32_t FrameFetcher::keepFrom(uint32_t frame) const {
    int64_t const reach = static_cast<int64_t>(store_.capacity()) - 2;
    bool const stepsBack = frame < lastFrame_ && lastFrame_ - frame <= reach;
    return stepsBack ? static_cast<uint32_t>(std::max<int64_t>(0, frame - reach)) : frame;
}

DecodeLane* FrameFetcher::linear(FrameDecoder::eThreading threading) {
    if (!linear_) {
        std::string error;
        auto decoder = FrameDecoder::open(*parameters_, index_.reorderDepth(), threading, error);
        if (decoder) {
            linear_ =
                std::make_unique<DecodeLane>(index_, *reader_, std::move(decoder), framingOf(*parameters_));
        }
    }
    return linear_.get();
}

IntraLane* FrameFetcher::intra() {
    if (!intra_) {
        std::string error;
        auto decoder = FrameDecoder::open(*parameters_, 0, FrameDecoder::eThreading::lowLatency, error);
        if (decoder) {
            intra_ = std::make_unique<IntraLane>(index_, *reader_, std::move(decoder));
        }
    }
    return intra_.get();
}

bool FrameFetcher::isMissing(uint32_t frame) const {
    bool const isKnownUndecodable = !isUndecodable_.empty() && isUndecodable_[frame];
    return isKnownUndecodable || reader_->isMissing(index_.packetOf(frame));
}

void FrameFetcher::shrinkStore() {
    store_.shrink(static_cast<uint32_t>(std::max<int64_t>(lastFrame_, 0)));
}

bool FrameFetcher::readPacket(uint32_t frame, AVPacket& packet) {
    return frame < frameCount() && reader_->read(index_.packetOf(frame), packet);
}

void FrameFetcher::closeDecoders() {
    decodedBefore_ = counters().framesDecoded;
    linear_ = nullptr;
    intra_ = nullptr;
    bool const isUnread = lastFrame_ < 0;
    if (!isUnread || store_.largestPicture() > mostFirstPictureBytes) {
        store_.clear();
    }
}

FrameFetcher::Counters FrameFetcher::counters() const {
    Counters counters;
    counters.seeks = reader_->seekCount();
    counters.packetsRead = reader_->readCount();
    counters.framesDecoded = decodedBefore_ + (linear_ ? linear_->decoder().decodedCount() : 0) +
                             (intra_ ? intra_->decoder().decodedCount() : 0);
    counters.storeHits = storeHits_;
    return counters;
}

}  // namespace playfile_ffmpeg
