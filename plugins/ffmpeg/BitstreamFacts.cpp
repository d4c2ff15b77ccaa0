#include "plugins/ffmpeg/BitstreamFacts.h"

#include <algorithm>
#include <array>

namespace playfile_ffmpeg {
namespace {

constexpr int h264SliceIdr = 5;
constexpr int h264DataPartitionA = 2;
constexpr int hevcLastSliceType = 31;
constexpr int hevcIdrWithLeading = 19;
constexpr int hevcIdrWithoutLeading = 20;
constexpr int hevcLastNonReferenceType = 14;
constexpr size_t avcLengthSizeAt = 4;
constexpr size_t hevcLengthSizeAt = 21;

/// Calls `take` with each unit (header included) until it answers false.
template <typename Take>
void forEachLengthPrefixed(size_t lengthByteCount, Bytes packet, Take take) {
    while (packet.size() > lengthByteCount) {
        size_t length = 0;
        for (size_t at = 0; at < lengthByteCount; ++at) {
            length = length << 8 | packet[at];
        }
        packet = packet.subspan(lengthByteCount);
        Bytes const unit = packet.first(std::min(length, packet.size()));
        if (!unit.empty() && !take(unit)) {
            return;
        }
        packet = packet.subspan(unit.size());
    }
}

template <typename Take>
void forEachStartCoded(Bytes packet, Take take) {
    static constexpr std::array<uint8_t, 3> startCode = {0, 0, 1};
    auto at = std::search(packet.begin(), packet.end(), startCode.begin(), startCode.end());
    while (packet.end() - at > static_cast<ptrdiff_t>(startCode.size())) {
        auto const unit = at + static_cast<ptrdiff_t>(startCode.size());
        at = std::search(unit, packet.end(), startCode.begin(), startCode.end());
        if (!take(Bytes(unit, at))) {
            return;
        }
    }
}

template <typename Take>
void forEachUnit(NalFraming const& framing, Bytes packet, Take take) {
    if (framing.lengthByteCount > 0) {
        forEachLengthPrefixed(framing.lengthByteCount, packet, take);
    } else {
        forEachStartCoded(packet, take);
    }
}

SliceFacts firstH264Slice(NalFraming const& framing, Bytes packet) {
    SliceFacts slice;
    forEachUnit(framing, packet, [&](Bytes unit) {
        int const type = unit[0] & 0x1f;
        bool const isSlice = type == 1 || type == h264DataPartitionA || type == h264SliceIdr;
        if (!isSlice || unit.size() < 2) {
            return true;
        }
        bool const isFirstOfPicture = (unit[1] & 0x80) != 0;  // first_mb_in_slice is coded as one set bit
        slice.pictureCount += isFirstOfPicture;
        if (slice.type < 0) {
            slice.type = type;
            slice.isReference = false;
        }
        slice.isReference = slice.isReference || (unit[0] & 0x60) != 0;
        return true;
    });
    return slice;
}

SliceFacts firstHevcSlice(NalFraming const& framing, Bytes packet) {
    SliceFacts slice;
    forEachUnit(framing, packet, [&](Bytes unit) {
        int const type = unit[0] >> 1 & 0x3f;
        if (type > hevcLastSliceType || unit.size() < 2) {
            return true;
        }
        slice.type = type;
        slice.temporalLayer = (unit[1] & 7) - 1;
        slice.isReference = type > hevcLastNonReferenceType || type % 2 != 0;
        slice.pictureCount = 1;
        return false;
    });
    return slice;
}

/// Reads the first bits of an uncompressed VP9 frame header.
bool isHiddenVp9Frame(Bytes frame) {
    if (frame.empty() || frame[0] >> 6 != 2) {
        return false;
    }
    int bit = 2;
    auto const next = [&] { return frame[0] >> (7 - bit++) & 1; };
    int const profileLow = next();
    int const profileHigh = next();
    if (profileLow == 1 && profileHigh == 1) {
        next();  // reserved
    }
    bool const showsExistingFrame = next() != 0;
    next();  // frame type
    bool const isShown = next() != 0;
    return !showsExistingFrame && !isShown;
}

/// A superframe ends with an index: marker, sizes of its frames, marker again.
bool isNeverShownVp9(Bytes packet) {
    uint8_t const marker = packet.back();
    size_t const frameCount = (marker & 7U) + 1;
    size_t const sizeBytes = (marker >> 3 & 3U) + 1;
    size_t const indexBytes = 2 + frameCount * sizeBytes;
    bool const isSuperframe = (marker & 0xe0) == 0xc0 && packet.size() >= indexBytes &&
                              packet[packet.size() - indexBytes] == marker;
    if (!isSuperframe) {
        return isHiddenVp9Frame(packet);
    }
    size_t sizeAt = packet.size() - indexBytes + 1;
    size_t frameAt = 0;
    for (size_t frame = 0; frame < frameCount; ++frame) {
        if (!isHiddenVp9Frame(packet.subspan(std::min(frameAt, packet.size())))) {
            return false;
        }
        for (size_t at = 0; at < sizeBytes; ++at) {
            frameAt += static_cast<size_t>(packet[sizeAt++]) << 8 * at;
        }
    }
    return true;
}

}  // namespace

NalFraming NalFraming::of(AVCodecID codec, Bytes configuration) {
    NalFraming framing;
    bool const isBox = !configuration.empty() && configuration[0] == 1;
    if (codec == AV_CODEC_ID_H264 && isBox && configuration.size() > avcLengthSizeAt) {
        framing.lengthByteCount = (configuration[avcLengthSizeAt] & 3U) + 1;
    }
    if (codec == AV_CODEC_ID_HEVC && isBox && configuration.size() > hevcLengthSizeAt) {
        framing.lengthByteCount = (configuration[hevcLengthSizeAt] & 3U) + 1;
        framing.temporalLayers = configuration[hevcLengthSizeAt] >> 3 & 7;
    }
    return framing;
}

SliceFacts firstSlice(AVCodecID codec, NalFraming const& framing, Bytes packet) {
    if (codec == AV_CODEC_ID_H264) {
        return firstH264Slice(framing, packet);
    }
    return codec == AV_CODEC_ID_HEVC ? firstHevcSlice(framing, packet) : SliceFacts{};
}

bool beginsCodedSequence(AVCodecID codec, SliceFacts const& slice) {
    if (codec == AV_CODEC_ID_H264) {
        return slice.type == h264SliceIdr;
    }
    return slice.type == hevcIdrWithLeading || slice.type == hevcIdrWithoutLeading;
}

bool isDisposable(AVCodecID codec, NalFraming const& framing, SliceFacts const& slice) {
    if (slice.type < 0 || slice.isReference) {
        return false;
    }
    return codec != AV_CODEC_ID_HEVC || slice.temporalLayer + 1 == framing.temporalLayers;
}

bool isNeverShown(AVCodecID codec, Bytes packet) {
    if (packet.empty()) {
        return false;
    }
    if (codec == AV_CODEC_ID_VP8) {
        return (packet[0] & 0x10) == 0;
    }
    return codec == AV_CODEC_ID_VP9 && isNeverShownVp9(packet);
}

}  // namespace playfile_ffmpeg
