#include "plugins/ffmpeg/Bundle.h"

#include <cstring>

namespace playfile_ffmpeg {
namespace {

constexpr uint32_t bundleMark = 0x42444c31;

struct Header {
    uint32_t mark = bundleMark;
    uint32_t runCount = 0;
    uint32_t packetCount = 0;
    uint8_t startsAnew = 0;
    uint8_t endsStream = 0;
    uint8_t unused[2] = {};
    int64_t holdFrom = 0;
};

struct PacketHeader {
    int64_t firstSample = 0;
    uint32_t sampleCount = 0;
    uint32_t byteCount = 0;
    uint32_t isFirstOfStream = 0;
    uint32_t unused = 0;
};

template <typename T>
void append(std::vector<uint8_t>& bytes, T const& value) {
    auto const* const first = reinterpret_cast<uint8_t const*>(&value);
    bytes.insert(bytes.end(), first, first + sizeof value);
}

/// Takes values off the front of a block.
class Cursor {
public:
    explicit Cursor(std::span<uint8_t const> bytes) : left_(bytes) {}

    template <typename T>
    bool take(T& value) {
        if (left_.size() < sizeof value) {
            return false;
        }
        std::memcpy(&value, left_.data(), sizeof value);
        left_ = left_.subspan(sizeof value);
        return true;
    }
    bool take(size_t byteCount, std::span<uint8_t const>& bytes) {
        if (left_.size() < byteCount) {
            return false;
        }
        bytes = left_.first(byteCount);
        left_ = left_.subspan(byteCount);
        return true;
    }

private:
    std::span<uint8_t const> left_;
};

}  // namespace

BundleWriter::BundleWriter(std::vector<uint8_t>& bytes) : bytes_(bytes) {
    bytes_.clear();
    append(bytes_, Header());
}

void BundleWriter::addRun(SampleRun const& run) {
    append(bytes_, run);
    ++runCount_;
}

void BundleWriter::beginPacket(int64_t firstSample, uint32_t sampleCount, bool isFirstOfStream) {
    packetAt_ = bytes_.size();
    PacketHeader header;
    header.firstSample = firstSample;
    header.sampleCount = sampleCount;
    header.isFirstOfStream = isFirstOfStream ? 1 : 0;
    append(bytes_, header);
    ++packetCount_;
}

void BundleWriter::endPacket() {
    auto const byteCount = static_cast<uint32_t>(bytes_.size() - packetAt_ - sizeof(PacketHeader));
    std::memcpy(bytes_.data() + packetAt_ + offsetof(PacketHeader, byteCount), &byteCount, sizeof byteCount);
}

void BundleWriter::finish(bool startsAnew, bool endsStream, int64_t holdFrom) {
    Header header;
    header.runCount = runCount_;
    header.packetCount = packetCount_;
    header.startsAnew = startsAnew ? 1 : 0;
    header.endsStream = endsStream ? 1 : 0;
    header.holdFrom = holdFrom;
    std::memcpy(bytes_.data(), &header, sizeof header);
}

bool readBundle(std::span<uint8_t const> bytes, Bundle& bundle) {
    Cursor cursor(bytes);
    Header header;
    if (!cursor.take(header) || header.mark != bundleMark) {
        return false;
    }
    bundle.startsAnew = header.startsAnew != 0;
    bundle.endsStream = header.endsStream != 0;
    bundle.holdFrom = header.holdFrom;
    bundle.runs.clear();
    bundle.packets.clear();
    for (uint32_t i = 0; i < header.runCount; ++i) {
        if (!cursor.take(bundle.runs.emplace_back())) {
            return false;
        }
    }
    for (uint32_t i = 0; i < header.packetCount; ++i) {
        PacketHeader head;
        Bundle::Packet& packet = bundle.packets.emplace_back();
        if (!cursor.take(head) || !cursor.take(head.byteCount, packet.bytes)) {
            return false;
        }
        packet.firstSample = head.firstSample;
        packet.sampleCount = head.sampleCount;
        packet.isFirstOfStream = head.isFirstOfStream != 0;
    }
    return true;
}

}  // namespace playfile_ffmpeg
