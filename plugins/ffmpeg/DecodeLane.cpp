#include "plugins/ffmpeg/DecodeLane.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {
namespace {

/// A key that lies this many packets ahead is reached by reading on; beyond, going there is faster.
constexpr uint32_t readOnPackets = 8;
/// So many jumps one after the other, and the next request is taken for a jump too.
constexpr uint32_t jumpsOfAPattern = 2;
/// A picture may need more than the key before it; the last attempt begins as far back as this.
constexpr uint32_t farBackPackets = 300;
/// Pictures that may come out after a missing one before it is given up.
constexpr uint32_t patienceFrames = 2;
/// More than any decoder holds; what was sent before that long ago never comes out.
constexpr size_t mostFramesInDecoder = 128;
/// No frame is coded behind one that is shown so many frames after it.
constexpr uint32_t farthestReordering = 16;
/// Packets of a damaged beginning that are tried for a first picture.
constexpr uint32_t mostLeadingPackets = 300;

/// The picture with its time instead of its packet's number.
PicturePtr withTime(AvPtr<AVFrame> frame, int64_t pts) {
    frame->pts = pts;
    return PicturePtr(frame.release(), [](AVFrame const* picture) {
        AVFrame* owned = const_cast<AVFrame*>(picture);
        av_frame_free(&owned);
    });
}

}  // namespace

DecodeLane::DecodeLane(FrameIndex& index, PacketReader& reader, std::unique_ptr<FrameDecoder> decoder,
                       NalFraming framing)
    : index_(index),
      reader_(reader),
      decoder_(std::move(decoder)),
      codec_(decoder_->context().codec_id),
      framing_(framing),
      packet_(makePacket()) {}

PicturePtr DecodeLane::fetch(uint32_t wanted, Keep const& keep, PictureStore& store) {
    bool const isJump = !leadsTo(wanted);
    jumpsInARow_ = isJump ? jumpsInARow_ + 1 : 0;
    Walk const goal{wanted, keep, jumpsInARow_ > jumpsOfAPattern};
    PicturePtr picture = !isJump ? walk(goal, store) : walkFrom(index_.startPacketFor(wanted), goal, store);
    uint32_t const start = std::min(startedAt_, index_.startPacketFor(wanted));
    if (!picture && startedAt_ > 0) {
        bool const hasBegunThere = isJump && startedAt_ == start;
        picture = walkFrom(index_.keyBefore(start), goal, store);
        if (picture && hasBegunThere) {
            index_.takeKeyMark(start);
        }
    }
    if (!picture && startedAt_ > 0) {
        picture = walkFrom(index_.keyBefore(start - std::min(start, farBackPackets)), goal, store);
    }
    if (hasDropped_ && decoder_->errorCount() > errorsAtStart_) {
        mayDrop_ = false;
        store.clear();
        picture = walkFrom(startedAt_, goal, store);
    }
    lastFetched_ = wanted;
    return picture;
}

/// A container may mark a packet as a key that isn't one. Its picture gives it away; then it is no
/// longer counted as a key, and decoding begins at the key before.
PicturePtr DecodeLane::walkFrom(uint32_t packet, Walk const& goal, PictureStore& store) {
    restartAt(packet);
    PicturePtr picture = walk(goal, store);
    while (hasFalseStart_ && startedAt_ > 0) {
        index_.takeKeyMark(startedAt_);
        restartAt(index_.keyBefore(startedAt_));
        picture = walk(goal, store);
    }
    return picture;
}

PicturePtr DecodeLane::fetchFirst(uint32_t& frame) {
    PictureStore unused;
    restartAt(0);
    while (next_ < mostLeadingPackets && !decoder_->hasEnded()) {
        uint32_t number = 0;
        if (AvPtr<AVFrame> picture = decoder_->receive(number)) {
            if (number < index_.packetCount() && index_.packet(number).frame >= 0) {
                frame = static_cast<uint32_t>(index_.packet(number).frame);
                lastFetched_ = frame;
                std::erase(inDecoder_, frame);
                return finish(std::move(picture), number);
            }
            continue;
        }
        if (next_ < index_.packetCount()) {
            feedNext({0, {}});
        } else if (!decoder_->hasEnded()) {
            decoder_->drain();
        }
    }
    return nullptr;
}

