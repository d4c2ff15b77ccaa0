#include "plugins/ffmpeg/LeadIn.h"

#include <algorithm>

#include "plugins/ffmpeg/SoundForm.h"

namespace playfile_ffmpeg {
namespace {

/// Speech coders and adaptive ones forget slowly.
constexpr int64_t slowSeconds = 2;
/// High-frequency reconstruction and long-term prediction.
constexpr uint32_t packetsOfExtendedAac = 16;

/// Opus predicts each band's energy from the packet before; after half a second nothing is left of it.
constexpr int64_t millisecondsOfOpusMusic = 500;
/// Of Opus configurations those below use linear prediction, alone or for the low bands.
constexpr int firstMusicConfiguration = 16;

/// A packet of MPEG layer 3 points back at most so far, and its header, check sum and side information
/// are that long at most.
constexpr uint32_t reservoirOfMpeg1 = 511;
constexpr uint32_t reservoirOfMpeg2 = 255;
constexpr uint32_t sideOfMpeg1 = 4 + 2 + 32;
constexpr uint32_t sideOfMpeg2 = 4 + 2 + 17;
constexpr uint32_t samplesOfMpeg1 = 1152;
/// Its packets have two granules. The second one overlaps with the first, and not with the packet before; and
/// the filter that joins the bands looks back by so many samples.
constexpr uint32_t samplesOfGranule = 576;
constexpr uint32_t samplesOfFilter = 480;
constexpr uint32_t mostReservoirPackets = 256;

bool isPlainAac(int profile, uint32_t packetSamples) {
    constexpr uint32_t longestPlainPacket = 1024;
    return (profile == FF_PROFILE_AAC_LOW || profile == FF_PROFILE_UNKNOWN) &&
           packetSamples <= longestPlainPacket;
}

}  // namespace

void LeadIn::take(AVPacket const& packet) {
    hasSpeech_ = hasSpeech_ || (codec_ == AV_CODEC_ID_OPUS && packet.size > 0 &&
                                packet.data[0] >> 3 < firstMusicConfiguration);
}

void LeadIn::settle(int profile, int sampleRate, uint32_t packetSamples) {
    switch (codec_) {
        case AV_CODEC_ID_FLAC:
        case AV_CODEC_ID_ALAC:
        case AV_CODEC_ID_TTA:
        case AV_CODEC_ID_WAVPACK:
        case AV_CODEC_ID_APE:
        case AV_CODEC_ID_MLP:
        case AV_CODEC_ID_TRUEHD:
        case AV_CODEC_ID_ADPCM_IMA_WAV:
        case AV_CODEC_ID_ADPCM_MS:
            break;
        case AV_CODEC_ID_MP1:
        case AV_CODEC_ID_MP2:
        case AV_CODEC_ID_AC3:
        case AV_CODEC_ID_EAC3:
        case AV_CODEC_ID_DTS:
        case AV_CODEC_ID_VORBIS:
        case AV_CODEC_ID_WMAV1:
        case AV_CODEC_ID_NELLYMOSER:
        case AV_CODEC_ID_SBC:
            packets_ = 1;
            break;
        case AV_CODEC_ID_WMAV2:
        case AV_CODEC_ID_WMAPRO:
            packets_ = 2;
            break;
        case AV_CODEC_ID_AAC:
        case AV_CODEC_ID_AAC_LATM:
            packets_ = isPlainAac(profile, packetSamples) ? 1 : packetsOfExtendedAac;
            break;
        case AV_CODEC_ID_MP3:
            packets_ = 1;
            settleReservoir(packetSamples);
            break;
        case AV_CODEC_ID_OPUS:
            samples_ = hasSpeech_ ? sampleRate * slowSeconds : sampleRate * millisecondsOfOpusMusic / 1000;
            break;
        default:
            samples_ = isPcm(codec_) ? 0 : sampleRate * slowSeconds;
            break;
    }
}

void LeadIn::settleReservoir(uint32_t packetSamples) {
    bool const isMpeg1 = packetSamples == samplesOfMpeg1;
    reservoirByteCount_ = isMpeg1 ? reservoirOfMpeg1 : reservoirOfMpeg2;
    sideByteCount_ = isMpeg1 ? sideOfMpeg1 : sideOfMpeg2;
    ownFrom_ = isMpeg1 ? samplesOfGranule + samplesOfFilter : nowhere;
}

uint32_t LeadIn::startFor(uint32_t number, SoundIndex const& index, uint32_t offset) const {
    uint32_t start = offset < ownFrom_ ? number - std::min(number, packets_) : number;
    if (samples_ > 0 && number > 0) {
        int64_t const before = index.packet(number).firstSample - samples_;
        start = std::min(start, index.packetWith(std::max<int64_t>(before, 0)));
    }
    if (reservoirByteCount_ > 0) {
        start = fillReservoir(start, index);
    }
    return index.startAtOrBefore(start);
}

/// The packet from which on all main data that packet `number` may point at is there.
uint32_t LeadIn::fillReservoir(uint32_t number, SoundIndex const& index) const {
    uint32_t held = 0;
    uint32_t const lowest = number - std::min(number, mostReservoirPackets);
    while (number > lowest && held < reservoirByteCount_) {
        uint32_t const byteCount = index.packet(--number).byteCount;
        held += byteCount - std::min(byteCount, sideByteCount_);
    }
    return number;
}

}  // namespace playfile_ffmpeg
