#include "plugins/ffmpeg/IndexBuilder.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "plugins/ffmpeg/MovSampleTables.h"
#include "plugins/ffmpeg/PacketScan.h"

namespace playfile_ffmpeg {
namespace {

/// Samples that an edit list skips or repeats are looked up; a list that does it more often is damage.
constexpr int mostEdits = 1000;
/// Packets looked at to tell an intra-coded stream, or one of single fields, from others.
constexpr uint32_t lookedAtPackets = 8;
constexpr size_t comparedPackets = 32;
/// More frames than any recording has; a duration above that is damage.
constexpr int64_t mostFrames = int64_t{1} << 26;
constexpr uint32_t chunkHeaderByteCount = 8;

std::vector<PacketFacts> entriesOf(AVStream& stream) {
    int const count = avformat_index_get_entries_count(&stream);
    std::vector<PacketFacts> packets(static_cast<size_t>(std::max(count, 0)));
    for (int number = 0; number < count; ++number) {
        AVIndexEntry const& entry = *avformat_index_get_entry(&stream, number);
        PacketFacts& packet = packets[static_cast<size_t>(number)];
        packet.position = entry.pos;
        packet.pts = entry.timestamp;
        packet.dts = entry.timestamp;
        packet.byteCount = static_cast<uint32_t>(entry.size);
        packet.isKey = (entry.flags & AVINDEX_KEYFRAME) != 0;
        packet.isCutOff = (entry.flags & AVINDEX_DISCARD_FRAME) != 0;
    }
    return packets;
}

/// Finds the sample that each entry of an edited index stands for.
std::optional<std::vector<uint32_t>> samplesOf(std::vector<PacketFacts> const& packets,
                                               MovSampleTables const& tables) {
    std::vector<uint32_t> samples;
    samples.reserve(packets.size());
    uint32_t next = 0;
    int edits = 0;
    auto const fits = [&](PacketFacts const& packet) {
        return next < tables.sampleCount() && tables.positionOf(next) == packet.position &&
               tables.sizeOf(next) == packet.byteCount;
    };
    for (PacketFacts const& packet : packets) {
        if (!fits(packet)) {
            for (next = 0; next < tables.sampleCount() && !fits(packet); ++next) {
            }
            if (next == tables.sampleCount() || ++edits > mostEdits) {
                return std::nullopt;
            }
        }
        samples.push_back(next++);
    }
    return samples;
}

bool addTimesOfShowing(std::vector<PacketFacts>& packets, MovSampleTables const& tables) {
    auto const samples = samplesOf(packets, tables);
    if (!samples) {
        return false;
    }
    for (size_t number = 0; number < packets.size(); ++number) {
        int64_t const offset = tables.decodeShift() + tables.offsetOf((*samples)[number]);
        packets[number].pts = av_sat_add64(packets[number].pts, offset);
    }
    return true;
}

/// Some decoders need a palette that libavformat hands over beside the packet.
bool mayHavePalette(AVCodecParameters const& parameters) {
    int const depth = parameters.bits_per_coded_sample & 0x1f;
    return depth >= 1 && depth <= 8;
}

AvPtr<AVPacket> readAt(ByteFile const& file, PacketFacts const& facts) {
    AvPtr<AVPacket> packet = makePacket();
    if (facts.position < 0 || facts.position > file.byteCount() - facts.byteCount ||
        av_new_packet(packet.get(), static_cast<int>(facts.byteCount)) < 0) {
        return nullptr;
    }
    bool const isWhole = file.readAt(facts.position, packet->data, facts.byteCount) == facts.byteCount;
    return isWhole ? std::move(packet) : nullptr;
}

/// H.264 may come as one packet per field; only a look into all packets pairs them.
bool hasSingleFields(ByteFile const& file, AVCodecParameters const& parameters,
                     std::vector<PacketFacts> const& packets) {
    if (parameters.codec_id != AV_CODEC_ID_H264) {
        return false;
    }
    PacketInspector inspector(parameters);
    for (size_t number = 0; number < std::min<size_t>(packets.size(), lookedAtPackets); ++number) {
        AvPtr<AVPacket> const packet = readAt(file, packets[number]);
        if (!packet) {
            return false;
        }
        inspector.inspect(*packet);
        if (inspector.lastIsSingleField()) {
            return true;
        }
    }
    return false;
}

std::optional<BuiltIndex> fromMovTables(OpenContainer& container, ByteFile const& file) {
    AVStream& stream = container.video();
    AVCodecParameters const& parameters = *stream.codecpar;
    auto const tables = MovSampleTables::read(file, static_cast<uint32_t>(stream.id));
    if (!tables || tables->isFragmented() || parameters.codec_id == AV_CODEC_ID_VP9) {
        return std::nullopt;
    }
    BuiltIndex built;
    built.packets = entriesOf(stream);
    if (built.packets.empty() || !addTimesOfShowing(built.packets, *tables) ||
        hasSingleFields(file, parameters, built.packets)) {
        return std::nullopt;
    }
    built.liesInFile = tables->descriptionCount() == 1 && !mayHavePalette(parameters);
    return built;
}

/// True if the chunk that an AVI index entry points at is there and as long as the index says.
bool isChunkThere(ByteFile const& file, PacketFacts const& packet) {
    uint8_t header[chunkHeaderByteCount] = {};
    if (file.readAt(packet.position, header, sizeof header) != sizeof header) {
        return false;
    }
    uint32_t const byteCount = header[4] | static_cast<uint32_t>(header[5]) << 8 |
                               static_cast<uint32_t>(header[6]) << 16 |
                               static_cast<uint32_t>(header[7]) << 24;
    return byteCount == packet.byteCount;
}

std::optional<BuiltIndex> fromAviIndex(OpenContainer& container, ByteFile const& file) {
    AVStream& stream = container.video();
    BuiltIndex built;
    built.packets = entriesOf(stream);
    if (built.packets.empty() || codecReorders(stream.codecpar->codec_id)) {
        return std::nullopt;
    }
    for (size_t const number : {size_t{0}, built.packets.size() / 2, built.packets.size() - 1}) {
        if (!isChunkThere(file, built.packets[number])) {
            return std::nullopt;
        }
    }
    for (PacketFacts& packet : built.packets) {
        packet.position = av_sat_add64(packet.position, chunkHeaderByteCount);
        packet.isHidden = packet.byteCount == 0;
    }
    built.liesInFile = !mayHavePalette(*stream.codecpar);
    return built;
}

/// The index of an MXF file stays inside libavformat. That it is whole shows when a seek to the last
/// frame ends exactly there.
bool seeksToLastFrame(OpenContainer& container) {
    AVStream const& stream = container.video();
    AvPtr<AVPacket> const packet = makePacket();
    int64_t const last = stream.duration - 1;
    return container.seek(stream.index, last, AVSEEK_FLAG_BACKWARD) &&
           container.readVideoPacket(*packet) >= 0 && packet->pts == last &&
           container.readVideoPacket(*packet) == AVERROR_EOF;
}

std::optional<BuiltIndex> fromMxfDuration(OpenContainer& container) {
    AVStream const& stream = container.video();
    int64_t const count = stream.duration;
    if (!isIntraCoded(stream.codecpar->codec_id) || count <= 0 || count > mostFrames) {
        return std::nullopt;
    }
    if (!seeksToLastFrame(container)) {
        std::string error;
        return container.reopen(error) ? std::nullopt : std::optional(BuiltIndex());
    }
    BuiltIndex built;
    built.packets.resize(static_cast<size_t>(count));
    for (size_t number = 0; number < built.packets.size(); ++number) {
        built.packets[number].pts = static_cast<int64_t>(number);
        built.packets[number].isKey = true;
    }
    return built;
}

/// A packet at no known place and past the stated length is padding of an MXF essence, not a frame.
void hidePadding(AVStream const& stream, std::vector<PacketFacts>& packets) {
    for (PacketFacts& packet : packets) {
        if (packet.position < 0 && stream.duration > 0 && packet.pts >= stream.duration) {
            packet.isHidden = true;
        }
    }
}

/// True if the bytes at the packet's place are those that the scan saw.
bool isAsScanned(ByteFile const& file, PacketFacts const& facts) {
    AvPtr<AVPacket> const packet = readAt(file, facts);
    return packet && fingerprintOf(*packet) == facts.fingerprint;
}

bool samplesAreAsScanned(ByteFile const& file, std::vector<PacketFacts> const& packets) {
    size_t const step = packets.size() / comparedPackets + 1;
    for (size_t number = 0; number < packets.size(); number += step) {
        if (!isAsScanned(file, packets[number])) {
            return false;
        }
    }
    return !packets.empty();
}

BuiltIndex fromScan(OpenContainer& container, ByteFile const& file) {
    BuiltIndex built;
    built.packets = scanPackets(container);
    built.isScanned = true;
    built.timesAreTrue = !container.isRawStream() && !container.isFormat("avi");
    if (container.isFormat("mxf")) {
        hidePadding(container.video(), built.packets);
    }
    bool const mayLieInFile =
        container.isRawStream() || container.isFormat("mov") || container.isFormat("avi");
    built.liesInFile = mayLieInFile && !container.hasTakenApart() &&
                       !mayHavePalette(*container.video().codecpar) &&
                       samplesAreAsScanned(file, built.packets);
    return built;
}

}  // namespace

BuiltIndex buildIndex(OpenContainer& container, ByteFile const& file) {
    std::optional<BuiltIndex> built;
    if (container.isFormat("mov")) {
        built = fromMovTables(container, file);
    } else if (container.isFormat("avi")) {
        built = fromAviIndex(container, file);
    } else if (container.isFormat("mxf")) {
        built = fromMxfDuration(container);
    }
    return built ? *std::move(built) : fromScan(container, file);
}

}  // namespace playfile_ffmpeg
