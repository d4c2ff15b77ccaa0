#include "plugins/ffmpeg/PlaceFinder.h"

#include <algorithm>
#include <cstring>

namespace playfile_ffmpeg {
namespace {

/// Headers of packets, and of pages or blocks of packets, are shorter than that.
constexpr size_t longestHeader = 1024;

}  // namespace

int64_t PlaceFinder::find(AVPacket const& packet) {
    if (packet.pos < 0) {
        return nowhere;
    }
    // Packets of one page or block are all said to lie where that begins.
    bool const sharesPlace = packet.pos == lastStated_;
    int64_t const from = sharesPlace ? lastEnd_ : packet.pos;
    int64_t const place = liesAt(from, packet) ? from : search(from, packet);
    if (place != nowhere) {
        lastStated_ = packet.pos;
        lastEnd_ = place + packet.size;
    }
    return place;
}

bool PlaceFinder::liesAt(int64_t position, AVPacket const& packet) {
    size_t const byteCount = static_cast<size_t>(packet.size);
    bytes_.resize(std::max(bytes_.size(), byteCount));
    return file_.readAt(position, bytes_.data(), byteCount) == byteCount &&
           std::equal(packet.data, packet.data + byteCount, bytes_.data());
}

int64_t PlaceFinder::search(int64_t from, AVPacket const& packet) {
    size_t const byteCount = static_cast<size_t>(packet.size);
    bytes_.resize(std::max(bytes_.size(), byteCount + longestHeader));
    size_t const got = file_.readAt(from, bytes_.data(), byteCount + longestHeader);
    auto const end = bytes_.begin() + static_cast<std::ptrdiff_t>(got);
    auto const found = std::search(bytes_.begin(), end, packet.data, packet.data + byteCount);
    return found == end ? nowhere : from + (found - bytes_.begin());
}

}  // namespace playfile_ffmpeg
