#include "plugins/ffmpeg/PacketScan.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {
namespace {

constexpr size_t fingerprintedByteCount = 64;

Bytes bytesOf(AVPacket const& packet) {
    return Bytes(packet.data, static_cast<size_t>(packet.size));
}

PacketFacts::ePicture pictureOf(int type) {
    switch (type) {
        case AV_PICTURE_TYPE_B:
            return PacketFacts::ePicture::bidirectional;
        case AV_PICTURE_TYPE_NONE:
            return PacketFacts::ePicture::unknown;
        default:
            return PacketFacts::ePicture::reference;
    }
}

}  // namespace

PacketInspector::PacketInspector(AVCodecParameters const& parameters)
    : codec_(parameters.codec_id),
      framing_(NalFraming::of(codec_,
                              Bytes(parameters.extradata, static_cast<size_t>(parameters.extradata_size)))) {
    if (!codecReorders(codec_)) {
        return;
    }
    context_.reset(avcodec_alloc_context3(nullptr));
    if (context_ && avcodec_parameters_to_context(context_.get(), &parameters) >= 0) {
        parser_.reset(av_parser_init(codec_));
    }
    if (parser_) {
        parser_->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    }
}

PacketFacts PacketInspector::inspect(AVPacket const& packet) {
    PacketFacts facts;
    facts.position = packet.pos;
    facts.pts = packet.pts;
    facts.dts = packet.dts;
    facts.byteCount = static_cast<uint32_t>(packet.size);
    facts.fingerprint = fingerprintOf(packet);
    facts.isKey = (packet.flags & AV_PKT_FLAG_KEY) != 0;
    facts.isCutOff = (packet.flags & AV_PKT_FLAG_DISCARD) != 0;
    facts.isHidden = packet.size == 0 || isNeverShown(codec_, bytesOf(packet));
    if (parser_ && packet.size > 0) {
        parse(packet, facts);
    }
    return facts;
}

void PacketInspector::parse(AVPacket const& packet, PacketFacts& facts) {
    uint8_t* data = nullptr;
    int byteCount = 0;
    parser_->pict_type = AV_PICTURE_TYPE_NONE;
    parser_->picture_structure = AV_PICTURE_STRUCTURE_UNKNOWN;
    av_parser_parse2(parser_.get(), context_.get(), &data, &byteCount, packet.data, packet.size, packet.pts,
                     packet.dts, packet.pos);
    facts.picture = pictureOf(parser_->pict_type);
    facts.isKey = facts.isKey && facts.picture != PacketFacts::ePicture::bidirectional;
    if (codec_ != AV_CODEC_ID_H264 && codec_ != AV_CODEC_ID_HEVC) {
        return;
    }
    SliceFacts const slice = firstSlice(codec_, framing_, bytesOf(packet));
    facts.isHidden = slice.type < 0 && framing_.lengthByteCount == 0;
    facts.hasPictureOrder = true;
    facts.pictureOrder = parser_->output_picture_number;
    facts.beginsSequence = beginsCodedSequence(codec_, slice);
    if (codec_ == AV_CODEC_ID_H264) {
        pairFields(slice, facts);
    }
}

void PacketInspector::pairFields(SliceFacts const& slice, PacketFacts& facts) {
    AVPictureStructure const structure = parser_->picture_structure;
    lastIsSingleField_ = slice.pictureCount == 1 && (structure == AV_PICTURE_STRUCTURE_TOP_FIELD ||
                                                     structure == AV_PICTURE_STRUCTURE_BOTTOM_FIELD);
    bool const isFirstOpen = openField_ != AV_PICTURE_STRUCTURE_UNKNOWN;
    if (lastIsSingleField_ && isFirstOpen && structure != openField_ && !facts.beginsSequence) {
        facts.isSecondField = true;
        facts.isKey = false;
        openField_ = AV_PICTURE_STRUCTURE_UNKNOWN;
        return;
    }
    openField_ = lastIsSingleField_ ? structure : AV_PICTURE_STRUCTURE_UNKNOWN;
}

std::vector<PacketFacts> scanPackets(OpenContainer& container) {
    std::vector<PacketFacts> facts;
    PacketInspector inspector(container.videoParameters());
    AvPtr<AVPacket> const packet = makePacket();
    while (container.readVideoPacket(*packet) >= 0) {
        facts.push_back(inspector.inspect(*packet));
    }
    return facts;
}

uint32_t fingerprintOf(AVPacket const& packet) {
    Bytes const all = bytesOf(packet);
    uint32_t hash = 2166136261U;
    for (uint8_t const byte : all.last(std::min(all.size(), fingerprintedByteCount))) {
        hash = (hash ^ byte) * 16777619U;
    }
    return hash;
}

}  // namespace playfile_ffmpeg