PicturePtr DecodeLane::fetchFirstAlone() {
    restartAt(0);
    decoder_->expectMore();
    uint32_t const end = index_.endOfFrameAt(0);
    for (uint32_t number = 0; number < end; ++number) {
        if (!reader_.read(number, *packet_)) {
            return nullptr;
        }
        firstPackets_.emplace_back(av_packet_clone(packet_.get()));
        packet_->flags |= AV_PKT_FLAG_KEY;
        decoder_->send(*packet_, number, false);
    }
    decoder_->drain();
    uint32_t number = 0;
    AvPtr<AVFrame> frame = decoder_->receive(number);
    isRunning_ = false;
    lastFetched_ = 0;
    bool const isWhole = decoder_->errorCount() == errorsAtStart_;
    return frame && number == 0 && isWhole ? finish(std::move(frame), 0) : nullptr;
}

/// Whether the decoder stands where reading on brings the frame, whole and no slower than a new start.
bool DecodeLane::leadsTo(uint32_t wanted) const {
    uint32_t const start = index_.startPacketFor(wanted);
    if (!isRunning_ || start < startedAt_) {
        return false;
    }
    if (std::find(inDecoder_.begin(), inDecoder_.end(), wanted) != inDecoder_.end()) {
        return true;
    }
    if (isDrained_ || index_.packetOf(wanted) < next_) {
        return false;
    }
    return wanted == lastFetched_ + 1 || start <= next_ + readOnPackets;
}

void DecodeLane::restartAt(uint32_t packet) {
    decoder_->reset();
    inDecoder_.clear();
    isRunning_ = true;
    isDropping_ = false;
    hasFalseStart_ = false;
    hasSeenStart_ = false;
    isDrained_ = false;
    hasDropped_ = false;
    errorsAtStart_ = decoder_->errorCount();
    startedAt_ = packet;
    next_ = packet;
}

/// Somebody who jumps about won't read on from here: then nothing after the wanted picture is decoded,
/// at the price that the decoder can't go on.
PicturePtr DecodeLane::walk(Walk const& goal, PictureStore& store) {
    uint32_t const end = goal.endsThere ? endOf(goal) : index_.packetCount();
    for (;;) {
        uint32_t number = 0;
        if (AvPtr<AVFrame> frame = decoder_->receive(number)) {
            bool hasPassed = false;
            if (PicturePtr picture = sift(std::move(frame), number, goal, store, hasPassed)) {
                return picture;
            }
            if (hasPassed || hasFalseStart_) {
                return nullptr;
            }
        } else if (decoder_->hasEnded()) {
            isRunning_ = false;
            return nullptr;
        } else if (next_ < end && !isDrained_) {
            feedNext(goal);
        } else {
            decoder_->drain();
            isDrained_ = true;
        }
    }
}

/// One past the last packet of the wanted frame and of those that are wanted before it, of which some may be
/// coded after it.
uint32_t DecodeLane::endOf(Walk const& goal) const {
    uint32_t end = 0;
    uint32_t const nearest = goal.wanted - std::min(goal.wanted, farthestReordering);
    for (uint32_t frame = std::min(std::max(goal.keep.wantedFrom, nearest), goal.wanted);
         frame <= goal.wanted; ++frame) {
        end = std::max(end, index_.endOfFrameAt(index_.packetOf(frame)));
    }
    return end;
}

/// Keeps what is of use; answers the wanted picture if this is it.
PicturePtr DecodeLane::sift(AvPtr<AVFrame> frame, uint32_t number, Walk const& goal, PictureStore& store,
                            bool& hasPassed) {
    if (isFalseStart(*frame, number)) {
        hasFalseStart_ = true;
        isRunning_ = false;
        return nullptr;
    }
    int32_t const shown = number < index_.packetCount() ? index_.packet(number).frame : PacketEntry::notShown;
    if (shown < 0) {
        return nullptr;
    }
    uint32_t const shownFrame = static_cast<uint32_t>(shown);
    std::erase(inDecoder_, shownFrame);
    bool const isOfUse = shownFrame >= goal.keep.first || shownFrame >= goal.wanted;
    if (!isOfUse || !isCertain(shownFrame)) {
        return nullptr;
    }
    PicturePtr picture = finish(std::move(frame), number);
    if (shownFrame != goal.wanted) {
        store.put(shownFrame, std::move(picture), goal.wanted);
        hasPassed = shownFrame > goal.wanted + index_.reorderDepth() + patienceFrames;
        return nullptr;
    }
    return picture;
}

