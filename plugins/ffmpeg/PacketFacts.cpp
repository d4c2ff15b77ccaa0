#include "plugins/ffmpeg/PacketFacts.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace playfile_ffmpeg {
namespace {

/// Sorts packets for display: first by the stretch they belong to, then by time or order in it.
struct DisplayKey {
    int64_t stretch = 0;
    int64_t order = 0;
};

using Shown = std::vector<uint32_t>;
using Keys = std::vector<DisplayKey>;

bool isShown(PacketFacts const& packet) {
    return !packet.isCutOff && !packet.isHidden && !packet.isSecondField;
}

/// A new stretch begins where decoding time jumps back, as where recordings were strung together.
std::optional<Keys> keysByTime(std::vector<PacketFacts> const& facts, Shown const& shown) {
    Keys keys;
    keys.reserve(shown.size());
    int64_t stretch = 0;
    int64_t lastDts = AV_NOPTS_VALUE;
    for (uint32_t const index : shown) {
        PacketFacts const& packet = facts[index];
        if (packet.pts == AV_NOPTS_VALUE) {
            return std::nullopt;
        }
        if (packet.dts != AV_NOPTS_VALUE) {
            stretch += lastDts != AV_NOPTS_VALUE && packet.dts < lastDts;
            lastDts = packet.dts;
        }
        keys.push_back({stretch, packet.pts});
    }
    return keys;
}

std::optional<Keys> keysByPictureOrder(std::vector<PacketFacts> const& facts, Shown const& shown) {
    Keys keys;
    keys.reserve(shown.size());
    int64_t stretch = 0;
    for (uint32_t const index : shown) {
        PacketFacts const& packet = facts[index];
        if (!packet.hasPictureOrder) {
            return std::nullopt;
        }
        stretch += packet.beginsSequence;
        keys.push_back({stretch, packet.pictureOrder});
    }
    return keys;
}

/// Pictures that others refer to wait until the next of their kind arrives; the others don't wait.
std::optional<Keys> keysByPictureType(std::vector<PacketFacts> const& facts, Shown const& shown) {
    bool const hasBidirectional = std::any_of(shown.begin(), shown.end(), [&](uint32_t index) {
        return facts[index].picture == PacketFacts::ePicture::bidirectional;
    });
    if (!hasBidirectional) {
        return std::nullopt;
    }
    Keys keys(shown.size());
    int64_t next = 0;
    size_t waiting = shown.size();
    for (size_t at = 0; at < shown.size(); ++at) {
        if (facts[shown[at]].picture == PacketFacts::ePicture::bidirectional) {
            keys[at].order = next++;
            continue;
        }
        if (waiting < shown.size()) {
            keys[waiting].order = next++;
        }
        waiting = at;
    }
    if (waiting < shown.size()) {
        keys[waiting].order = next;
    }
    return keys;
}

std::vector<PacketEntry> entriesOf(std::vector<PacketFacts> const& facts) {
    std::vector<PacketEntry> entries(facts.size());
    std::transform(facts.begin(), facts.end(), entries.begin(), [](PacketFacts const& packet) {
        return PacketEntry{packet.position,       packet.pts == AV_NOPTS_VALUE ? packet.dts : packet.pts,
                           packet.byteCount,      packet.fingerprint,
                           PacketEntry::notShown, packet.isKey};
    });
    return entries;
}

/// Where a container keeps times of decoding only, the frames are shown at those times too, one after
/// the other.
void spreadTimes(std::vector<PacketEntry>& entries, Shown const& shown) {
    std::vector<int64_t> times(shown.size());
    std::transform(shown.begin(), shown.end(), times.begin(),
                   [&](uint32_t index) { return entries[index].pts; });
    std::sort(times.begin(), times.end());
    for (uint32_t const index : shown) {
        entries[index].pts = times[static_cast<size_t>(entries[index].frame)];
    }
}

std::optional<Keys> displayKeys(std::vector<PacketFacts> const& facts, Shown const& shown,
                                bool timesAreTrue) {
    std::optional<Keys> keys;
    if (timesAreTrue) {
        keys = keysByTime(facts, shown);
    }
    if (!keys) {
        keys = keysByPictureOrder(facts, shown);
    }
    return keys ? keys : keysByPictureType(facts, shown);
}

}  // namespace

bool codecReorders(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_H264:
        case AV_CODEC_ID_HEVC:
        case AV_CODEC_ID_MPEG1VIDEO:
        case AV_CODEC_ID_MPEG2VIDEO:
        case AV_CODEC_ID_MPEG4:
        case AV_CODEC_ID_MSMPEG4V3:
        case AV_CODEC_ID_VC1:
        case AV_CODEC_ID_WMV3:
        case AV_CODEC_ID_CAVS:
        case AV_CODEC_ID_AVS2:
        case AV_CODEC_ID_AVS3:
        case AV_CODEC_ID_DIRAC:
        case AV_CODEC_ID_RV30:
        case AV_CODEC_ID_RV40:
        case AV_CODEC_ID_SVQ3:
            return true;
        default:
            return false;
    }
}

bool isIntraCoded(AVCodecID codec) {
    AVCodecDescriptor const* const descriptor = avcodec_descriptor_get(codec);
    return descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_INTRA_ONLY) != 0;
}

std::vector<PacketEntry> numberFrames(std::vector<PacketFacts> const& facts, AVCodecID codec,
                                      bool timesAreTrue) {
    std::vector<PacketEntry> entries = entriesOf(facts);
    Shown shown;
    for (uint32_t index = 0; index < facts.size(); ++index) {
        if (isShown(facts[index])) {
            shown.push_back(index);
        }
    }
    std::vector<uint32_t> order(shown.size());
    std::iota(order.begin(), order.end(), 0U);
    if (codecReorders(codec)) {
        if (auto const keys = displayKeys(facts, shown, timesAreTrue)) {
            std::stable_sort(order.begin(), order.end(), [&](uint32_t left, uint32_t right) {
                DisplayKey const& a = (*keys)[left];
                DisplayKey const& b = (*keys)[right];
                return a.stretch != b.stretch ? a.stretch < b.stretch : a.order < b.order;
            });
        }
    }
    for (size_t frame = 0; frame < order.size(); ++frame) {
        entries[shown[order[frame]]].frame = static_cast<int32_t>(frame);
    }
    if (!timesAreTrue) {
        spreadTimes(entries, shown);
    }
    return entries;
}

}  // namespace playfile_ffmpeg
