#include "plugins/ffmpeg/KeptSamples.h"

#include <algorithm>

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace playfile_ffmpeg {
namespace {

/// Two numbers of 32 bits, and two reasons.
constexpr size_t skipMarkByteCount = 10;

}  // namespace

void KeptSamples::find(int64_t first, int64_t end, std::vector<SampleRun>& found) const {
    found.clear();
    auto run = std::upper_bound(runs_.begin(), runs_.end(), first,
                                [](int64_t at, SampleRun const& each) { return at < each.heard; });
    for (run -= run == runs_.begin() ? 0 : 1; run != runs_.end() && run->heard < end; ++run) {
        int64_t const from = std::max(first, run->heard);
        int64_t const to = std::min(end, run->heard + run->count);
        if (from < to) {
            found.push_back({from, run->decoded + (from - run->heard), to - from});
        }
    }
}

void KeptSamples::append(int64_t decoded, int64_t count) {
    if (count <= 0) {
        return;
    }
    bool const goesOn = !runs_.empty() && runs_.back().decoded + runs_.back().count == decoded;
    if (goesOn) {
        runs_.back().count += count;
    } else {
        runs_.push_back({this->count(), decoded, count});
    }
}

TrimMark trimMarkOf(AVPacket const& packet) {
    TrimMark mark;
    mark.isDiscarded = (packet.flags & AV_PKT_FLAG_DISCARD) != 0;
    size_t byteCount = 0;
    uint8_t const* bytes = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &byteCount);
    if (bytes != nullptr && byteCount >= skipMarkByteCount) {
        mark.skip = AV_RL32(bytes);
        mark.cutAtEnd = AV_RL32(bytes + 4);
    }
    return mark;
}

void Trimmer::take(int64_t sampleCount, TrimMark const& mark) {
    if (mark.skip != TrimMark::none) {
        skip_ = mark.skip;
    }
    int64_t const skipped = std::min(skip_, sampleCount);
    skip_ -= skipped;
    if (!mark.isDiscarded) {
        int64_t const left = sampleCount - skipped;
        bool const isCut = mark.cutAtEnd > 0 && mark.cutAtEnd <= left;
        kept_.append(decoded_ + skipped, isCut ? left - mark.cutAtEnd : left);
    }
    decoded_ += sampleCount;
}

}  // namespace playfile_ffmpeg