/// What a key begins with is no predicted picture; only bidirectional ones may come out before it.
bool DecodeLane::isFalseStart(AVFrame const& frame, uint32_t number) {
    bool const isOfStart = number == startedAt_;
    bool const comesFirst = isOfStart || (!hasSeenStart_ && frame.pict_type == AV_PICTURE_TYPE_P);
    hasSeenStart_ = hasSeenStart_ || isOfStart;
    return startedAt_ > 0 && comesFirst && isPredicted(frame);
}

void DecodeLane::feedNext(Walk const& goal) {
    uint32_t const number = next_++;
    PacketEntry const& entry = index_.packet(number);
    if (!readPacket(number)) {
        decoder_->countError();
        return;
    }
    bool const mayDrop = isDroppable(entry, goal);
    if (mayDrop && codec_ == AV_CODEC_ID_HEVC) {
        return;
    }
    if (inDecoder_.size() > mostFramesInDecoder) {
        inDecoder_.erase(inDecoder_.begin());
    }
    if (entry.frame >= 0 && !mayDrop) {
        inDecoder_.push_back(static_cast<uint32_t>(entry.frame));
    }
    if (entry.isKey) {
        packet_->flags |= AV_PKT_FLAG_KEY;
    }
    decoder_->send(*packet_, number, mayDrop);
}

bool DecodeLane::readPacket(uint32_t number) {
    if (number < firstPackets_.size() && firstPackets_[number]) {
        av_packet_unref(packet_.get());
        return av_packet_ref(packet_.get(), firstPackets_[number].get()) >= 0;
    }
    return reader_.read(number, *packet_);
}

/// The second field of a frame goes the way of the first. Most decoders see for themselves whether a
/// picture is referred to; that of HEVC doesn't look.
bool DecodeLane::isDroppable(PacketEntry const& entry, Walk const& goal) {
    if (entry.frame >= 0) {
        uint32_t const frame = static_cast<uint32_t>(entry.frame);
        isDropping_ = mayDrop_ && frame < goal.wanted && frame < goal.keep.wantedFrom;
        hasDropped_ = hasDropped_ || isDropping_;
    }
    if (isDropping_ && codec_ == AV_CODEC_ID_HEVC) {
        Bytes const bytes(packet_->data, static_cast<size_t>(packet_->size));
        return isDisposable(codec_, framing_, firstSlice(codec_, framing_, bytes));
    }
    return isDropping_;
}

PicturePtr DecodeLane::finish(AvPtr<AVFrame> frame, uint32_t number) const {
    return withTime(std::move(frame), index_.packet(number).pts);
}

IntraLane::IntraLane(FrameIndex const& index, PacketReader& reader, std::unique_ptr<FrameDecoder> decoder)
    : index_(index), reader_(reader), decoder_(std::move(decoder)), packet_(makePacket()) {}

PicturePtr IntraLane::fetch(uint32_t wanted) {
    uint32_t const first = index_.packetOf(wanted);
    uint32_t const end = index_.endOfFrameAt(first);
    for (uint32_t number = first; number < end; ++number) {
        if (reader_.read(number, *packet_)) {
            packet_->flags |= AV_PKT_FLAG_KEY;
            decoder_->send(*packet_, number, false);
        }
    }
    AvPtr<AVFrame> frame = receive(first);
    if (!frame) {
        decoder_->drain();
        frame = receive(first);
        decoder_->reset();
    }
    return frame ? withTime(std::move(frame), index_.packet(first).pts) : nullptr;
}

/// The picture of packet `wanted`; what else the decoder holds is of no use.
AvPtr<AVFrame> IntraLane::receive(uint32_t wanted) {
    AvPtr<AVFrame> found;
    uint32_t number = 0;
    while (AvPtr<AVFrame> frame = decoder_->receive(number)) {
        if (number == wanted) {
            found = std::move(frame);
        }
    }
    return found;
}

}  // namespace playfile_ffmpeg
