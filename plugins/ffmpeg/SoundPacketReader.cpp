#include "plugins/ffmpeg/SoundPacketReader.h"

#include <algorithm>

#include "plugins/ffmpeg/PacketScan.h"

namespace playfile_ffmpeg {
namespace {

constexpr int mostJumps = 4;
constexpr int64_t mostPacketBytes = int64_t{1} << 28;
constexpr int64_t windowByteCount = 16384;
constexpr int64_t firstWindowByteCount = 4096;

/// Packets with the same identity can't be told apart.
uint64_t identityOf(int64_t position, uint64_t byteCount, uint32_t fingerprint) {
    uint64_t const mixed = static_cast<uint64_t>(position) * 0x9e3779b97f4a7c15ULL ^ byteCount << 32;
    return mixed ^ fingerprint;
}

}  // namespace

DirectSoundPackets::DirectSoundPackets(std::shared_ptr<ByteFile const> file, SoundIndex const& index)
    : file_(std::move(file)), index_(index) {}

bool DirectSoundPackets::read(uint32_t number, std::vector<uint8_t>& bytes) {
    SoundPacket const& packet = index_.packet(number);
    int64_t const byteCount = packet.byteCount;
    bool const isInFile = packet.position >= 0 && byteCount <= mostPacketBytes &&
                          packet.position <= file_->byteCount() - byteCount;
    if (!isInFile) {
        return false;
    }
    int64_t const windowEnd = windowAt_ + static_cast<int64_t>(window_.size());
    bool const isThere = packet.position >= windowAt_ && packet.position + byteCount <= windowEnd;
    if (!isThere && !readAhead(number)) {
        return false;
    }
    uint8_t const* const first = window_.data() + (packet.position - windowAt_);
    bytes.insert(bytes.end(), first, first + byteCount);
    return true;
}

/// Reads the packet, and those that follow it in the file as far as the window goes; after a jump that is
/// a small one.
bool DirectSoundPackets::readAhead(uint32_t number) {
    SoundPacket const& first = index_.packet(number);
    bool const goesOn = first.position == windowAt_ + static_cast<int64_t>(window_.size());
    int64_t const reach = first.position + (goesOn ? windowByteCount : firstWindowByteCount);
    int64_t end = first.position + first.byteCount;
    for (uint32_t next = number + 1; next < index_.packetCount(); ++next) {
        SoundPacket const& packet = index_.packet(next);
        if (packet.position != end || end + packet.byteCount > reach) {
            break;
        }
        end += packet.byteCount;
    }
    windowAt_ = first.position;
    window_.resize(static_cast<size_t>(end - windowAt_));
    window_.resize(file_->readAt(windowAt_, window_.data(), window_.size()));
    return window_.size() >= first.byteCount;
}

DemuxedSoundPackets::DemuxedSoundPackets(std::string path, size_t stream, std::vector<PacketTrace> traces)
    : path_(std::move(path)), streamNumber_(stream), traces_(std::move(traces)), packet_(makePacket()) {}

bool DemuxedSoundPackets::read(uint32_t number, std::vector<uint8_t>& bytes) {
    bool const isMissing = !isMissing_.empty() && isMissing_[number];
    if (isMissing || (held_ != number && !readPacket(number))) {
        held_ = nowhere;
        isMissing_.resize(traces_.size());
        isMissing_[number] = true;
        return false;
    }
    held_ = number;
    bytes.insert(bytes.end(), packet_->data, packet_->data + packet_->size);
    return true;
}

bool DemuxedSoundPackets::readPacket(uint32_t number) {
    if (!container_ && !reopen()) {
        return false;
    }
    if (number == next_ && readNext()) {
        return true;
    }
    return goToAndRead(number) || (reopen() && readUpTo(number));
}

/// A jump may end behind the packet, or where nothing can be recognised before it, so the next one goes
/// further back.
bool DemuxedSoundPackets::goToAndRead(uint32_t number) {
    if (identities_.empty()) {
        rememberIdentities();
    }
    uint32_t from = number;
    for (int jump = 0; jump < mostJumps && from > 0; ++jump) {
        if (goTo(from) && readUpTo(number)) {
            return true;
        }
        from -= std::min(from, uint32_t{2} << (3 * jump));
    }
    return false;
}

/// By the place or time of the packet or, if it has none, of the last one before it that has.
bool DemuxedSoundPackets::goTo(uint32_t number) {
    next_ = nowhere;
    bool const byPlace = container_->seeksByPlace();
    auto const hasGoal = [&](PacketTrace const& trace) {
        return byPlace ? trace.position >= 0 : trace.pts != AV_NOPTS_VALUE;
    };
    while (number > 0 && !hasGoal(traces_[number])) {
        --number;
    }
    PacketTrace const& trace = traces_[number];
    if (!hasGoal(trace)) {
        return false;
    }
    return byPlace ? container_->goToPlace(trace.position)
                   : container_->goToTime(*container_->streams()[streamNumber_], trace.pts);
}

bool DemuxedSoundPackets::readUpTo(uint32_t number) {
    while (next_ == nowhere) {
        if (!fetch()) {
            return false;
        }
        uint32_t const found = recognise();
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
        if (!readNext()) {
            return false;
        }
    }
    return next_ == number && readNext();
}

/// Reading onward counts packets; what no longer fits makes the place unknown.
bool DemuxedSoundPackets::readNext() {
    uint32_t const expected = next_;
    next_ = nowhere;
    bool const fits = expected < traces_.size() && fetch() &&
                      static_cast<uint32_t>(packet_->size) == traces_[expected].byteCount;
    next_ = fits ? expected + 1 : nowhere;
    return fits;
}

bool DemuxedSoundPackets::fetch() {
    return container_->readPacket(*packet_) >= 0;
}

bool DemuxedSoundPackets::reopen() {
    std::string error;
    container_ = std::make_unique<SoundContainer>();
    if (!container_->open(path_, error) || container_->streams().size() <= streamNumber_) {
        container_.reset();
        return false;
    }
    container_->keepOnly(*container_->streams()[streamNumber_]);
    next_ = 0;
    return true;
}

void DemuxedSoundPackets::rememberIdentities() {
    identities_.reserve(traces_.size());
    for (uint32_t number = 0; number < traces_.size(); ++number) {
        PacketTrace const& trace = traces_[number];
        if (trace.position >= 0) {
            identities_.emplace_back(identityOf(trace.position, trace.byteCount, trace.fingerprint), number);
        }
    }
    std::sort(identities_.begin(), identities_.end());
}

uint32_t DemuxedSoundPackets::recognise() const {
    uint64_t const identity =
        identityOf(packet_->pos, static_cast<uint64_t>(packet_->size), fingerprintOf(*packet_));
    auto const found = std::lower_bound(identities_.begin(), identities_.end(), std::pair(identity, 0U));
    bool const isKnown = packet_->pos >= 0 && found != identities_.end() && found->first == identity;
    bool const isAmbiguous =
        isKnown && std::next(found) != identities_.end() && std::next(found)->first == identity;
    return isKnown && !isAmbiguous ? found->second : nowhere;
}

}  // namespace playfile_ffmpeg
