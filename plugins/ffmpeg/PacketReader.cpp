#include "plugins/ffmpeg/PacketReader.h"

#include <algorithm>
#include <limits>

#include "plugins/ffmpeg/PacketScan.h"

namespace playfile_ffmpeg {
namespace {

constexpr int mostSeekAttempts = 4;
constexpr int64_t largestPacket = std::numeric_limits<int>::max() - AV_INPUT_BUFFER_PADDING_SIZE;

/// Packets with the same identity can't be told apart; a container numbers all but those by place.
uint64_t identityOf(int64_t position, uint64_t byteCount, uint32_t fingerprint) {
    uint64_t const mixed = static_cast<uint64_t>(position) * 0x9e3779b97f4a7c15ULL ^ byteCount << 32;
    return mixed ^ fingerprint;
}

}  // namespace

bool PacketReader::read(uint32_t number, AVPacket& packet) {
    ++readCount_;
    return readPacket(number, packet);
}

bool PacketReader::isMissing(uint32_t) const {
    return false;
}

DirectPacketReader::DirectPacketReader(std::shared_ptr<ByteFile const> file, FrameIndex const& index)
    : file_(std::move(file)), index_(index) {}

bool DirectPacketReader::readPacket(uint32_t number, AVPacket& packet) {
    if (number != following_) {
        countSeek();
    }
    following_ = number + 1;
    PacketEntry const& entry = index_.packet(number);
    bool const isInFile = entry.position >= 0 && entry.position < file_->byteCount();
    int64_t const there =
        isInFile ? std::min<int64_t>(file_->byteCount() - entry.position, entry.byteCount) : 0;
    av_packet_unref(&packet);
    if (there <= 0 || there > largestPacket || av_new_packet(&packet, static_cast<int>(there)) < 0) {
        return false;
    }
    size_t const got = file_->readAt(entry.position, packet.data, static_cast<size_t>(there));
    av_shrink_packet(&packet, static_cast<int>(got));
    if (got < entry.byteCount) {
        packet.flags |= AV_PKT_FLAG_CORRUPT;
    }
    packet.pos = entry.position;
    return got > 0;
}

bool DirectPacketReader::isMissing(uint32_t number) const {
    return index_.packet(number).position >= file_->byteCount();
}

DemuxedPacketReader::DemuxedPacketReader(std::unique_ptr<OpenContainer> container, FrameIndex const& index)
    : container_(std::move(container)), index_(index) {}

bool DemuxedPacketReader::readPacket(uint32_t number, AVPacket& packet) {
    if (!container_) {
        return false;
    }
    if (number == next_ && readNext(packet)) {
        return true;
    }
    if (identities_.empty()) {
        rememberIdentities();
    }
    uint32_t from = number;
    for (int attempt = 0; attempt < mostSeekAttempts && from > 0; ++attempt) {
        if (goToBefore(from) && readUpTo(number, packet)) {
            return true;
        }
        uint32_t const back = uint32_t{1} << (3 * attempt);
        from = index_.keyBefore(from);
        from -= std::min(from, back);
    }
    return (goToStart() && readUpTo(number, packet)) || (reopen() && readUpTo(number, packet));
}

/// Reading onward counts packets; what no longer fits the index makes the place unknown.
bool DemuxedPacketReader::readNext(AVPacket& packet) {
    uint32_t const expected = next_;
    next_ = nowhere;
    if (container_->readVideoPacket(packet) < 0) {
        return false;
    }
    PacketEntry const& entry = index_.packet(expected);
    bool const isScanned = entry.byteCount != 0;
    bool const fits =
        isScanned ? static_cast<uint32_t>(packet.size) == entry.byteCount : packet.pts == entry.pts;
    if (fits && expected + 1 < index_.packetCount()) {
        next_ = expected + 1;
    }
    return fits;
}

bool DemuxedPacketReader::readUpTo(uint32_t number, AVPacket& packet) {
    next_ = nowhere;
    while (next_ == nowhere) {
        if (container_->readVideoPacket(packet) < 0) {
            return false;
        }
        uint32_t const found = recognise(packet);
        if (found != nowhere && found > number) {
            return false;
        }
        if (found != nowhere) {
            next_ = found + 1;
            if (found == number) {
                return true;
            }
        }
    }
    while (next_ < number) {
        if (!readNext(packet)) {
            return false;
        }
    }
    return next_ == number && readNext(packet);
}

bool DemuxedPacketReader::goToBefore(uint32_t number) {
    PacketEntry const& entry = index_.packet(number);
    int const stream = container_->video().index;
    bool const seeksByPlace =
        (container_->format().iformat->flags & AVFMT_TS_DISCONT) != 0 && entry.position >= 0;
    countSeek();
    if (seeksByPlace) {
        return container_->seek(stream, entry.position, AVSEEK_FLAG_BYTE);
    }
    return entry.pts != AV_NOPTS_VALUE && container_->seek(stream, entry.pts, AVSEEK_FLAG_BACKWARD);
}

bool DemuxedPacketReader::goToStart() {
    bool const seeksByPlace = (container_->format().iformat->flags & AVFMT_NO_BYTE_SEEK) == 0;
    countSeek();
    if (seeksByPlace && container_->seek(-1, 0, AVSEEK_FLAG_BYTE)) {
        return true;
    }
    return container_->seek(container_->video().index, std::numeric_limits<int64_t>::min() / 2,
                            AVSEEK_FLAG_BACKWARD);
}

bool DemuxedPacketReader::reopen() {
    std::string error;
    countSeek();
    if (!container_->reopen(error)) {
        container_.reset();
    }
    return container_ != nullptr;
}

void DemuxedPacketReader::rememberIdentities() {
    identities_.reserve(index_.packetCount());
    for (uint32_t number = 0; number < index_.packetCount(); ++number) {
        PacketEntry const& entry = index_.packet(number);
        bool const isScanned = entry.byteCount != 0;
        identities_.emplace_back(isScanned ? identityOf(entry.position, entry.byteCount, entry.fingerprint)
                                           : identityOf(entry.pts, 0, 0),
                                 number);
    }
    std::sort(identities_.begin(), identities_.end());
}

uint32_t DemuxedPacketReader::recognise(AVPacket const& packet) const {
    bool const isScanned = index_.packet(0).byteCount != 0;
    uint64_t const identity =
        isScanned ? identityOf(packet.pos, static_cast<uint64_t>(packet.size), fingerprintOf(packet))
                  : identityOf(packet.pts, 0, 0);
    auto const found = std::lower_bound(identities_.begin(), identities_.end(), std::pair(identity, 0U));
    bool const isKnown = found != identities_.end() && found->first == identity;
    bool const isAmbiguous =
        isKnown && std::next(found) != identities_.end() && std::next(found)->first == identity;
    return isKnown && !isAmbiguous ? found->second : nowhere;
}

}  // namespace playfile_ffmpeg
