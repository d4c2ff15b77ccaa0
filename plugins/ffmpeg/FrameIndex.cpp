#include "plugins/ffmpeg/FrameIndex.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {
namespace {

/// No coding reorders further; more than that comes from time stamps without sense.
constexpr uint32_t deepestReordering = 16;

}  // namespace

FrameIndex::FrameIndex(std::vector<PacketEntry> packets) : packets_(std::move(packets)) {
    rebuild();
}

void FrameIndex::rebuild() {
    packetOfFrame_.clear();
    size_t const shown = static_cast<size_t>(std::count_if(
        packets_.begin(), packets_.end(), [](PacketEntry const& entry) { return entry.frame >= 0; }));
    packetOfFrame_.resize(shown);
    for (uint32_t index = 0; index < packetCount(); ++index) {
        if (packets_[index].frame >= 0) {
            packetOfFrame_[static_cast<size_t>(packets_[index].frame)] = index;
        }
    }
    collectKeys();
    measureReordering();
}

/// A key that isn't shown stands where the first frame after it stands that isn't shown before it;
/// since only decoding order is known of it, that is the lowest number that follows.
void FrameIndex::collectKeys() {
    keys_.clear();
    isEveryPacketAKey_ = true;
    int64_t lowestFollowing = frameCount();
    for (uint32_t left = packetCount(); left-- > 0;) {
        PacketEntry const& entry = packets_[left];
        if (entry.frame >= 0) {
            lowestFollowing = std::min<int64_t>(lowestFollowing, entry.frame);
        }
        if (entry.isKey) {
            keys_.push_back({left, entry.frame >= 0 ? entry.frame : lowestFollowing});
        } else if (entry.frame >= 0) {
            isEveryPacketAKey_ = false;
        }
    }
    std::reverse(keys_.begin(), keys_.end());
}

/// For each frame: how many packets before it are shown after it.
void FrameIndex::measureReordering() {
    reorderDepth_ = 0;
    std::vector<int32_t> waiting;  // frames that came before their turn, ascending
    int32_t next = 0;
    for (PacketEntry const& entry : packets_) {
        if (entry.frame < 0) {
            continue;
        }
        waiting.insert(std::upper_bound(waiting.begin(), waiting.end(), entry.frame), entry.frame);
        auto const later = waiting.end() - std::upper_bound(waiting.begin(), waiting.end(), entry.frame);
        reorderDepth_ = std::max(reorderDepth_, static_cast<uint32_t>(later));
        if (reorderDepth_ > deepestReordering || waiting.size() > 4 * deepestReordering) {
            reorderDepth_ = deepestReordering;
            return;
        }
        while (!waiting.empty() && waiting.front() == next) {
            waiting.erase(waiting.begin());
            ++next;
        }
    }
}

uint32_t FrameIndex::startPacketFor(uint32_t frame) const {
    uint32_t const target = packetOfFrame_[frame];
    auto after = std::upper_bound(keys_.begin(), keys_.end(), target,
                                  [](uint32_t packet, KeyPacket const& key) { return packet < key.packet; });
    while (after != keys_.begin()) {
        --after;
        if (after->shownAt <= static_cast<int64_t>(frame)) {
            return after->packet;
        }
    }
    return 0;
}

uint32_t FrameIndex::keyBefore(uint32_t packet) const {
    auto const here = std::lower_bound(keys_.begin(), keys_.end(), packet,
                                       [](KeyPacket const& key, uint32_t at) { return key.packet < at; });
    return here == keys_.begin() ? 0 : std::prev(here)->packet;
}

uint32_t FrameIndex::endOfFrameAt(uint32_t packet) const {
    uint32_t end = packet + 1;
    while (end < packetCount() && packets_[end].frame < 0) {
        ++end;
    }
    return end;
}

void FrameIndex::takeKeyMark(uint32_t packet) {
    packets_[packet].isKey = false;
    isEveryPacketAKey_ = isEveryPacketAKey_ && packets_[packet].frame < 0;
    std::erase_if(keys_, [packet](KeyPacket const& key) { return key.packet == packet; });
}

void FrameIndex::hideFramesBefore(uint32_t frame) {
    for (PacketEntry& entry : packets_) {
        entry.frame = entry.frame < static_cast<int32_t>(frame) ? PacketEntry::notShown
                                                                : entry.frame - static_cast<int32_t>(frame);
    }
    rebuild();
}

}  // namespace playfile_ffmpeg
