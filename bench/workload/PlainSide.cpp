#include "bench/workload/PlainSide.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "bench/support/PlainLoop.h"

extern "C" {
#include <libavutil/log.h>
}

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

/// Decoding the same frame again and again tells nothing new after a few times.
constexpr std::size_t mostRepeats = 10;

std::uint32_t readInOrder(PlainLoop& loop, std::size_t count) {
    std::uint32_t read = 0;
    while (read < count && loop.next()) {
        ++read;
    }
    return read;
}

std::uint32_t readBySeeking(PlainLoop& loop, std::vector<std::uint32_t> const& frames, std::size_t count) {
    return static_cast<std::uint32_t>(
        std::count_if(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(count),
                      [&](std::uint32_t frame) { return loop.frameAt(frame) != nullptr; }));
}

}  // namespace

Sample runPlain(std::string const& path, eCase which, std::vector<std::uint32_t> const& frames) {
    av_log_set_level(AV_LOG_QUIET);
    Sample sample;
    PlainLoop loop;
    if (which != eCase::openAndFirst && !loop.open(path)) {
        return sample;
    }
    std::size_t const wanted =
        which == eCase::heldAgain ? std::min(frames.size(), mostRepeats) : frames.size();
    auto const start = Clock::now();
    switch (which) {
        case eCase::inOrder:
            sample.reads = readInOrder(loop, wanted);
            break;
        case eCase::openAndFirst:
            sample.reads = loop.open(path) ? readInOrder(loop, wanted) : 0;
            break;
        default:
            sample.reads = readBySeeking(loop, frames, wanted);
            break;
    }
    sample.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    sample.isGood = sample.reads == wanted;
    sample.peakBytes = peakResidentBytes();
    return sample;
}

ClipFacts lookAt(std::string const& path) {
    av_log_set_level(AV_LOG_QUIET);
    ClipFacts facts;
    AVFormatContext* file = nullptr;
    if (avformat_open_input(&file, path.c_str(), nullptr, nullptr) < 0) {
        return facts;
    }
    avformat_find_stream_info(file, nullptr);
    int const stream = av_find_best_stream(file, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (stream >= 0) {
        AVCodecParameters const& parameters = *file->streams[stream]->codecpar;
        AVCodecDescriptor const* const codec = avcodec_descriptor_get(parameters.codec_id);
        facts.isGood = true;
        facts.width = static_cast<std::uint32_t>(parameters.width);
        facts.height = static_cast<std::uint32_t>(parameters.height);
        facts.isIntraOnly = codec && (codec->props & AV_CODEC_PROP_INTRA_ONLY) != 0;
        std::snprintf(facts.codec, sizeof facts.codec, "%s", avcodec_get_name(parameters.codec_id));
        std::snprintf(facts.container, sizeof facts.container, "%s", file->iformat->name);
    }
    avformat_close_input(&file);
    return facts;
}

}  // namespace bench
